#include "path_model/PathEntryFactory.h"

#include "foundation/diagnostics/Terminate.h"
#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"

#include <tbb/parallel_for.h>

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
    tbb::parallel_for(std::size_t{0}, locations.size(), [&](std::size_t i) {
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

PathEntrySource PathEntryFactory::GetEntrySource(const IPathEntry& entry) const {
    const auto live = building.cache.Find(entry.GetIRI());
    return live && live->entry.get() == &entry ? live->source : PathEntrySource::unknown;
}

PathEntryFactoryCounters PathEntryFactory::GetCounters() const {
    return {building.foldersListed, building.entriesBuilt, building.entriesReused, building.cache.GetCount()};
}

std::shared_ptr<const IPathEntry> PathEntryFactory::CreatePathEntry(const CanonicalAbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const {
    if (auto live = FindUpToDate(location))
        return live;
    return EntryBuilder(building, monitor, location).BuildOrEmpty();
}

std::shared_ptr<const IPathEntry> PathEntryFactory::CreatePathEntry(const AbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const {
    if (const auto live = building.cache.Find(location))
        return CreatePathEntry(live->entry->GetIRI(), monitor);
    return CreateFromExistingFolder(location, monitor);
}

std::shared_ptr<const PathEntry> PathEntryFactory::FindUpToDate(const AbsoluteIRI& location) const {
    const auto live = building.cache.Find(location);
    if (!live || (live->cutFromAbove && live->builtUnder != location) || live->entry->IsOutOfDate())
        return nullptr;
    ++building.entriesReused;
    return live->entry;
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
        if (auto live = FindUpToDate(location))
            return live;
    auto folder = building.storage->openFolder(location);
    const CanonicalAbsoluteIRI canonical = folder->getCanonicalLocation();
    if (canonical != location && isPresent(canonical))
        if (auto live = FindUpToDate(canonical))
            return live;
    return EntryBuilder(building, monitor, canonical).Build(std::move(folder));
}

Tolvex::ChangeReport PathEntryFactory::GetChangesSince(Tolvex::ChangeToken token) const {
    return building.observers.getChangesSince(token);
}

void PathEntryFactory::LoadToolboxCache(std::istream&, const AbsoluteIRI&) {
    throw Tolvex::InternalException("This build of the search path reads no path cache file.");
}

void PathEntryFactory::WriteToolboxCache(std::ostream&, const AbsoluteIRI&) const {
    throw Tolvex::InternalException("This build of the search path writes no path cache file.");
}

void PathEntryFactory::DropToolboxCache() {}

FolderMonitoringLevel PathEntryFactory::GetObservedLevel(const CanonicalAbsoluteIRI& location) const {
    const auto live = building.cache.Find(location);
    return live ? live->level : FolderMonitoringLevel::none;
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
