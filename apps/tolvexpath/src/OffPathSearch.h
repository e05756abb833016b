#pragma once

#include "Question.h"

#include "path_interfaces/IPath.h"

namespace TolvexPath {

/// Files that would answer if their folders were on the path.
struct OffPathFiles {
    struct File {
        Tolvex::AbsoluteIRI location;
        Tolvex::AbsoluteIRI missingFolder; ///< that has to be put on the path for it
    };

    std::vector<File> files; ///< least deep first
    bool isComplete = true;  ///< false when there was more to look into than is worth it
};

/// The most folders that FindOffPath looks into.
inline constexpr std::size_t offPathFolderLimit = 10'000;

/// Looks into the ordinary folders below a path, which a search passes by, for files of the wanted name whatever its
/// case. Follows links, enters no folder twice and passes over what cannot be read. REQUIRES: `question` says
/// everything.
[[nodiscard]] OffPathFiles FindOffPath(const PathManagement::IPath& path, const Question& question);

} // namespace TolvexPath
