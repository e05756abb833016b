#include "search_path/Accessors.h"

#include "foundation/environment/Installation.h"
#include "foundation/environment/PackageDescriptors.h"
#include "foundation/environment/ProcessScopeStore.h"
#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "path_model/PathEntryFactory.h"
#include "path_model/PathFactory.h"

namespace PathManagement {

namespace {

std::shared_ptr<PathEntryFactory> MakePathEntryFactory() {
    const Tolvex::AbsoluteIRI installation =
        Tolvex::toAbsoluteIRI(Tolvex::make_native_form(Tolvex::get_install_path()));
    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
    return std::make_shared<PathEntryFactory>(
        Tolvex::CanonicalAbsoluteIRI(installation, {}), storage, TolvexPackages::GetPackageDescriptorFactory(),
        Tolvex::createLocalEventMgr(), Tolvex::GetFileFolderObserverFactory(storage));
}

IPathEntryFactory& PutInProcessScope() {
    using Tolvex::ProcessScopeStore;
    const auto identifier = ProcessScopeStore::getNextID(typeid(PathEntryFactory));
    return *static_cast<PathEntryFactory*>(ProcessScopeStore::Put(identifier, MakePathEntryFactory()));
}

std::unique_ptr<IFolderMonitor>& GetFolderMonitorHolder() {
    static std::unique_ptr<IFolderMonitor> holder;
    return holder;
}

} // namespace

IPathEntryFactory& GetPathEntryFactory() {
    static IPathEntryFactory& factory = PutInProcessScope();
    return factory;
}

const IPathFactory& GetCurrentPathFactory() {
    static const PathFactory factory(std::make_shared<AsynchronousWorkerQueue>());
    return factory;
}

IFolderMonitor& GetFolderMonitor() {
    return *GetFolderMonitorHolder();
}

void SetFolderMonitor(std::unique_ptr<IFolderMonitor>&& monitor) {
    if (&monitor != &GetFolderMonitorHolder())
        GetFolderMonitorHolder() = std::move(monitor);
}

} // namespace PathManagement
