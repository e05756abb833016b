#pragma once

#include "foundation/events/EventMgr.h"
#include "path_interfaces/IMainSearchPathManager.h"

#include <functional>

namespace PathManagement {

/// From now on keeps the installed packages on the path of `manager`: for each PackageRegistryHasBeenChanged that is
/// published on `eventManager`, folders of packages that went leave the path, those of updated packages take the place
/// of their old ones, and new packages are put in front or behind. Each change ends with one call of `reportCallback`,
/// on the publishing thread, with the messages the change gave rise to, of which there may be none. When the path
/// cannot be changed, the only message is why. What the callback throws reaches whoever published the change;
/// std::bad_function_call for an empty one.
///
/// Lasts until the engine's scope ends (Tolvex::EngineScopeStore); `manager` has to last as long. Another call
/// replaces what the one before installed. For one thread at a time.
KX_EXPORT void InstallPackagesOnPathCoordinator(Tolvex::EventMgr& eventManager, IMainSearchPathManager& manager,
                                                std::function<void(const Tolvex::Notification&)>&& reportCallback);

} // namespace PathManagement
