#pragma once

#include "foundation/messages/Notification.h"
#include "path_interfaces/IPath.h"
#include "path_interfaces/IPathEntryFactory.h"

#include <span>
#include <string>
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

/// Adds for each folder that may not stand on a path by itself the message with which a path leaves it out. Null
/// entries are passed over.
void TellWrongKinds(const PathManagement::PathEntryVector& entries, Tolvex::Notification& problems);

/// Adds what keeps special folders of these from being read: such a folder has an entry without contents. Null entries
/// are passed over.
void TellUnreadableBelow(const PathManagement::PathEntryVector& entries, Tolvex::Notification& problems);

/// A folder that is named again, by the same name or through a link.
struct RepeatedFolder {
    Tolvex::AbsoluteIRI location;
    Tolvex::AbsoluteIRI first; ///< how it is named at its first place
    Tolvex::CanonicalAbsoluteIRI folder;
};

/// By what the names lead to; in the order of the locations.
[[nodiscard]] std::vector<RepeatedFolder> FindRepeatedFolders(std::span<const Tolvex::AbsoluteIRI> locations);

[[nodiscard]] std::size_t CountFiles(const PathManagement::IPathEntry& entry);

/// "disk", "cache file" or "unknown".
[[nodiscard]] std::string_view GetSourceName(PathManagement::PathEntrySource source);

/// "notification", "time check" or "not watched".
[[nodiscard]] std::string_view GetWatchName(PathManagement::FolderMonitoringLevel level);

} // namespace TolvexPath
