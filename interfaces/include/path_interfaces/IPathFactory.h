#pragma once

#include "path_interfaces/IPath.h"

namespace PathManagement {

/// Makes paths. Safe from any thread.
class IPathFactory {
public:
    virtual ~IPathFactory() = default;

    /// A path of `mainEntries`, in their order. `previous` may be null or any path; when it is one that this factory
    /// made, the new path shares with it all that did not change, so that it costs what changed: entries that
    /// `previous` holds are neither walked nor indexed again. REQUIRES: no null entry, no null vector.
    [[nodiscard]] virtual std::shared_ptr<const IPath>
    CreatePath(std::shared_ptr<const PathEntryVector> mainEntries,
               const std::shared_ptr<const IPath>& previous) const = 0;
};

} // namespace PathManagement
