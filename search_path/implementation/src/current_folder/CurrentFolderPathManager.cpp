#include "current_folder/CurrentFolderPathManager.h"

#include "current_folder/PathEntryDecorator.h"
#include "foundation/components/ComponentFeature.h"
#include "foundation/diagnostics/DiagnosticScope.h"
#include "foundation/diagnostics/LogChannel.h"
#include "foundation/diagnostics/Terminate.h"
#include "foundation/environment/WorkingFolder.h"
#include "foundation/observers/FileFolderChangedEvent.h"
#include "path_interfaces/events/CurrentFolderComponentHasBeenChangedEvent.h"

#include <utility>

namespace PathManagement {

using Tolvex::CanonicalAbsoluteIRI;
using TolvexComponents::ComponentFeature;
using TolvexComponents::ComponentIdentifier;
using TolvexComponents::IModularPackageRegistry;

namespace {

/// Presents a private folder as a main folder whose private folder is the folder itself, so that it can be the current
/// folder. Walks see nothing but this entry. Always owned by a shared_ptr.
class PrivateToMainEntryDecorator final : public PathEntryDecorator,
                                          public std::enable_shared_from_this<PrivateToMainEntryDecorator> {
public:
    using PathEntryDecorator::PathEntryDecorator;

    [[nodiscard]] PathEntryType GetPathEntryType() const override { return PathEntryType::mainFolder; }

    [[nodiscard]] std::shared_ptr<const IPathEntry> GetPrivateEntry() const override { return GetDecoratedEntry(); }

    bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override {
        return scope.Contains(GetPathEntryType()) && callback(shared_from_this());
    }

    bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override {
        return ForEachEntry(scope, callback);
    }
};

std::shared_ptr<const IPathEntry> PresentPrivateAsMain(std::shared_ptr<const IPathEntry> entry) {
    if (entry->GetPathEntryType() != PathEntryType::privateFolder)
        return entry;
    return std::make_shared<const PrivateToMainEntryDecorator>(std::move(entry));
}

const Tolvex::LogChannel& GetCurrentFolderLog() {
    static const Tolvex::LogChannel log("searchpath::currentfolder");
    return log;
}

/// The entry that stands for the current folder: the component's own when there is a component, else the factory's. A
/// private folder stands for itself as a main folder. Never null.
std::shared_ptr<const IPathEntry> CreateCurrentFolderEntry(const IPathEntryFactory& pathEntryFactory,
                                                           const IFolderMonitor& folderMonitor,
                                                           const CanonicalAbsoluteIRI& folder,
                                                           const std::optional<ComponentIdentifier>& component,
                                                           const IModularPackageRegistry& packageRegistry) {
    const Tolvex::DiagnosticScope scope;
    if (GetCurrentFolderLog().IsEnabled(2))
        GetCurrentFolderLog().Write(2, " currentFolderIri.toString()=" + Tolvex::ToUtf8(folder.toString()));
    if (component)
        return packageRegistry.GetComponent(*component)->GetPathEntry(folder);
    return PresentPrivateAsMain(pathEntryFactory.CreatePathEntry(folder, folderMonitor));
}

/// The path of the current folder: of the entry when it stands for a main folder, else of none; inside a component,
/// with components switched on, the component's own.
std::shared_ptr<const IPath> CreateCurrentFolderPath(const IPathFactory& pathFactory,
                                                     const std::shared_ptr<const IPathEntry>& entry,
                                                     const std::optional<ComponentIdentifier>& component,
                                                     const IModularPackageRegistry& packageRegistry) {
    const Tolvex::DiagnosticScope scope;
    const bool areComponentsOn = ComponentFeature::IsOn();
    if (areComponentsOn && component)
        return packageRegistry.GetComponent(*component)->GetPath();
    const bool isMain = entry->GetPathEntryType() == PathEntryType::mainFolder;
    if (!areComponentsOn && GetCurrentFolderLog().IsEnabled(8))
        GetCurrentFolderLog().Write(8, isMain ? "Current folder path created successfully."
                                              : "Current folder path empty.");
    auto entries = std::make_shared<const PathEntryVector>(isMain ? PathEntryVector{entry} : PathEntryVector());
    return pathFactory.CreatePath(std::move(entries), nullptr);
}

} // namespace

CurrentFolderPathManager::CurrentFolderPathManager(boost::shared_ptr<Tolvex::EventMgr> events,
                                                   const IModularPackageRegistry& packageRegistry,
                                                   const IPathEntryFactory& pathEntryFactory,
                                                   const IPathFactory& pathFactory, const IFolderMonitor& folderMonitor,
                                                   const CanonicalAbsoluteIRI& currentFolder)
    : eventManager(std::move(events)), packageRegistry(packageRegistry), pathEntryFactory(pathEntryFactory),
      pathFactory(pathFactory), folderMonitor(folderMonitor), state([&] {
          auto first = std::make_shared<State>();
          Rebuild(currentFolder, *first);
          return first;
      }()),
      currentFolderChanged(std::make_shared<Signal>()) {
    using Tolvex::CurrentWorkingFolderChangedEvent;
    m_currentFolderListener = eventManager->Subscribe<CurrentWorkingFolderChangedEvent>(
        [this](const CurrentWorkingFolderChangedEvent& event) { HandleCurrentFolderChanged(event.getNew()); });
    if (m_currentFolderListener.isEmpty())
        Tolvex::DiagnosticTerminate("!m_currentFolderListener.isEmpty()");
}

CurrentFolderPathManager::~CurrentFolderPathManager() = default;

ICurrentFolderPathManager::Component CurrentFolderPathManager::GetCurrentFolderComponent() const {
    return state.Load()->component;
}

std::shared_ptr<const IPath> CurrentFolderPathManager::GetCurrentFolderPath() const {
    return state.Load()->path;
}

std::shared_ptr<const IPath> CurrentFolderPathManager::GetCurrentFolderPath(const IPath& mainPath) const {
    const auto present = state.Load();
    if (present->component || present->path->GetMainEntries()->empty())
        return present->path;
    const auto onMainPath = mainPath.GetPathEntryFromAbsoluteIRI(present->entry->GetIRI());
    if (!onMainPath || onMainPath == present->entry || onMainPath->GetPathEntryType() != PathEntryType::mainFolder)
        return present->path;
    return CreateCurrentFolderPath(pathFactory, onMainPath, present->component, packageRegistry);
}

void CurrentFolderPathManager::ConnectToCurrentFolderChanged(CurrentFolderChangedCallback callback) {
    currentFolderChanged->connect(callback);
}

void CurrentFolderPathManager::HandleCurrentFolderChanged(const CanonicalAbsoluteIRI& newFolder) {
    const Tolvex::DiagnosticScope scope;
    const auto before = state.Load();
    const auto after = Rebuild(newFolder);
    // Whoever is told may let go of this object.
    const auto signal = currentFolderChanged;
    const auto events = eventManager;
    (*signal)(before->path, before->component);
    if (before->component != after->component)
        events->Publish(CurrentFolderComponentHasBeenChangedEvent(before->component, after->component));
}

/// Replaces what stands for the current folder; gives what stands for it now.
std::shared_ptr<const CurrentFolderMemento> CurrentFolderPathManager::Rebuild(const CanonicalAbsoluteIRI& folder) {
    const auto next = std::make_shared<State>(*state.Load());
    try {
        Rebuild(folder, *next);
    } catch (...) {
        state.Exchange(next); // what was replaced so far stays replaced
        throw;
    }
    state.Exchange(next);
    return next;
}

void CurrentFolderPathManager::Rebuild(const CanonicalAbsoluteIRI& folder, State& next) const {
    next.component = packageRegistry.FindComponentOfFolder(folder);
    next.entry = CreateCurrentFolderEntry(pathEntryFactory, folderMonitor, folder, next.component, packageRegistry);
    next.path = CreateCurrentFolderPath(pathFactory, next.entry, next.component, packageRegistry);
}

void CurrentFolderPathManager::UpdateCurrentFolderComponent() {
    const auto present = state.Load();
    const CanonicalAbsoluteIRI folder = present->entry->GetIRI();
    if (packageRegistry.FindComponentOfFolder(folder) != present->component)
        HandleCurrentFolderChanged(folder);
}

std::pair<PathEntryVector, PathEntryVector> CurrentFolderPathManager::RequestRefresh(RefreshType type) {
    const Tolvex::DiagnosticScope scope;
    if (type != RefreshType::knownChanges)
        MarkCurrentFolderOutOfDate();
    const auto before = state.Load();
    if (!before->entry->IsOutOfDate())
        return {};
    const auto after = Rebuild(before->entry->GetIRI());
    return {{before->entry}, {after->entry}};
}

void CurrentFolderPathManager::MarkCurrentFolderOutOfDate() const {
    const auto local = Tolvex::createLocalEventMgr();
    state.Load()->path->ForEachEntry(SearchScope::All(), [&local](const std::shared_ptr<const IPathEntry>& entry) {
        local->Publish(Tolvex::FileFolderChangedEvent(entry->GetIRI().toString(), Tolvex::FrozenInclusion::included));
        return false;
    });
    local->Deliver();
}

std::shared_ptr<CurrentFolderMemento> CurrentFolderPathManager::CreateMemento() const {
    return std::make_shared<CurrentFolderMemento>(*state.Load());
}

void CurrentFolderPathManager::RestoreMemento(const CurrentFolderMemento& memento) {
    if (memento.entry->GetIRI() == state.Load()->entry->GetIRI())
        state.Exchange(std::make_shared<State>(memento));
}

} // namespace PathManagement
