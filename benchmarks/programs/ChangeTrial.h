#pragma once

#include "path_interfaces/IPath.h"

namespace KxBenchmarks {

/// What a path costs that is derived from the one before it, with one entry replaced.
class ChangeTrial {
public:
    /// REQUIRES: `replacement` is not on the path and holds a code file `newName` that no other folder of it has.
    ChangeTrial(std::shared_ptr<const PathManagement::IPath> path,
                std::shared_ptr<const PathManagement::IPathEntry> replacement, Tolvex::ustring newName);

    /// The median, in milliseconds, of several replacements at places that follow from `seed`; the list of entries
    /// exists before. Throws std::runtime_error when a derived path does not find the new name.
    [[nodiscard]] double Measure(std::uint32_t seed) const;

private:
    [[nodiscard]] double MeasureAt(std::size_t place) const;

    std::shared_ptr<const PathManagement::IPath> path;
    std::shared_ptr<const PathManagement::IPathEntry> replacement;
    Tolvex::ustring newName;
};

} // namespace KxBenchmarks
