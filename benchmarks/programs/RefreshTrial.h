#pragma once

#include "path_interfaces/IPath.h"
#include "path_interfaces/IPathEntryFactory.h"

namespace KxBenchmarks {

/// What it costs to learn that nothing on a path has changed.
class RefreshTrial {
public:
    /// `path` holds entries of `factory`.
    RefreshTrial(const PathManagement::IPathEntryFactory& factory, const PathManagement::IPath& path);

    /// Throws std::runtime_error when the factory cannot tell of changes without a look at the folders.
    void DemandThatNobodyIsAsked() const;

    /// In milliseconds. Throws std::runtime_error when something has changed after all.
    [[nodiscard]] double Measure();

private:
    [[nodiscard]] bool IsUnchanged();

    const PathManagement::IPathEntryFactory& factory;
    const PathManagement::IPath& path;
    Tolvex::ChangeToken seen;
};

} // namespace KxBenchmarks
