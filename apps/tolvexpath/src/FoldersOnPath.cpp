#include "FoldersOnPath.h"

#include "search_path/Accessors.h"

namespace TolvexPath {

using PathManagement::FolderMonitoringLevel;
using PathManagement::IPathEntry;
using PathManagement::PathEntrySource;

std::vector<FolderOnPath> DescribeFolders(const PathManagement::IPath& path) {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    std::vector<FolderOnPath> folders;
    for (const auto& entry : *path.GetMainEntries())
        folders.push_back({entry, CountFiles(*entry), factory.GetEntryState(*entry)});
    return folders;
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
