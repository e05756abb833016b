#include "current_folder/CurrentFolderPathManagerFactory.h"

#include "current_folder/CurrentFolderPathManager.h"
#include "current_folder/NoCurrentFolderPathManager.h"
#include "foundation/environment/WorkingFolder.h"

#include <utility>

namespace PathManagement {

CurrentFolderPathManagerFactory::CurrentFolderPathManagerFactory(
    boost::shared_ptr<Tolvex::EventMgr> events, const TolvexComponents::IModularPackageRegistry& packageRegistry,
    const IPathEntryFactory& pathEntryFactory, const IPathFactory& pathFactory,
    const IFolderMonitor& folderMonitor) noexcept
    : eventManager(std::move(events)), packageRegistry(packageRegistry), pathEntryFactory(pathEntryFactory),
      pathFactory(pathFactory), folderMonitor(folderMonitor) {}

std::unique_ptr<ICurrentFolderPathManager> CurrentFolderPathManagerFactory::Create(CurrentFolderPolicy policy) const {
    if (policy != CurrentFolderPolicy::trackWorkingFolder)
        return std::make_unique<NoCurrentFolderPathManager>(pathFactory);
    return std::make_unique<CurrentFolderPathManager>(eventManager, packageRegistry, pathEntryFactory, pathFactory,
                                                      folderMonitor, Tolvex::GetCurrentWorkingFolder().get());
}

} // namespace PathManagement
