#include "main_manager/MainSearchPathManager.h"

#include "foundation/components/IModularPackageRegistry.h"
#include "foundation/components/IPackageRegistrar.h"
#include "foundation/components/ModularPackageRegistryHasBeenChanged.h"
#include "foundation/diagnostics/DiagnosticScope.h"
#include "foundation/diagnostics/Terminate.h"
#include "foundation/observers/FileFolderChangedEvent.h"
#include "main_manager/SearchPathPublicFunctions.h"
#include "path_interfaces/PathAlterationExceptions.h"
#include "path_interfaces/events/PathManagerWillBeDestroyedEvent.h"
#include "path_utilities/PathReplacement.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace PathManagement {

using Tolvex::CanonicalAbsoluteIRI;

namespace {

/// The private folder that an entry presents as a main folder, or the entry itself.
std::shared_ptr<const IPathEntry> WithoutPresentation(std::shared_ptr<const IPathEntry> entry) {
    if (auto folder = entry->GetPrivateEntry(); folder != nullptr && folder->GetIRI() == entry->GetIRI())
        return folder;
    return entry;
}

/// Leaves the first entry of each folder.
void DropRepeatedFolders(PathEntryVector& entries) {
    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> seen;
    std::erase_if(entries, [&seen](const auto& entry) { return !seen.insert(entry->GetIRI()).second; });
}

/// Has those of some main entries that are out of date made again.
class PathEntryRefresher {
public:
    PathEntryRefresher(const IPathEntryFactory& factory, const IFolderMonitor& monitor) noexcept
        : factory(factory), monitor(monitor) {}

    void Refresh(const std::shared_ptr<const IPathEntry>& entry) {
        if (!asked.insert(entry.get()).second || !entry->IsOutOfDate())
            return;
        if (auto updated = entry->GetUpdatedPathEntry(factory, monitor); updated != entry)
            updates.push_back({entry, std::move(updated)});
    }

    /// `stored` with the new entries in place of the old; the same path when there are none.
    [[nodiscard]] StoredPathChange Replace(const std::shared_ptr<const IPath>& stored,
                                           const IPathFactory& pathFactory) {
        std::ranges::sort(updates, [&stored](const Update& a, const Update& b) {
            return stored->FirstEntryIsBeforeSecondOnPath(*a.before, *b.before);
        });
        PathEntryVector before;
        PathEntryVector after;
        for (Update& update : updates) {
            before.push_back(std::move(update.before));
            after.push_back(std::move(update.after));
        }
        auto path = before.empty() ? stored : CreatePathWithReplacements(pathFactory, stored, before, after);
        return {std::move(path), std::make_shared<const PathEntryVector>(std::move(before)),
                std::make_shared<const PathEntryVector>(std::move(after))};
    }

private:
    struct Update {
        std::shared_ptr<const IPathEntry> before;
        std::shared_ptr<const IPathEntry> after;
    };

    const IPathEntryFactory& factory;
    const IFolderMonitor& monitor;
    std::unordered_set<const IPathEntry*> asked;
    std::vector<Update> updates;
};

/// Those of `entries` that are main entries of `storedPath`, as the same objects.
PathEntryVector GetStillStored(const PathEntryVector& entries, const IPath& storedPath) {
    PathEntryVector still;
    std::ranges::copy_if(entries, std::back_inserter(still), [&storedPath](const auto& entry) {
        return storedPath.GetPathEntryFromAbsoluteIRI(entry->GetIRI()) == entry;
    });
    return still;
}

/// Sets a flag for as long as it lives.
class ChangeGuard {
public:
    explicit ChangeGuard(bool& changeInProgress) noexcept : flag(changeInProgress) { flag = true; }
    ~ChangeGuard() { flag = false; }
    ChangeGuard(const ChangeGuard&) = delete;
    ChangeGuard& operator=(const ChangeGuard&) = delete;

private:
    bool& flag;
};

} // namespace

