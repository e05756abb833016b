#pragma once

#include "foundation/components/IModularPackageRegistry.h"
#include "foundation/events/EventMgr.h"
#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"
#include "path_utilities/AtomicHandle.h"

#include <boost/signals2/signal.hpp>

namespace PathManagement {

/// The current folder's path: follows the host's working folder, which CurrentWorkingFolderChangedEvent tells it.
class CurrentFolderPathManager final : public ICurrentFolderPathManager {
public:
    /// Reads `currentFolder`, which may be missing or unreadable. The references outlive this object.
    CurrentFolderPathManager(boost::shared_ptr<Tolvex::EventMgr> eventManager,
                             const TolvexComponents::IModularPackageRegistry& packageRegistry,
                             const IPathEntryFactory& pathEntryFactory, const IPathFactory& pathFactory,
                             const IFolderMonitor& folderMonitor, const Tolvex::CanonicalAbsoluteIRI& currentFolder);
    ~CurrentFolderPathManager() override;
    CurrentFolderPathManager(const CurrentFolderPathManager&) = delete;
    CurrentFolderPathManager& operator=(const CurrentFolderPathManager&) = delete;

    [[nodiscard]] Component GetCurrentFolderComponent() const override;
    [[nodiscard]] std::shared_ptr<const IPath> GetCurrentFolderPath() const override;
    [[nodiscard]] std::shared_ptr<const IPath> GetCurrentFolderPath(const IPath& mainPath) const override;
    void ConnectToCurrentFolderChanged(CurrentFolderChangedCallback callback) override;
    void UpdateCurrentFolderComponent() override;
    std::pair<PathEntryVector, PathEntryVector> RequestRefresh(RefreshType type) override;
    [[nodiscard]] std::shared_ptr<CurrentFolderMemento> CreateMemento() const override;
    void RestoreMemento(const CurrentFolderMemento& memento) override;

private:
    using Signal = boost::signals2::signal<void(const std::shared_ptr<const IPath>&, const Component&)>;
    using State = CurrentFolderMemento;

    void HandleCurrentFolderChanged(const Tolvex::CanonicalAbsoluteIRI& newFolder);
    void MarkCurrentFolderOutOfDate() const;
    [[nodiscard]] std::shared_ptr<const State> Rebuild(const Tolvex::CanonicalAbsoluteIRI& folder);
    void Rebuild(const Tolvex::CanonicalAbsoluteIRI& folder, State& next) const;

    const boost::shared_ptr<Tolvex::EventMgr> eventManager;
    const TolvexComponents::IModularPackageRegistry& packageRegistry;
    const IPathEntryFactory& pathEntryFactory;
    const IPathFactory& pathFactory;
    const IFolderMonitor& folderMonitor;
    AtomicHandle<const State> state; // component, entry and path, replaced together
    const std::shared_ptr<Signal> currentFolderChanged;
    // Last: cut before anything its handler uses goes. The assertion about it names it, too.
    Tolvex::ScopedConnection m_currentFolderListener; // NOLINT(readability-identifier-naming)
};

} // namespace PathManagement
