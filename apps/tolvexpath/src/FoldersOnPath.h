#pragma once

#include "path_interfaces/IPath.h"
#include "path_interfaces/IPathEntryFactory.h"

#include <string_view>

namespace TolvexPath {

/// A folder that stands on a path by itself.
struct FolderOnPath {
    std::shared_ptr<const PathManagement::IPathEntry> entry;
    std::size_t fileCount; ///< with those of the special folders below it
    PathManagement::PathEntryState state;
};

/// The main folders of a path in order, with what the process's factory knows of them.
[[nodiscard]] std::vector<FolderOnPath> DescribeFolders(const PathManagement::IPath& path);

[[nodiscard]] std::size_t CountFiles(const PathManagement::IPathEntry& entry);

/// "disk", "cache file" or "unknown".
[[nodiscard]] std::string_view GetSourceName(PathManagement::PathEntrySource source);

/// "notification", "time check" or "not watched".
[[nodiscard]] std::string_view GetWatchName(PathManagement::FolderMonitoringLevel level);

} // namespace TolvexPath
