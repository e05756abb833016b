#include "main_manager/PathChange.h"

#include "path_utilities/ConcatenatedPath.h"
#include "path_utilities/DeduplicatedPath.h"
#include "path_utilities/MultiMaskedPath.h"

#include <algorithm>
#include <utility>

namespace PathManagement {

namespace {

/// The main entries of `path` whose folders are not on `other`.
PathEntryVector GetMainEntriesNotOn(const IPath& other, const IPath& path) {
    PathEntryVector entries = *path.GetMainEntries();
    std::erase_if(entries, [&other](const auto& entry) { return other.IsEntryOnPath(*entry); });
    return entries;
}

std::shared_ptr<const IMainSearchPathManager::IRIs> GetLocations(const PathEntryVector& entries) {
    auto locations = std::make_shared<IMainSearchPathManager::IRIs>();
    locations->reserve(entries.size());
    for (const auto& entry : entries)
        locations->push_back(entry->GetIRI());
    return locations;
}

void ComposeViews(InstalledPaths& paths) {
    paths.path = std::make_shared<const DeduplicatedPath>(
        std::vector<std::shared_ptr<const IPath>>{paths.currentFolderPath, paths.storedPath});
    paths.secondaryPath = std::make_shared<const MultiMaskedPath>(
        paths.path, GetMainEntriesNotOn(*paths.storedPath, *paths.currentFolderPath));
    paths.monitoredPath = std::make_shared<const ConcatenatedPath>(paths.currentFolderPath, paths.storedPath);
}

/// Puts the refreshed entries of both lists together; one that stands on both is told once.
void JoinRefreshed(PathChange& change) {
    auto before = std::make_shared<PathEntryVector>(*change.mainDifference.GetRefreshedBefore());
    auto after = std::make_shared<PathEntryVector>(*change.mainDifference.GetRefreshedAfter());
    const auto currentBefore = change.currentFolderDifference.GetRefreshedBefore();
    const auto currentAfter = change.currentFolderDifference.GetRefreshedAfter();
    for (std::size_t i = 0; i < currentBefore->size(); ++i) {
        if (std::ranges::find(*after, (*currentAfter)[i]) != after->end())
            continue;
        before->push_back((*currentBefore)[i]);
        after->push_back((*currentAfter)[i]);
    }
    change.refreshedBefore = std::move(before);
    change.refreshedAfter = std::move(after);
}

} // namespace

bool HaveSameMainEntries(const IPath& a, const IPath& b) {
    return &a == &b || *a.GetMainEntries() == *b.GetMainEntries();
}

std::shared_ptr<const InstalledPaths> MakeEmptyPaths(const IPathFactory& pathFactory, bool modularPackagesEnabled) {
    auto paths = std::make_shared<InstalledPaths>();
    paths->storedPath = pathFactory.CreatePath(std::make_shared<const PathEntryVector>(), nullptr);
    paths->currentFolderPath = paths->storedPath;
    paths->pathIRIs = std::make_shared<const IMainSearchPathManager::IRIs>();
    paths->pathComponents = std::make_shared<const IMainSearchPathManager::Components>();
    paths->modularPackagesEnabled = modularPackagesEnabled;
    ComposeViews(*paths);
    return paths;
}

PathChange ComposePaths(const InstalledPaths& installed, const StoredPathChange& stored,
                        const ICurrentFolderPathManager& currentFolder) {
    PathChange change;
    change.paths = std::make_shared<InstalledPaths>(installed);
    InstalledPaths& paths = *change.paths;
    paths.storedPath = stored.path;
    auto current = currentFolder.GetCurrentFolderPath(*paths.storedPath);
    if (!HaveSameMainEntries(*current, *installed.currentFolderPath))
        paths.currentFolderPath = std::move(current);
    ComposeViews(paths);

    PathEntryVectorDifferentiator& main = change.mainDifference;
    if (stored.path != installed.storedPath)
        main.Compare(*stored.before, *stored.after, ComparisonFilter::asListed);
    if (!main.GetAdded()->empty() || !main.GetRemoved()->empty() || !main.GetReordered()->empty())
        paths.pathIRIs = GetLocations(*stored.path->GetMainEntries());
    PathEntryVectorDifferentiator& front = change.currentFolderDifference;
    front.Compare(*installed.currentFolderPath->GetMainEntries(), *paths.currentFolderPath->GetMainEntries(),
                  ComparisonFilter::asListed);
    change.currentFolderChanged = !front.GetAdded()->empty() || !front.GetRemoved()->empty();
    JoinRefreshed(change);
    return change;
}

} // namespace PathManagement
