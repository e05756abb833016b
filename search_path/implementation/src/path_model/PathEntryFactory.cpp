#include "path_model/PathEntryFactory.h"

#include "foundation/diagnostics/Terminate.h"
#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"
#include "path_model/SideBySide.h"
#include "path_model/ToolboxCacheLoader.h"
#include "path_utilities/ToolboxCacheWriter.h"
#include "path_utilities/UniformFolderMonitor.h"

#include <array>
#include <optional>
#include <unordered_map>

namespace PathManagement {

using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;

PathEntryFactory::PathEntryFactory(CanonicalAbsoluteIRI installationFolder, Tolvex::StorageSystemReference storage,
                                   const TolvexPackages::IPackageDescriptorFactory& descriptors,
                                   boost::shared_ptr<Tolvex::EventMgr> eventManager,
                                   Tolvex::IFileFolderObserverFactory& observers)
    : installationFolder(std::move(installationFolder)), building{std::move(storage), descriptors,
                                                                  std::move(eventManager), observers} {
    destroyedConnection = building.eventManager->Subscribe<PathEntryWillBeDestroyedEvent>(
        [this](const PathEntryWillBeDestroyedEvent& event) {
            building.cache.Remove(event.GetCanonicalIRI(), event.GetEntry());
        });
}

PathEntryFactory::~PathEntryFactory() = default;

PathEntryVector PathEntryFactory::CreatePathEntries(std::span<const AbsoluteIRI> locations,
                                                    const IFolderMonitor& monitor,
                                                    Tolvex::Notification& problems) const {
    PathEntryVector entries(locations.size());
    std::vector<std::optional<Tolvex::MessageIdentifier>> refusals(locations.size());
    ForEachSideBySide(locations.size(), [&](std::size_t i) {
        try {
            entries[i] = CreateFromExistingFolder(locations[i], monitor);
        } catch (const Tolvex::StorageError& error) {
            refusals[i] = error.GetMessageIdentifier();
        }
    });
    for (auto& refusal : refusals)
        if (refusal)
            problems.Add(std::move(*refusal));
    UseOneEntryForOneFolder(entries);
    return entries;
}

/// Two spellings of one folder may have been built side by side. The entry that is kept here is used for both.
void PathEntryFactory::UseOneEntryForOneFolder(PathEntryVector& entries) const {
    std::unordered_map<AbsoluteIRI, std::size_t, Tolvex::IRIHash> firstPlaces;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!entries[i])
            continue;
        const auto [first, isFirst] = firstPlaces.emplace(entries[i]->GetIRI(), i);
        auto& other = entries[first->second];
        if (isFirst || other == entries[i])
            continue;
        const auto kept = building.cache.Find(entries[i]->GetIRI());
        if (kept && kept->entry == entries[i])
            other = entries[i];
        else
            entries[i] = other;
    }
}

std::shared_ptr<const IPathEntry> PathEntryFactory::GetLiveEntry(const CanonicalAbsoluteIRI& location) const {
    const auto live = building.cache.Find(location);
    return live ? live->entry : nullptr;
}

PathEntryState PathEntryFactory::GetEntryState(const IPathEntry& entry) const {
    const auto live = building.cache.Find(entry.GetIRI());
    return live && live->entry.get() == &entry ? PathEntryState{live->source, live->level} : PathEntryState{};
}

PathEntryFactoryCounters PathEntryFactory::GetCounters() const {
    return {building.foldersListed, building.entriesBuilt, building.entriesReused, building.cache.GetCount()};
}

