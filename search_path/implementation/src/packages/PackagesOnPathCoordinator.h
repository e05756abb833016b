#pragma once

#include "foundation/components/PackageRegistryHasBeenChanged.h"
#include "foundation/events/EventMgr.h"
#include "packages/PackagePathUpdate.h"

namespace PathManagement {

/// Keeps the installed packages on the path: handles every change of the package registry that is published while it
/// lives, on the publishing thread. No state passes from one change to the next.
class PackagesOnPathCoordinator {
public:
    /// `manager` outlives the coordinator.
    PackagesOnPathCoordinator(Tolvex::EventMgr& eventManager, IMainSearchPathManager& manager,
                              PackagePathUpdate::ReportCallback&& reportCallback);

private:
    // Its handler owns the callback, so that a callback may be the end of the coordinator.
    Tolvex::ScopedConnection registryListener;
};

} // namespace PathManagement
