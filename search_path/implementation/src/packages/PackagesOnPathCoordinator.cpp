#include "packages/PackagesOnPathCoordinator.h"

#include "foundation/diagnostics/DiagnosticScope.h"
#include "foundation/environment/EngineScopeStore.h"
#include "search_path/PackagesOnPath.h"

#include <utility>

namespace PathManagement {

using TolvexPackages::PackageRegistryHasBeenChanged;

PackagesOnPathCoordinator::PackagesOnPathCoordinator(Tolvex::EventMgr& eventManager, IMainSearchPathManager& manager,
                                                     PackagePathUpdate::ReportCallback&& reportCallback)
    : registryListener(eventManager.Subscribe<PackageRegistryHasBeenChanged>(
          [&manager, callback = std::move(reportCallback)](const PackageRegistryHasBeenChanged& event) {
              const Tolvex::DiagnosticScope scope;
              PackagePathUpdate(manager, callback, event.GetChanges()).Run();
          },
          "Level1")) {}

void InstallPackagesOnPathCoordinator(Tolvex::EventMgr& eventManager, IMainSearchPathManager& manager,
                                      std::function<void(const Tolvex::Notification&)>&& reportCallback) {
    using Tolvex::EngineScopeStore;
    EngineScopeStore::Put(
        EngineScopeStore::getNextID(typeid(PackagesOnPathCoordinator)),
        std::make_shared<PackagesOnPathCoordinator>(eventManager, manager, std::move(reportCallback)));
}

} // namespace PathManagement