std::shared_ptr<const IPathEntry> PathEntryFactory::CreatePathEntry(const CanonicalAbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const {
    if (auto live = FindUpToDate(location, monitor))
        return live;
    return EntryBuilder(building, monitor, location).BuildOrEmpty();
}

std::shared_ptr<const IPathEntry> PathEntryFactory::CreatePathEntry(const AbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const {
    if (const auto live = building.cache.Find(location))
        return CreatePathEntry(live->entry->GetIRI(), monitor);
    return CreateFromExistingFolder(location, monitor);
}

std::shared_ptr<const PathEntry> PathEntryFactory::FindUpToDate(const AbsoluteIRI& location,
                                                                const IFolderMonitor& monitor) const {
    const auto live = building.cache.Find(location);
    if (!live || (live->cutFromAbove && live->builtUnder != location))
        return nullptr;
    const bool isWatched = live->level != FolderMonitoringLevel::none;
    // Nobody looks at the disk for an entry from a cache file until it was handed out.
    const bool isKnown =
        isWatched || (live->source == PathEntrySource::cacheFile && building.cache.TakeFirstUse(*live->entry));
    if (isKnown ? live->entry->IsOutOfDate() : IsOutOfDateAtOneLook(*live->entry))
        return nullptr;
    if (!isWatched)
        UpdateObservation(*live->entry, monitor);
    ++building.entriesReused;
    return live->entry;
}

/// For an entry whose folders nobody looks at: looks at them once.
bool PathEntryFactory::IsOutOfDateAtOneLook(const PathEntry& entry) const {
    std::vector<CanonicalAbsoluteIRI> locations;
    entry.ForEachEntry(SearchScope::All(), [&locations](const std::shared_ptr<const IPathEntry>& each) {
        locations.push_back(each->GetIRI());
        return false;
    });
    building.observers.lookAt(locations);
    return entry.IsOutOfDate();
}

void PathEntryFactory::UpdateObservation(std::span<const std::shared_ptr<const IPathEntry>> entries,
                                         const IFolderMonitor& monitor) const {
    for (const auto& entry : entries)
        UpdateObservation(*entry, monitor);
}

/// A folder that the monitor does not know is observed like the one above it.
void PathEntryFactory::UpdateObservation(const IPathEntry& top, const IFolderMonitor& monitor) const {
    std::vector<std::pair<CanonicalAbsoluteIRI, FolderMonitoringLevel>> above;
    top.ForEachEntry(SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
        const CanonicalAbsoluteIRI location = entry->GetIRI();
        while (!above.empty() && !above.back().first.isAncestorOf(location))
            above.pop_back();
        FolderMonitoringLevel level = monitor.GetMonitoringLevel(location);
        if (level == FolderMonitoringLevel::none && !above.empty())
            level = above.back().second;
        above.emplace_back(location, level);
        if (building.cache.SetLevel(*entry, level))
            building.observers.setObservationLevel(location, level);
        return false;
    });
}

/// Opens the folder once, whatever it is called, and asks for the entry under its one name. An empty entry kept for a
/// folder that cannot be read does not stand for the folder here: opening it tells why.
std::shared_ptr<const PathEntry> PathEntryFactory::CreateFromExistingFolder(const AbsoluteIRI& location,
                                                                            const IFolderMonitor& monitor) const {
    const auto isPresent = [&](const AbsoluteIRI& at) {
        const auto live = building.cache.Find(at);
        return live && live->folderPresent;
    };
    if (isPresent(location))
        if (auto live = FindUpToDate(location, monitor))
            return live;
    auto folder = building.storage->openFolder(location);
    const CanonicalAbsoluteIRI canonical = folder->getCanonicalLocation();
    if (canonical != location && isPresent(canonical))
        if (auto live = FindUpToDate(canonical, monitor))
            return live;
    return EntryBuilder(building, monitor, canonical).Build(std::move(folder));
}

Tolvex::ChangeReport PathEntryFactory::GetChangesSince(Tolvex::ChangeToken token) const {
    return building.observers.getChangesSince(token);
}

void PathEntryFactory::LoadToolboxCache(std::istream& cacheFile, const AbsoluteIRI& cacheRoot,
                                        Tolvex::FileTime writtenAt) {
    const auto root = building.storage->openFolder(cacheRoot);
    ToolboxCacheLoader loader(building, root->getCanonicalLocation(), root->getPathComparator(), writtenAt);
    {
        const auto lock = building.cache.LockShared();
        loader.Load(cacheFile);
    }
    for (const auto& entries : loader.GetEntries()) {
        building.cache.AddFromCacheFile(entries);
        building.entriesBuilt += entries.size();
    }
}

void PathEntryFactory::WriteToolboxCache(std::ostream& cacheFile, const AbsoluteIRI& cacheRoot) const {
    const CanonicalAbsoluteIRI root = building.storage->openFolder(cacheRoot)->getCanonicalLocation();
    ToolboxCacheWriter writer(cacheFile, root);
    for (const CachedEntry& live : building.cache.GetTopEntries())
        if (live.entry->GetPathEntryType() == PathEntryType::mainFolder && root.isAncestorOf(live.entry->GetIRI()))
            if (const auto entry = GetForWriting(live))
                writer.Write(*entry);
    writer.Close();
}

/// What the folder of a kept entry holds now; null when it is gone.
std::shared_ptr<const PathEntry> PathEntryFactory::GetForWriting(const CachedEntry& live) const {
    const bool isLookedAt = live.level != FolderMonitoringLevel::none;
    if (live.folderPresent && isLookedAt && !live.entry->IsOutOfDate())
        return live.entry;
    const CanonicalAbsoluteIRI location = live.entry->GetIRI();
    try {
        return EntryBuilder(building, UniformFolderMonitor(FolderMonitoringLevel::none), location)
            .BuildUnrecorded(building.storage->openFolder(location));
    } catch (const Tolvex::StorageError&) {
        return nullptr;
    }
}

void PathEntryFactory::DropToolboxCache() {
    building.cache.DropCacheFile();
}

CanonicalAbsoluteIRI PathEntryFactory::GetInstallationFolder() const {
    return installationFolder;
}

std::span<const PathEntryType> PathEntryFactory::GetValidChildEntryTypesForEntryType(PathEntryType type) {
    using enum PathEntryType;
    static constexpr std::array ofMainOrPackage{packageFolder, methodFolder, uddClassFolder, privateFolder,
                                                resourcesFolder};
    static constexpr std::array ofMethod{uddClassFolder, privateFolder, resourcesFolder};
    static constexpr std::array ofUddClass{privateFolder};
    switch (type) {
    case mainFolder:
    case packageFolder:
        return ofMainOrPackage;
    case methodFolder:
        return ofMethod;
    case uddClassFolder:
        return ofUddClass;
    case privateFolder:
    case resourcesFolder:
        return {};
    }
    Tolvex::DiagnosticTerminate("Received unexpected PathEntry Type");
}

void PathEntryFactory::PushChildEntryToCurrentPathEntry(PathEntryChildren& children,
                                                        std::shared_ptr<const IPathEntry> child) {
    switch (child->GetPathEntryType()) {
    case PathEntryType::packageFolder:
        children.packageEntries.push_back(std::move(child));
        return;
    case PathEntryType::methodFolder:
        children.methodEntries.push_back(std::move(child));
        return;
    case PathEntryType::uddClassFolder:
        children.uddClassEntries.push_back(std::move(child));
        return;
    case PathEntryType::privateFolder:
        children.privateEntry = std::move(child);
        return;
    case PathEntryType::resourcesFolder:
        children.resourcesEntry = std::move(child);
        return;
    case PathEntryType::mainFolder:
        break;
    }
    Tolvex::DiagnosticTerminate("Unexpected PathEntry Type.");
}

} // namespace PathManagement
