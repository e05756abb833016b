#include "main_manager/SearchPathPublicFunctions.h"

#include "foundation/diagnostics/Terminate.h"
#include "path_utilities/PathText.h"

#include <unordered_set>

namespace PathManagement::detail {

using Tolvex::Notification;
using TolvexComponents::ComponentIdentifier;
using TolvexPackages::IPackageRegistry;
using TolvexPackages::PackageRecord;

namespace {

template <class... Texts>
MessageIdentifier MakeMessage(const char* key, const Texts&... texts) {
    return {"TOLVEX:tpath", key, {texts...}};
}

/// Decides about one entry after the other.
class PathAlterationRules {
public:
    PathAlterationRules(const IPackageRegistry& registry, Notification& notification)
        : registry(registry), notification(notification) {}

    void Process(const std::shared_ptr<const IPathEntry>& entry) {
        const Tolvex::CanonicalAbsoluteIRI folder = entry->GetIRI();
        if (const PathEntryType type = entry->GetPathEntryType(); type != PathEntryType::mainFolder)
            return AddErrorToNotificationForProcessingNonMainEntry(notification, type, GetStringFromIRI(folder));
        const auto package = FindPackage(folder);
        if (package != nullptr && folder != package->GetRootFolder())
            return RefuseMember(folder, *package);
        if (package == nullptr && registry.IsFolderOfUninstalledPackage(folder))
            return AddErrorToNotificationForUninstalledPackage(folder, notification);
        Accept(entry, package.get());
    }

    [[nodiscard]] AcceptedEntries Finish() && {
        if (plainFolderFollowsPackage)
            notification.Add(MakePackagesMustBeLastOnPath());
        return std::move(accepted);
    }

private:
    [[nodiscard]] std::shared_ptr<const PackageRecord> FindPackage(const Tolvex::CanonicalAbsoluteIRI& folder) const {
        const auto identifier = registry.FindPackageOfFolder(folder);
        return identifier ? registry.FindPackage(*identifier) : nullptr;
    }

    void RefuseMember(const Tolvex::CanonicalAbsoluteIRI& folder, const PackageRecord& package) {
        AddErrorToNotificationForPackageMemberFolder(GetStringFromIRI(folder), GetTextFromPackage(package.identifier),
                                                     GetStringFromIRI(package.GetRootFolder()), notification);
    }

    /// `package` is null for a plain folder.
    void Accept(const std::shared_ptr<const IPathEntry>& entry, const PackageRecord* package) {
        accepted.entries.push_back(entry);
        if (package == nullptr) {
            plainFolderFollowsPackage = plainFolderFollowsPackage || packageSeen;
            return;
        }
        packageSeen = packageSeen || !package->BelongsInFront(); // which is put in front of plain folders on purpose
        if (knownComponents.insert(package->identifier).second)
            accepted.components.push_back(package->identifier);
    }

    const IPackageRegistry& registry;
    Notification& notification;
    AcceptedEntries accepted;
    std::unordered_set<ComponentIdentifier, TolvexComponents::ComponentIdentifierHash> knownComponents;
    bool packageSeen = false;
    bool plainFolderFollowsPackage = false;
};

} // namespace

MessageIdentifier MakePackageDirectoriesNotAllowedOnPath(const ustring& folder) {
    return MakeMessage("packageDirectoriesNotAllowedOnPath", folder);
}

MessageIdentifier MakeMethodDirectoriesNotAllowedOnPath(const ustring& folder) {
    return MakeMessage("methodDirectoriesNotAllowedOnPath", folder);
}

MessageIdentifier MakePrivateDirectoriesNotAllowedOnPath(const ustring& folder) {
    return MakeMessage("privateDirectoriesNotAllowedOnPath", folder);
}

MessageIdentifier MakeResourcesDirectoriesNotAllowedOnPath(const ustring& folder) {
    return MakeMessage("resourcesDirectoriesNotAllowedOnPath", folder);
}

MessageIdentifier MakePackageMemberFoldersNotAllowedOnPath(const ustring& folder, const ustring& package,
                                                           const ustring& rootFolder) {
    return MakeMessage("packageMemberFoldersNotAllowedOnPath", folder, package, rootFolder);
}

MessageIdentifier MakeUninstalledPackagesNotAllowedOnPath(const ustring& folder) {
    return MakeMessage("uninstalledPackagesNotAllowedOnPath", folder);
}

MessageIdentifier MakePackagesMustBeLastOnPath() {
    return MakeMessage("packagesMustBeLastOnPath");
}

MessageIdentifier MakeUninstalledPackageRemovedFromPath(const ustring& folder) {
    return MakeMessage("uninstalledPackageRemovedFromPath", folder);
}

MessageIdentifier MakePackageMemberFolderRemovedFromPath(const ustring& folder, const ustring& advice,
                                                         const ustring& package) {
    return MakeMessage("packageMemberFolderRemovedFromPath", folder, advice, package);
}

MessageIdentifier MakeMultiplePackageVersionsOnPath(const ustring& found, const ustring& hidden) {
    return MakeMessage("MultiplePackageVersionsOnPath", found, hidden);
}

MessageIdentifier MakeAddPackageToPathInfo(const ustring& rootFolder) {
    return MakeMessage("AddPackageToPathInfo", rootFolder);
}

MessageIdentifier MakePathAlterationNotSupported() {
    return MakeMessage("PathAlterationNotSupported");
}

MessageIdentifier MakeUnableToModifyTolvexpath() {
    return MakeMessage("UnableToModifyTolvexpath");
}

MessageIdentifier MakeNoMemory() {
    return {"TOLVEX:legacy_two_part", "nomem", {}};
}

MessageIdentifier MakePackageManagerIsOff() {
    return MakeMessage("TPMFeatureOff");
}

ustring GetTextFromPackage(const ComponentIdentifier& package) {
    return u"'" + package.GetName() + u"@" + package.GetVersion().toString() + u"'";
}

void AddErrorToNotificationForProcessingNonMainEntry(Notification& notification, const PathEntryType& type,
                                                     const ustring& folder) {
    switch (type) {
    case PathEntryType::packageFolder:
        return notification.Add(MakePackageDirectoriesNotAllowedOnPath(folder));
    case PathEntryType::methodFolder:
    case PathEntryType::uddClassFolder:
        return notification.Add(MakeMethodDirectoriesNotAllowedOnPath(folder));
    case PathEntryType::privateFolder:
        return notification.Add(MakePrivateDirectoriesNotAllowedOnPath(folder));
    case PathEntryType::resourcesFolder:
        return notification.Add(MakeResourcesDirectoriesNotAllowedOnPath(folder));
    case PathEntryType::mainFolder:
        break;
    }
    Tolvex::DiagnosticTerminate("All illegal path entry types for addpath should have been handled.");
}

void AddErrorToNotificationForPackageMemberFolder(const ustring& folder, const ustring& package,
                                                  const ustring& rootFolder, Notification& notification) {
    notification.Add(MakePackageMemberFoldersNotAllowedOnPath(folder, package, rootFolder));
}

void AddErrorToNotificationForUninstalledPackage(const Tolvex::AbsoluteIRI& folder, Notification& notification) {
    notification.Add(MakeUninstalledPackagesNotAllowedOnPath(GetStringFromIRI(folder)));
}

AcceptedEntries ApplyPathAlterationRules(const PathEntryVector& requested, const IPackageRegistry& registry,
                                         Notification& notification) {
    PathAlterationRules rules(registry, notification);
    for (const auto& entry : requested) {
        if (entry != nullptr)
            rules.Process(entry);
    }
    return std::move(rules).Finish();
}

} // namespace PathManagement::detail
