#pragma once

#include "FoldersOnPath.h"
#include "NamesOnPath.h"

#include "foundation/messages/Notification.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace TolvexPath {

/// A kind of problem, by a word for programs that does not change, and by a heading for people.
struct ProblemKind {
    std::string_view name;
    std::string_view heading;
};

/// All kinds, in the order in which they are told.
[[nodiscard]] std::span<const ProblemKind> GetProblemKinds();

struct PathProblem {
    std::string_view kind; ///< the name of one of GetProblemKinds
    Tolvex::ustring subject;
    std::string message; ///< as UTF-8
};

/// A path and everything that is wrong with it.
struct PathCheck {
    std::shared_ptr<const PathManagement::IPath> path;
    std::vector<FolderOnPath> folders;
    std::size_t fileCount = 0;
    std::vector<NameConflict> conflicts;
    std::vector<PathProblem> problems; ///< in the order of kinds
};

/// Looks at an installed path from every side. `locations`, as they are spelled, are what it was asked to be made of,
/// `leftOut` is what became of the others.
[[nodiscard]] PathCheck CheckPath(std::shared_ptr<const PathManagement::IPath> path,
                                  std::span<const Tolvex::AbsoluteIRI> locations, const Tolvex::Notification& leftOut,
                                  const NameRules& rules);

} // namespace TolvexPath
