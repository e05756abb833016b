#pragma once

#include "foundation/components/ComponentIdentifier.h"
#include "path_interfaces/IPath.h"

#include <optional>

namespace PathManagement {

/// What the current folder was at one moment. Immutable; safe from any thread.
struct CurrentFolderMemento {
    std::shared_ptr<const IPathEntry> entry; ///< never null
    std::shared_ptr<const IPath> path;       ///< never null; of that entry, of none, or the component's
    std::optional<TolvexComponents::ComponentIdentifier> component;
};

} // namespace PathManagement