MainSearchPathManager::MainSearchPathManager(
    boost::shared_ptr<Tolvex::EventMgr> events, TolvexComponents::IModularPackageRegistry& /*packageRegistry*/,
    const IPathEntryFactory& pathEntryFactory, const IPathFactory& pathFactory,
    std::unique_ptr<ICurrentFolderPathManagerFactory> currentFolderPathManagers, CurrentFolderPolicy policy,
    IFolderMonitor& folderMonitor, EnableModularPackages enableModularPackages)
    : eventManager(std::move(events)), pathEntryFactory(pathEntryFactory), pathFactory(pathFactory),
      currentFolderPathManagerFactory(std::move(currentFolderPathManagers)), currentFolderPathManager(nullptr),
      currentFolderPolicy(policy), installedPaths(nullptr), folderMonitor(folderMonitor) {
    SetCurrentFolderPathManager();
    installedPaths.Exchange(MakeEmptyPaths(pathFactory, enableModularPackages == EnableModularPackages::yes));
    Install(Compose());
    using TolvexComponents::ModularPackageRegistryHasBeenChanged;
    registryListener = eventManager->Subscribe<ModularPackageRegistryHasBeenChanged>(
        [this](const ModularPackageRegistryHasBeenChanged&) { HandleRegistryChange(); });
}

MainSearchPathManager::~MainSearchPathManager() {
    try {
        eventManager->PublishNow(PathManagerWillBeDestroyedEvent(*this));
    } catch (...) {
        // What a handler threw cannot leave a destructor; every handler has run.
    }
}

std::shared_ptr<const IPath> MainSearchPathManager::GetMonitoredPath() const {
    return installedPaths.Load()->monitoredPath;
}

std::shared_ptr<const IPath> MainSearchPathManager::GetSecondaryPath() const {
    return installedPaths.Load()->secondaryPath;
}

std::shared_ptr<const IPath> MainSearchPathManager::GetPath() const {
    return installedPaths.Load()->path;
}

IFolderMonitor& MainSearchPathManager::GetFolderMonitor() const {
    return folderMonitor;
}

std::optional<TolvexComponents::ComponentIdentifier> MainSearchPathManager::GetCurrentFolderComponent() const {
    return currentFolderPathManager.Load()->GetCurrentFolderComponent();
}

std::shared_ptr<const IMainSearchPathManager::Components> MainSearchPathManager::GetPathComponents() const {
    return installedPaths.Load()->pathComponents;
}

std::shared_ptr<const IMainSearchPathManager::IRIs> MainSearchPathManager::GetPathIRIs() const {
    return installedPaths.Load()->pathIRIs;
}

std::shared_ptr<const PathMemento> MainSearchPathManager::CreateMemento() const {
    const auto installed = installedPaths.Load();
    auto memento = std::make_shared<PathMemento>();
    memento->storedPath = installed->storedPath;
    memento->path = installed->path;
    memento->pathIRIs = installed->pathIRIs;
    memento->pathComponents = installed->pathComponents;
    memento->currentFolder = currentFolderPathManager.Load()->CreateMemento();
    return memento;
}

void MainSearchPathManager::SetPathEntries(PathEntryVector entries, Tolvex::Notification& problems) {
    const Tolvex::DiagnosticScope scope;
    std::erase(entries, nullptr);
    for (auto& entry : entries)
        entry = WithoutPresentation(std::move(entry));
    DropRepeatedFolders(entries);
    const auto registry = TolvexPackages::GetPackageRegistrar().GetRegistry();
    detail::AcceptedEntries accepted = detail::ApplyPathAlterationRules(entries, *registry, problems);

    const auto stored = installedPaths.Load()->storedPath;
    const auto after = std::make_shared<const PathEntryVector>(std::move(accepted.entries));
    PathChange change = Compose({pathFactory.CreatePath(after, stored), stored->GetMainEntries(), after});
    if (*change.paths->pathComponents != accepted.components)
        change.paths->pathComponents = std::make_shared<const Components>(std::move(accepted.components));
    change.isSet = true;
    InstallNewPath(change);
}

