#pragma once

#include "foundation/components/IPackageRegistry.h"
#include "foundation/messages/Notification.h"
#include "path_interfaces/IPathEntry.h"

#include <vector>

/// The rules for what may stand on the path, and the messages about alterations of it.
namespace PathManagement::detail {

using Tolvex::MessageIdentifier;

// One maker a message; the arguments in the message's order. Folders are given as GetStringFromIRI writes them,
// packages as GetTextFromPackage does.
[[nodiscard]] MessageIdentifier MakePackageDirectoriesNotAllowedOnPath(const ustring& folder);
[[nodiscard]] MessageIdentifier MakeMethodDirectoriesNotAllowedOnPath(const ustring& folder);
[[nodiscard]] MessageIdentifier MakePrivateDirectoriesNotAllowedOnPath(const ustring& folder);
[[nodiscard]] MessageIdentifier MakeResourcesDirectoriesNotAllowedOnPath(const ustring& folder);
[[nodiscard]] MessageIdentifier MakePackageMemberFoldersNotAllowedOnPath(const ustring& folder, const ustring& package,
                                                                         const ustring& rootFolder);
[[nodiscard]] MessageIdentifier MakeUninstalledPackagesNotAllowedOnPath(const ustring& folder);
[[nodiscard]] MessageIdentifier MakePackagesMustBeLastOnPath();
[[nodiscard]] MessageIdentifier MakeUninstalledPackageRemovedFromPath(const ustring& folder);
/// `advice` says what to do instead and may be empty.
[[nodiscard]] MessageIdentifier MakePackageMemberFolderRemovedFromPath(const ustring& folder, const ustring& advice,
                                                                       const ustring& package);
/// The version that is found first, and all others.
[[nodiscard]] MessageIdentifier MakeMultiplePackageVersionsOnPath(const ustring& found, const ustring& hidden);
[[nodiscard]] MessageIdentifier MakeAddPackageToPathInfo(const ustring& rootFolder);
[[nodiscard]] MessageIdentifier MakePathAlterationNotSupported();
[[nodiscard]] MessageIdentifier MakeUnableToModifyTolvexpath();
[[nodiscard]] MessageIdentifier MakeNoMemory();
[[nodiscard]] MessageIdentifier MakePackageManagerIsOff();

/// How a package is named in messages: 'name@version', in single quotes.
[[nodiscard]] ustring GetTextFromPackage(const TolvexComponents::ComponentIdentifier& package);

/// Adds the message for a folder that cannot stand on the path because of its kind. REQUIRES: `type` is none but the
/// kinds of special folders; a main folder, or a value that is no kind, ends the process.
void AddErrorToNotificationForProcessingNonMainEntry(Tolvex::Notification& notification, const PathEntryType& type,
                                                     const ustring& folder);

/// Adds the message for a folder of an installed package that is not the package's root folder.
void AddErrorToNotificationForPackageMemberFolder(const ustring& folder, const ustring& package,
                                                  const ustring& rootFolder, Tolvex::Notification& notification);

/// Adds the message for a folder of a package that is not installed.
void AddErrorToNotificationForUninstalledPackage(const Tolvex::AbsoluteIRI& folder, Tolvex::Notification& notification);

/// What of a requested list may stand on the path.
struct AcceptedEntries {
    PathEntryVector entries;                                       ///< in the order of the request
    std::vector<TolvexComponents::ComponentIdentifier> components; ///< whose root folders are among them; each once
};

/// Applies the rules to a requested list, entry by entry: a special folder is left out, then a member folder of a
/// package, then a folder of a package that is not installed; each adds one message. A package in front of a plain
/// folder stays where it is and adds one message for the whole list, unless the package asks to stand in front. Null
/// entries (of folders that could not be read) are left out in silence.
[[nodiscard]] AcceptedEntries ApplyPathAlterationRules(const PathEntryVector& requested,
                                                       const TolvexPackages::IPackageRegistry& registry,
                                                       Tolvex::Notification& notification);

} // namespace PathManagement::detail
