#pragma once

#include "foundation/events/EventMgr.h"
#include "path_interfaces/IMainSearchPathManager.h"

namespace TolvexComponents {
class IModularPackageRegistry;
}

namespace PathManagement {

/// Makes a search path manager with an empty path that follows the process's working folder, and installs a folder
/// monitor for it. All that happens is published on `eventManager`; the host publishes there that the working folder or
/// the registries have changed. `packageRegistry` outlives the manager.
///
/// There is one folder monitor a process: once another manager was made, an earlier one may only be destroyed. The
/// monitor keeps the last path it was given, with all its entries, until another monitor is installed. Throws what goes
/// wrong on the way, Tolvex::StorageError when the working folder is gone; the folder monitor stays installed then. For
/// one thread at a time.
[[nodiscard]] KX_EXPORT std::unique_ptr<IMainSearchPathManager>
CreateMainSearchPathManager(const boost::shared_ptr<Tolvex::EventMgr>& eventManager,
                            TolvexComponents::IModularPackageRegistry& packageRegistry);

} // namespace PathManagement
