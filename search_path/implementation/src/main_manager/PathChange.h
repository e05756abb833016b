#pragma once

#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IMainSearchPathManager.h"
#include "path_interfaces/IPathFactory.h"
#include "path_interfaces/events/PathChangeEvent.h"
#include "path_utilities/PathEntryVectorDifferentiator.h"

namespace PathManagement {

/// What the last change installed. Replaced whole, never edited.
struct InstalledPaths {
    std::shared_ptr<const IPath> storedPath;        ///< what the user has set
    std::shared_ptr<const IPath> path;              ///< the current folder's path and the stored one, no folder twice
    std::shared_ptr<const IPath> secondaryPath;     ///< `path` without what only the current folder brought
    std::shared_ptr<const IPath> monitoredPath;     ///< the current folder's path, then the stored one
    std::shared_ptr<const IPath> currentFolderPath; ///< what stands in front in `path`
    std::shared_ptr<const IMainSearchPathManager::IRIs> pathIRIs;
    std::shared_ptr<const IMainSearchPathManager::Components> pathComponents;
    bool modularPackagesEnabled = false;
};

/// A change on its way to being installed: the new paths, and what tells them from the installed ones.
struct PathChange {
    std::shared_ptr<InstalledPaths> paths;
    bool currentFolderChanged = false;
    bool isRefresh = false;
    /// Somebody set the stored entries: what is known of the packages of those that stay may have changed, too.
    bool isSet = false;
    PathEntryVectorDifferentiator mainDifference;          ///< of the stored main entries
    PathEntryVectorDifferentiator currentFolderDifference; ///< of those of the current folder's path
    PathChangeEvent::Entries refreshedBefore;              ///< of both differences, each entry once
    PathChangeEvent::Entries refreshedAfter;
    /// Only of a refresh: up to here the observers have been asked for all entries of the new path.
    std::optional<Tolvex::ChangeToken> refreshedUpTo;
};

/// What is to be the stored path, and what tells it from the installed one.
struct StoredPathChange {
    std::shared_ptr<const IPath> path;
    /// The main entries of both, in order; those that both have in the same places may be left out of both.
    std::shared_ptr<const PathEntryVector> before;
    std::shared_ptr<const PathEntryVector> after;
};

/// Paths without any entry, to start from.
[[nodiscard]] std::shared_ptr<const InstalledPaths> MakeEmptyPaths(const IPathFactory& pathFactory,
                                                                   bool modularPackagesEnabled);

/// Makes the paths for the stored path, which may be the installed one, and the present current folder, and compares
/// them with the installed ones. Takes over what does not change. REQUIRES: each folder stands once on `stored.path`.
[[nodiscard]] PathChange ComposePaths(const InstalledPaths& installed, const StoredPathChange& stored,
                                      const ICurrentFolderPathManager& currentFolder);

[[nodiscard]] bool HaveSameMainEntries(const IPath& a, const IPath& b);

} // namespace PathManagement
