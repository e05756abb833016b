#pragma once

#include "foundation/components/IModularPackageRegistry.h"
#include "foundation/events/EventMgr.h"
#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"

namespace PathManagement {

/// Makes current-folder path managers over one set of collaborators, which outlive them.
class CurrentFolderPathManagerFactory final : public ICurrentFolderPathManagerFactory {
public:
    CurrentFolderPathManagerFactory(boost::shared_ptr<Tolvex::EventMgr> eventManager,
                                    const TolvexComponents::IModularPackageRegistry& packageRegistry,
                                    const IPathEntryFactory& pathEntryFactory, const IPathFactory& pathFactory,
                                    const IFolderMonitor& folderMonitor) noexcept;

    [[nodiscard]] std::unique_ptr<ICurrentFolderPathManager> Create(CurrentFolderPolicy policy) const override;

private:
    boost::shared_ptr<Tolvex::EventMgr> eventManager;
    const TolvexComponents::IModularPackageRegistry& packageRegistry;
    const IPathEntryFactory& pathEntryFactory;
    const IPathFactory& pathFactory;
    const IFolderMonitor& folderMonitor;
};

} // namespace PathManagement