void MainSearchPathManager::SetPathEntries(const CanonicalIRIRange& folders, Tolvex::Notification& problems) {
    const auto installed = installedPaths.Load();
    const bool isFrontOurs = !GetCurrentFolderComponent(); // else its entries are the component's own
    const auto find = [&](const CanonicalAbsoluteIRI& folder) -> std::shared_ptr<const IPathEntry> {
        if (auto stored = installed->storedPath->GetPathEntryFromAbsoluteIRI(folder); stored || !isFrontOurs)
            return stored;
        auto inFront = installed->path->GetPathEntryFromAbsoluteIRI(folder);
        return inFront != nullptr && inFront == WithoutPresentation(inFront) ? inFront : nullptr;
    };
    PathEntryVector entries;
    std::vector<Tolvex::AbsoluteIRI> missing;
    for (const CanonicalAbsoluteIRI& folder : folders)
        if (entries.push_back(find(folder)); entries.back() == nullptr)
            missing.push_back(folder);
    PathEntryVector created = pathEntryFactory.CreatePathEntries(missing, folderMonitor, problems);
    for (auto next = created.begin(); auto& entry : entries)
        if (entry == nullptr)
            entry = std::move(*next++);
    SetPathEntries(std::move(entries), problems);
}

void MainSearchPathManager::SetPath(std::shared_ptr<const IPath> path) {
    Tolvex::Notification problems;
    SetPathEntries(*path->GetMainEntries(), problems);
}

std::shared_ptr<void> MainSearchPathManager::PushMutabilityPolicy(PathManagerMutabilityPolicy policy) {
    const auto saved = *mutabilityPolicy;
    const auto restore = [saved, cell = mutabilityPolicy](void*) { *cell = saved; };
    std::shared_ptr<void> token(mutabilityPolicy.get(), restore);
    *mutabilityPolicy = policy;
    return token;
}

void MainSearchPathManager::SetMutabilityPolicy(PathManagerMutabilityPolicy policy) {
    *mutabilityPolicy = policy;
}

void MainSearchPathManager::SetCurrentFolderPolicy(CurrentFolderPolicy policy) {
    if (policy == currentFolderPolicy)
        return;
    const auto before = std::exchange(currentFolderPolicy, policy);
    try {
        SetCurrentFolderPathManager();
    } catch (...) {
        currentFolderPolicy = before;
        throw;
    }
    pendingRefresh.reset();
    if (changeInProgress)
        pendingRefresh = RefreshType::knownChanges;
    else
        Install(UpdateEntries(), /*isRefresh*/ false);
}

void MainSearchPathManager::SetCurrentFolderPathManager() {
    std::shared_ptr<ICurrentFolderPathManager> manager = currentFolderPathManagerFactory->Create(currentFolderPolicy);
    manager->ConnectToCurrentFolderChanged([this](const auto&, const auto&) { HandleCurrentFolderChanged(); });
    currentFolderPathManager.Exchange(std::move(manager));
}

/// Puts the present path of the current folder in front.
void MainSearchPathManager::HandleCurrentFolderChanged() {
    if (changeInProgress)
        Refresh(RefreshType::knownChanges);
    else
        InstallNewPath(Compose());
}

void MainSearchPathManager::HandleRegistryChange() {
    currentFolderPathManager.Load()->UpdateCurrentFolderComponent();
    Refresh(RefreshType::knownChanges);
}

void MainSearchPathManager::RefreshPath(RefreshType type) {
    Refresh(type);
}

void MainSearchPathManager::RebuildPath() {
    InstallNewPath(Compose());
    pathEntryFactory.UpdateObservation(*GetMonitoredPath()->GetMainEntries(), folderMonitor);
}

void MainSearchPathManager::Refresh(RefreshType type) {
    const Tolvex::DiagnosticScope scope;
    if (pendingRefresh)
        type = std::max(type, *pendingRefresh);
    if (changeInProgress) {
        pendingRefresh = type;
        return;
    }
    pendingRefresh.reset();
    MarkEntriesOutOfDate(type);
    const UpdatedEntries updated = UpdateEntries();
    if (updated.stored.path == installedPaths.Load()->storedPath && IsCurrentFolderInFront())
        return NoteRefreshed(updated.upTo);
    Install(updated, /*isRefresh*/ true);
}

