#pragma once

#include "path_interfaces/CurrentFolderMemento.h"

#include <memory>
#include <vector>

namespace PathManagement {

/// What a manager's path was at one moment; to go back to it, give its stored path to SetPath. Immutable, safe from any
/// thread.
struct PathMemento {
    std::shared_ptr<const IPath> storedPath; ///< what the user has set, without the current folder
    std::shared_ptr<const IPath> path;       ///< what look-ups used
    std::shared_ptr<const std::vector<Tolvex::CanonicalAbsoluteIRI>> pathIRIs;
    std::shared_ptr<const std::vector<TolvexComponents::ComponentIdentifier>> pathComponents;
    std::shared_ptr<const CurrentFolderMemento> currentFolder; ///< null without a current folder
};

} // namespace PathManagement
