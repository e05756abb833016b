#include "FoldersOnPath.h"

#include "foundation/components/PackageStore.h"
#include "foundation/environment/StorageAccess.h"
#include "path_utilities/PathText.h"
#include "search_path/Accessors.h"

#include <unordered_map>

namespace TolvexPath {

using PathManagement::FolderMonitoringLevel;
using PathManagement::IPathEntry;
using PathManagement::PathEntrySource;
using PathManagement::PathEntryType;

namespace {

std::string GetRefusal(PathEntryType kind) {
    switch (kind) {
    case PathEntryType::packageFolder:
        return "packageDirectoriesNotAllowedOnPath";
    case PathEntryType::privateFolder:
        return "privateDirectoriesNotAllowedOnPath";
    case PathEntryType::resourcesFolder:
        return "resourcesDirectoriesNotAllowedOnPath";
    default:
        return "methodDirectoriesNotAllowedOnPath"; // a class within a class, too
    }
}

void TellWrongPackageFolder(const TolvexPackages::IPackageRegistry& registry,
                            const Tolvex::CanonicalAbsoluteIRI& folder, Tolvex::Notification& problems) {
    using PathManagement::GetStringFromIRI;
    const auto owner = registry.FindPackageOfFolder(folder);
    const auto package = owner ? registry.FindPackage(*owner) : nullptr;
    if (package != nullptr && package->GetRootFolder() != folder)
        problems.Add({"TOLVEX:tpath",
                      "packageMemberFoldersNotAllowedOnPath",
                      {GetStringFromIRI(folder),
                       Tolvex::ustring(u"'").append(TolvexPackages::GetPackageText(*owner)).append(u"'"),
                       GetStringFromIRI(package->GetRootFolder())}});
    else if (package == nullptr && registry.IsFolderOfUninstalledPackage(folder))
        problems.Add({"TOLVEX:tpath", "uninstalledPackagesNotAllowedOnPath", {GetStringFromIRI(folder)}});
}

} // namespace

std::vector<FolderOnPath> DescribeFolders(const PathManagement::IPath& path) {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    std::vector<FolderOnPath> folders;
    for (const auto& entry : *path.GetMainEntries())
        folders.push_back({entry, CountFiles(*entry), factory.GetEntryState(*entry)});
    return folders;
}

void TellWrongKinds(const PathManagement::PathEntryVector& entries, Tolvex::Notification& problems) {
    const auto registry = TolvexPackages::GetPackageRegistrar().GetRegistry();
    for (const auto& entry : entries) {
        if (entry == nullptr)
            continue;
        if (entry->GetPathEntryType() == PathEntryType::mainFolder)
            TellWrongPackageFolder(*registry, entry->GetIRI(), problems);
        else
            problems.Add({"TOLVEX:tpath",
                          GetRefusal(entry->GetPathEntryType()),
                          {PathManagement::GetStringFromIRI(entry->GetIRI())}});
    }
}

void TellUnreadableBelow(const PathManagement::PathEntryVector& entries, Tolvex::Notification& problems) {
    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
    Tolvex::FolderListing listing;
    const auto tell = [&](const IPathEntry& folder) {
        try {
            storage->openFolder(folder.GetIRI())->list(listing);
        } catch (const Tolvex::StorageError& error) {
            problems.Add(error.GetMessageIdentifier());
        }
    };
    for (const auto& entry : entries) {
        if (entry == nullptr)
            continue;
        entry->ForEachEntry(PathManagement::SearchScope::All(), [&](const auto& below) {
            if (below.get() != entry.get() && below->GetPathItems()->empty())
                tell(*below);
            return false;
        });
    }
}

std::vector<RepeatedFolder> FindRepeatedFolders(std::span<const Tolvex::AbsoluteIRI> locations) {
    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
    std::unordered_map<Tolvex::AbsoluteIRI, const Tolvex::AbsoluteIRI*, Tolvex::IRIHash> first;
    std::vector<RepeatedFolder> repeated;
    for (const Tolvex::AbsoluteIRI& location : locations) {
        const Tolvex::CanonicalAbsoluteIRI folder = storage->canonicalise(location);
        const auto [known, isNew] = first.emplace(folder, &location);
        if (!isNew)
            repeated.push_back({location, *known->second, folder});
    }
    return repeated;
}

std::size_t CountFiles(const IPathEntry& entry) {
    std::size_t count = 0;
    entry.ForEachEntry(PathManagement::SearchScope::All(), [&count](const std::shared_ptr<const IPathEntry>& below) {
        count += below->GetPathItems()->size();
        return false;
    });
    return count;
}

std::string_view GetSourceName(PathEntrySource source) {
    switch (source) {
    case PathEntrySource::disk:
        return "disk";
    case PathEntrySource::cacheFile:
        return "cache file";
    case PathEntrySource::unknown:
        break;
    }
    return "unknown";
}

std::string_view GetWatchName(FolderMonitoringLevel level) {
    switch (level) {
    case FolderMonitoringLevel::notification:
        return "notification";
    case FolderMonitoringLevel::timeCheck:
        return "time check";
    case FolderMonitoringLevel::none:
        break;
    }
    return "not watched";
}

} // namespace TolvexPath