/// Asks those entries that may be out of date, and has new ones made of those that are.
MainSearchPathManager::UpdatedEntries MainSearchPathManager::UpdateEntries() {
    const Tolvex::ChangeReport report = pathEntryFactory.GetChangesSince(refreshedUpTo);
    PathEntryRefresher refresher(pathEntryFactory, folderMonitor);
    for (const auto& entry : FindEntriesToAsk(report))
        refresher.Refresh(entry);
    if (isFrontToBeAsked || report.askEachObserver || !report.changed.empty())
        static_cast<void>(currentFolderPathManager.Load()->RequestRefresh(RefreshType::knownChanges));

    return {refresher.Replace(installedPaths.Load()->storedPath, pathFactory), report.now};
}

void MainSearchPathManager::Install(const UpdatedEntries& updated, bool isRefresh) {
    PathChange change = Compose(updated.stored);
    change.isRefresh = isRefresh;
    change.refreshedUpTo = updated.upTo;
    InstallNewPath(change);
}

/// Whether the installed path has in front what stands for the current folder now.
bool MainSearchPathManager::IsCurrentFolderInFront() const {
    const auto installed = installedPaths.Load();
    return HaveSameMainEntries(*currentFolderPathManager.Load()->GetCurrentFolderPath(*installed->storedPath),
                               *installed->currentFolderPath);
}

/// What stands for the current folder is read again at once. While it is not in front nobody watches it, so that it
/// cannot know what changed since it was read.
void MainSearchPathManager::MarkEntriesOutOfDate(RefreshType type) const {
    if (!IsCurrentFolderInFront())
        type = std::max(type, RefreshType::markCurrentFolder);
    MarkPathEntriesOutOfDate(type);
    if (type != RefreshType::knownChanges)
        static_cast<void>(currentFolderPathManager.Load()->RequestRefresh(type));
}

/// Those of the current folder are marked by whoever keeps it.
void MainSearchPathManager::MarkPathEntriesOutOfDate(RefreshType type) const {
    if (type == RefreshType::knownChanges || type == RefreshType::markCurrentFolder)
        return;
    const auto local = Tolvex::createLocalEventMgr();
    installedPaths.Load()->storedPath->ForEachEntry(SearchScope::All(), [&local](const auto& entry) {
        local->Publish(Tolvex::FileFolderChangedEvent(entry->GetIRI()));
        return false;
    });
    local->Deliver();
}

/// The stored main entries that may be out of date.
PathEntryVector MainSearchPathManager::FindEntriesToAsk(const Tolvex::ChangeReport& report) const {
    const auto stored = installedPaths.Load()->storedPath;
    if (report.askEachObserver)
        return *stored->GetMainEntries();
    PathEntryVector entries = toAsk.sinceRefresh;
    entries.insert(entries.end(), toAsk.foreign.begin(), toAsk.foreign.end());
    for (const CanonicalAbsoluteIRI& folder : report.changed)
        if (const auto entry = stored->GetPathEntryFromAbsoluteIRI(folder))
            entries.push_back(stored->GetMainEntryForEntry(*entry));
    return entries;
}

/// Every entry on the path that the factory answers for has been asked, or was made since.
void MainSearchPathManager::NoteRefreshed(Tolvex::ChangeToken now) {
    refreshedUpTo = now;
    toAsk.sinceRefresh.clear();
    isFrontToBeAsked =
        std::ranges::any_of(*installedPaths.Load()->currentFolderPath->GetMainEntries(), [this](const auto& entry) {
            return pathEntryFactory.GetEntryState(*entry).source == PathEntrySource::unknown;
        });
}

PathChange MainSearchPathManager::Compose(const StoredPathChange& stored) const {
    return ComposePaths(*installedPaths.Load(), stored, *currentFolderPathManager.Load());
}

/// For the present stored path.
PathChange MainSearchPathManager::Compose() const {
    return Compose(StoredPathChange{installedPaths.Load()->storedPath, nullptr, nullptr});
}

