#include "search_path/MainSearchPathManagerFactory.h"

#include "change_tracking/FolderMonitor.h"
#include "current_folder/CurrentFolderPathManagerFactory.h"
#include "foundation/components/ComponentFeature.h"
#include "foundation/environment/Installation.h"
#include "main_manager/MainSearchPathManager.h"
#include "module/PresentManager.h"
#include "path_utilities/PathText.h"
#include "search_path/Accessors.h"

namespace PathManagement {

namespace {

void InstallFolderMonitor(TolvexPackages::IPackageRegistrar& registrar, const IPathFactory& pathFactory) {
    auto emptyPath = pathFactory.CreatePath(std::make_shared<const PathEntryVector>(), nullptr);
    const Tolvex::AbsoluteIRI installation = GetIRIFromString(Tolvex::get_install_path());
    SetFolderMonitor(std::make_unique<FolderMonitor>(Tolvex::CanonicalAbsoluteIRI(installation, {}),
                                                     std::move(emptyPath), registrar));
}

} // namespace

std::unique_ptr<IMainSearchPathManager>
CreateMainSearchPathManager(const boost::shared_ptr<Tolvex::EventMgr>& eventManager,
                            TolvexComponents::IModularPackageRegistry& packageRegistry) {
    PresentManager::Forget(); // it loses its folder monitor
    TolvexPackages::IPackageRegistrar& registrar = TolvexPackages::GetPackageRegistrar();
    const IPathFactory& pathFactory = GetCurrentPathFactory();
    InstallFolderMonitor(registrar, pathFactory);
    IFolderMonitor& folderMonitor = GetFolderMonitor();
    IPathEntryFactory& pathEntryFactory = GetPathEntryFactory();
    auto currentFolderPathManagers = std::make_unique<CurrentFolderPathManagerFactory>(
        eventManager, packageRegistry, pathEntryFactory, pathFactory, folderMonitor);
    using EnableModularPackages = MainSearchPathManager::EnableModularPackages;
    const auto modularPackages =
        TolvexComponents::ComponentFeature::IsOn() ? EnableModularPackages::yes : EnableModularPackages::no;
    auto manager = std::make_unique<MainSearchPathManager>(
        eventManager, packageRegistry, pathEntryFactory, pathFactory, std::move(currentFolderPathManagers),
        CurrentFolderPolicy::trackWorkingFolder, folderMonitor, modularPackages);
    PresentManager::Set(*manager, *eventManager);
    return manager;
}

} // namespace PathManagement
