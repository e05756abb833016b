#pragma once

#include "foundation/events/EventMgr.h"
#include "main_manager/PathChange.h"
#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IMainSearchPathManager.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"
#include "path_utilities/AtomicHandle.h"

namespace TolvexComponents {
class IModularPackageRegistry;
}

namespace PathManagement {

/// The one owner of a process's search path. Every change ends in InstallNewPath.
class MainSearchPathManager final : public IMainSearchPathManager {
public:
    /// Whether modular packages take part.
    enum class EnableModularPackages : std::uint32_t { no = 0, yes = 1 };

    /// The references outlive the manager; `folderMonitor` may go when nothing is asked of the manager any more but its
    /// destruction.
    MainSearchPathManager(boost::shared_ptr<Tolvex::EventMgr> eventManager,
                          TolvexComponents::IModularPackageRegistry& packageRegistry,
                          const IPathEntryFactory& pathEntryFactory, const IPathFactory& pathFactory,
                          std::unique_ptr<ICurrentFolderPathManagerFactory> currentFolderPathManagerFactory,
                          CurrentFolderPolicy currentFolderPolicy, IFolderMonitor& folderMonitor,
                          EnableModularPackages enableModularPackages);
    ~MainSearchPathManager() override;
    MainSearchPathManager(const MainSearchPathManager&) = delete;
    MainSearchPathManager& operator=(const MainSearchPathManager&) = delete;

    [[nodiscard]] std::shared_ptr<const IPath> GetMonitoredPath() const override;
    [[nodiscard]] std::shared_ptr<const IPath> GetSecondaryPath() const override;
    void RefreshPath(RefreshType type) override;
    void SetPathEntries(PathEntryVector entries, Tolvex::Notification& problems) override;
    void SetPathEntries(const CanonicalIRIRange& folders, Tolvex::Notification& problems) override;
    void SetPath(std::shared_ptr<const IPath> path) override;
    [[nodiscard]] std::shared_ptr<const IPath> GetPath() const override;
    [[nodiscard]] IFolderMonitor& GetFolderMonitor() const override;
    [[nodiscard]] std::shared_ptr<void> PushMutabilityPolicy(PathManagerMutabilityPolicy policy) override;
    void SetMutabilityPolicy(PathManagerMutabilityPolicy policy) override;
    [[nodiscard]] std::optional<TolvexComponents::ComponentIdentifier> GetCurrentFolderComponent() const override;
    [[nodiscard]] std::shared_ptr<const Components> GetPathComponents() const override;
    void SetCurrentFolderPolicy(CurrentFolderPolicy policy) override;
    [[nodiscard]] std::shared_ptr<const IRIs> GetPathIRIs() const override;
    [[nodiscard]] std::shared_ptr<const PathMemento> CreateMemento() const override;
    void RebuildPath() override;

private:
    /// Stored main entries that a refresh asks whatever the factory reports.
    struct EntriesToAsk {
        PathEntryVector sinceRefresh; // what changed before they came may have been asked already
        PathEntryVector foreign;      // the factory's observers do not speak for them
    };

    struct UpdatedEntries {
        StoredPathChange stored;
        Tolvex::ChangeToken upTo; // what changed before is in `stored`
    };

    void SetCurrentFolderPathManager();
    void HandleCurrentFolderChanged();
    void HandleRegistryChange();
    void Refresh(RefreshType type);
    [[nodiscard]] UpdatedEntries UpdateEntries();
    void Install(const UpdatedEntries& updated, bool isRefresh);
    [[nodiscard]] bool IsCurrentFolderInFront() const;
    void MarkEntriesOutOfDate(RefreshType type) const;
    void MarkPathEntriesOutOfDate(RefreshType type) const;
    [[nodiscard]] PathEntryVector FindEntriesToAsk(const Tolvex::ChangeReport& report) const;
    [[nodiscard]] EntriesToAsk FindEntriesToAsk(const PathChange& change) const;
    void NoteRefreshed(Tolvex::ChangeToken now);
    [[nodiscard]] PathChange Compose(const StoredPathChange& stored) const;
    [[nodiscard]] PathChange Compose() const;
    void InstallNewPath(const PathChange& change);
    void Install(const PathChange& change);
    void UpdateObservation(const PathChange& change) const;
    [[nodiscard]] PathChangeEvent MakeEvent(PathChangeEvent::Stage stage, const PathChange& change) const;

    const boost::shared_ptr<Tolvex::EventMgr> eventManager;
    const IPathEntryFactory& pathEntryFactory;
    const IPathFactory& pathFactory;
    const std::unique_ptr<ICurrentFolderPathManagerFactory> currentFolderPathManagerFactory;
    AtomicHandle<ICurrentFolderPathManager> currentFolderPathManager;
    CurrentFolderPolicy currentFolderPolicy;
    AtomicHandle<const InstalledPaths> installedPaths;
    IFolderMonitor& folderMonitor;
    bool changeInProgress = false;
    std::optional<RefreshType> pendingRefresh; // asked for while a change was in progress
    /// Shared with the tokens that will bring an earlier value back.
    const std::shared_ptr<PathManagerMutabilityPolicy> mutabilityPolicy =
        std::make_shared<PathManagerMutabilityPolicy>(PathManagerMutabilityPolicy::allAlterations);
    Tolvex::ChangeToken refreshedUpTo;
    EntriesToAsk toAsk;
    /// As EntriesToAsk, for what stands for the current folder.
    bool isFrontToBeAsked = true;
    Tolvex::ScopedConnection registryListener; // last: cut before anything its handler uses goes
};

} // namespace PathManagement