void MainSearchPathManager::InstallNewPath(const PathChange& change) {
    using enum PathChangeEvent::Stage;
    const std::array events{MakeEvent(beforeChange, change), MakeEvent(afterChange, change),
                            MakeEvent(afterwards, change)};
    switch (*mutabilityPolicy) {
    case PathManagerMutabilityPolicy::allAlterations:
        break;
    case PathManagerMutabilityPolicy::noAddingOrRemoving:
        if (!change.mainDifference.GetAdded()->empty() || !change.mainDifference.GetRemoved()->empty())
            throw PathAlterationNotSupportedException();
        break;
    default:
        Tolvex::DiagnosticTerminate("Unidentified PathManagerMutabilityPolicy assigned to MainSearchPathManager");
    }
    if (changeInProgress)
        throw RecursivePathChangeException();
    {
        const ChangeGuard guard(changeInProgress);
        eventManager->PublishNow(events[0]);
        Install(change);
        eventManager->PublishNow(events[1]);
        eventManager->PublishNow(events[2]);
    }
    if (pendingRefresh)
        Refresh(RefreshType::knownChanges);
}

/// What throws here comes before anything was replaced, but for a lack of memory behind the exchange.
void MainSearchPathManager::Install(const PathChange& change) {
    std::optional<EntriesToAsk> next;
    if (change.paths->storedPath != installedPaths.Load()->storedPath)
        next = FindEntriesToAsk(change);
    const auto replaced = installedPaths.Exchange(change.paths); // released behind all this
    if (next)
        std::swap(toAsk, *next);
    if (change.refreshedUpTo)
        NoteRefreshed(*change.refreshedUpTo);
    isFrontToBeAsked = isFrontToBeAsked || change.currentFolderChanged;
    folderMonitor.SetPath(change.paths->monitoredPath);
    UpdateObservation(change);
}

/// The stored main entries that a refresh will ask whatever the factory reports, once `change` is made.
MainSearchPathManager::EntriesToAsk MainSearchPathManager::FindEntriesToAsk(const PathChange& change) const {
    const IPath& storedPath = *change.paths->storedPath;
    const auto added = change.mainDifference.GetAdded();
    EntriesToAsk next{GetStillStored(toAsk.sinceRefresh, storedPath), GetStillStored(toAsk.foreign, storedPath)};
    next.sinceRefresh.insert(next.sinceRefresh.end(), added->begin(), added->end());
    for (const auto& come : {added, change.mainDifference.GetRefreshedAfter()})
        std::ranges::copy_if(*come, std::back_inserter(next.foreign), [this](const auto& entry) {
            return pathEntryFactory.GetEntryState(*entry).source == PathEntrySource::unknown;
        });
    return next;
}

/// Has what came watched, and what went no longer.
void MainSearchPathManager::UpdateObservation(const PathChange& change) const {
    const auto update = [this](const std::shared_ptr<const PathEntryVector>& entries) {
        pathEntryFactory.UpdateObservation(*entries, folderMonitor);
    };
    const auto updateWhatDiffers = [&update](const PathEntryVectorDifferentiator& difference) {
        for (const auto& entries : {difference.GetAdded(), difference.GetRemoved(), difference.GetRefreshedAfter()})
            update(entries);
    };
    updateWhatDiffers(change.currentFolderDifference);
    if (!change.isSet)
        return updateWhatDiffers(change.mainDifference);
    update(change.mainDifference.GetRemoved());
    update(change.paths->storedPath->GetMainEntries());
}

PathChangeEvent MainSearchPathManager::MakeEvent(PathChangeEvent::Stage stage, const PathChange& change) const {
    const PathEntryVectorDifferentiator& main = change.mainDifference;
    const PathEntryVectorDifferentiator& current = change.currentFolderDifference;
    return {stage,
            *this,
            change.currentFolderChanged,
            change.isRefresh,
            PathChangeEvent::IRIs(installedPaths.Load()->pathIRIs),
            PathChangeEvent::IRIs(change.paths->pathIRIs),
            main.GetAdded(),
            main.GetRemoved(),
            main.GetReordered(),
            current.GetAdded(),
            current.GetRemoved(),
            current.GetReordered(),
            PathChangeEvent::Entries(change.refreshedBefore),
            PathChangeEvent::Entries(change.refreshedAfter)};
}

} // namespace PathManagement
