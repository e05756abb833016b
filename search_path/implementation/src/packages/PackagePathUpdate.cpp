#include "packages/PackagePathUpdate.h"

#include "foundation/diagnostics/LogChannel.h"
#include "foundation/messages/Catalogue.h"
#include "foundation/messages/Exceptions.h"
#include "main_manager/SearchPathPublicFunctions.h"
#include "path_utilities/PackageFolders.h"
#include "path_utilities/PathText.h"

#include <algorithm>
#include <new>
#include <utility>

namespace PathManagement {

using Tolvex::MessageSeverity;
using TolvexComponents::ComponentIdentifier;
using TolvexPackages::IPackageRegistry;
using TolvexPackages::PackageRecord;

namespace {

/// The records of those that `registry` knows, in the order of `packages`.
std::vector<std::shared_ptr<const PackageRecord>> LookUp(std::span<const ComponentIdentifier> packages,
                                                         const IPackageRegistry& registry) {
    std::vector<std::shared_ptr<const PackageRecord>> records;
    records.reserve(packages.size());
    for (const auto& package : packages)
        if (auto record = registry.FindPackage(package))
            records.push_back(std::move(record));
    return records;
}

/// Whether a package is to be on the path, by what is registered about it.
bool IsWanted(const PackageRecord& package) {
    if (!package.isManaged)
        return package.isForPath;
    const auto* const property = package.FindProperty(TolvexPackages::manualInstallProperty);
    const bool* const isManualInstall = property == nullptr ? nullptr : std::get_if<bool>(property);
    return isManualInstall != nullptr && *isManualInstall;
}

/// Throws std::bad_variant_access when the property is not a text.
bool BelongsInFront(const PackageRecord& package) {
    const auto* const position = package.FindProperty(TolvexPackages::pathPositionProperty);
    return position != nullptr && std::get<ustring>(*position) == u"begin";
}

/// What to do to use the package's folders; empty when a package of this kind comes on the path another way.
ustring GetAdvice(const PackageRecord& package) {
    if (!package.isManaged)
        return {};
    return Tolvex::GetLocalizedText(detail::MakeAddPackageToPathInfo(GetStringFromIRI(package.GetRootFolder())),
                                    Tolvex::KxLocale::global());
}

/// For people; the exception in flight.
Tolvex::MessageIdentifier GetFailureMessage() {
    try {
        throw;
    } catch (const Tolvex::MessageIdentifierException& refusal) {
        return refusal.GetMessageIdentifier();
    } catch (const std::bad_alloc&) {
        return detail::MakeNoMemory();
    } catch (...) {
        return detail::MakeUnableToModifyTolvexpath();
    }
}

/// For whoever follows the log; the exception in flight.
void LogFailure() {
    static const Tolvex::LogChannel log("searchpath::pathmanager");
    try {
        throw;
    } catch (const std::exception& failure) {
        if (log.IsEnabled(2))
            log.Write(2, std::string("Packages are not updated on the path: ") + failure.what());
    } catch (...) {
        log.Write(2, "Packages are not updated on the path.");
    }
}

} // namespace

/// The packages that have no place on the new path yet, in order.
class PackagePathUpdate::PendingPackages {
public:
    struct Package {
        Record record; // null when it was taken
        bool isAdded;  // else updated, and `record` is the one before the change
    };

    PendingPackages(const Records& added, const Records& updated) {
        packages.reserve(added.size() + updated.size());
        for (const Record& record : added)
            packages.push_back({record, true});
        for (const Record& record : updated)
            packages.push_back({record, false});
        IndexRootFolders();
    }

    /// Takes the first package that has `root` as its root folder; null when there is none.
    [[nodiscard]] Record Take(const Folder& root) {
        const auto first = firstOfRoot.find(root);
        if (first == firstOfRoot.end() || first->second == none)
            return nullptr;
        const std::size_t place = first->second;
        first->second = nextOfRoot[place];
        return std::exchange(packages[place].record, nullptr);
    }

    [[nodiscard]] std::vector<Package> GetRemaining() const {
        std::vector<Package> remaining;
        std::ranges::copy_if(packages, std::back_inserter(remaining),
                             [](const Package& package) { return package.record != nullptr; });
        return remaining;
    }

private:
    static constexpr auto none = static_cast<std::size_t>(-1);

    void IndexRootFolders() {
        nextOfRoot.resize(packages.size(), none);
        for (std::size_t place = packages.size(); place-- > 0;) {
            auto& first = firstOfRoot.try_emplace(packages[place].record->GetRootFolder(), none).first->second;
            nextOfRoot[place] = std::exchange(first, place);
        }
    }

    std::vector<Package> packages;
    std::unordered_map<Folder, std::size_t, Tolvex::IRIHash> firstOfRoot;
    std::vector<std::size_t> nextOfRoot; // by place: the next package of the same root folder
};

PackagePathUpdate::PackagePathUpdate(IMainSearchPathManager& manager, const ReportCallback& reportCallback,
                                     std::shared_ptr<const TolvexPackages::PackageRegistryChanges> registryChanges)
    : manager(manager), reportCallback(reportCallback), changes(std::move(registryChanges)),
      registryBefore(changes->GetRegistryBefore()), registryAfter(changes->GetRegistryAfter()),
      changed(changes->GetChanged(TolvexPackages::PackageChangeKind::any)),
      added(LookUp(changes->GetAdded(), registryAfter)), removed(LookUp(changes->GetRemoved(), registryBefore)),
      updatedBefore(LookUp(changed, registryBefore)), updatedAfter(LookUp(changed, registryAfter)) {}

void PackagePathUpdate::Run() {
    try {
        ChangePath();
    } catch (...) {
        ReportFailure();
    }
    reportCallback(report);
}

void PackagePathUpdate::ChangePath() {
    CollectFoldersLeavingPath();
    AssembleNewPath();
    ReportRemovedMemberFolders();
    manager.SetPathEntries(CanonicalIRIRange(newPath), report);
    ReportMultipleVersions();
}

void PackagePathUpdate::CollectFoldersLeavingPath() {
    for (const Records* packages : {&added, &removed})
        for (const Record& package : *packages)
            foldersLeavingPath.insert(package->memberFolders.begin(), package->memberFolders.end());
    for (const Records* packages : {&updatedBefore, &updatedAfter})
        for (const Record& package : *packages) // the root folder keeps the package's place
            foldersLeavingPath.insert(package->memberFolders.begin() + 1, package->memberFolders.end());
}

void PackagePathUpdate::AssembleNewPath() {
    PendingPackages pending(added, updatedBefore);
    TakeOverPath(pending);
    Records packages = SelectForPlacement(pending);
    std::ranges::stable_sort(packages, {}, [](const Record& package) { return package->order; });
    const auto behind =
        std::ranges::stable_partition(packages, [](const Record& package) { return BelongsInFront(*package); }).begin();
    PlaceInFront({packages.begin(), behind});
    PlaceBehind({behind, packages.end()});
}

/// What stays of the manager's path, updated packages in their old places.
void PackagePathUpdate::TakeOverPath(PendingPackages& pending) {
    const auto path = manager.GetPathIRIs();
    for (const Folder& folder : *path) {
        if (foldersLeavingPath.contains(folder))
            continue;
        if (const auto owner = registryBefore.FindPackageOfFolder(folder))
            RecordVersionBehind(*owner);
        if (const Record package = pending.Take(folder))
            std::ranges::copy(GetFolders(package->identifier), std::back_inserter(newPath));
        else
            newPath.push_back(folder);
    }
}

/// Of the packages without a place those that are to have one, as registered after the change. Of updated packages
/// these are the ones that were not to be on the path before: whoever took another one off the path keeps it off.
PackagePathUpdate::Records PackagePathUpdate::SelectForPlacement(const PendingPackages& pending) const {
    Records selected;
    for (const auto& [record, isAdded] : pending.GetRemaining()) {
        auto after = registryAfter.FindPackage(record->identifier);
        if (after != nullptr && IsWanted(*after) && (isAdded || !IsWanted(*record)))
            selected.push_back(std::move(after));
    }
    return selected;
}

/// Each ahead of those before it, so that they stand in reverse order.
void PackagePathUpdate::PlaceInFront(const Records& packages) {
    for (const Record& package : packages) {
        RecordVersionInFront(package->identifier);
        const auto folders = GetFolders(package->identifier);
        newPath.insert(newPath.begin(), folders.begin(), folders.end());
    }
}

void PackagePathUpdate::PlaceBehind(const Records& packages) {
    for (const Record& package : packages) {
        RecordVersionBehind(package->identifier);
        std::ranges::copy(GetFolders(package->identifier), std::back_inserter(newPath));
    }
}

void PackagePathUpdate::RecordVersionInFront(const Identifier& package) {
    auto& versions = versionsOnPath[package.GetUniqueID()];
    if (versions.empty() || versions.front() != package)
        versions.push_front(package);
}

void PackagePathUpdate::RecordVersionBehind(const Identifier& package) {
    auto& versions = versionsOnPath[package.GetUniqueID()];
    if (versions.empty() || versions.back() != package)
        versions.push_back(package);
}

void PackagePathUpdate::ReportRemovedMemberFolders() {
    settledFolders.insert(newPath.begin(), newPath.end());
    for (const Records* packages : {&removed, &added})
        for (const Record& package : *packages)
            std::ranges::for_each(package->memberFolders, [this](const Folder& folder) { ReportIfRemoved(folder); });
    for (const Record& package : updatedBefore) {
        Folders gone(package->memberFolders.begin(), package->memberFolders.end());
        if (const Record after = registryAfter.FindPackage(package->identifier))
            std::ranges::for_each(after->memberFolders, [&gone](const Folder& folder) { gone.erase(folder); });
        for (const Folder& folder : package->memberFolders)
            if (gone.contains(folder))
                ReportIfRemoved(folder);
    }
}

/// Once for each folder that was on the installed path, and only when a package owns it now.
void PackagePathUpdate::ReportIfRemoved(const Folder& folder) {
    if (!settledFolders.insert(folder).second || !manager.GetPath()->GetPathEntryFromAbsoluteIRI(folder))
        return;
    const auto owner = registryAfter.FindPackageOfFolder(folder);
    const Record package = owner ? registryAfter.FindPackage(*owner) : nullptr;
    if (package != nullptr)
        Append(detail::MakePackageMemberFolderRemovedFromPath(GetStringFromIRI(folder), GetAdvice(*package),
                                                              detail::GetTextFromPackage(package->identifier)),
               MessageSeverity::warning);
}

void PackagePathUpdate::ReportMultipleVersions() {
    for (const auto& [uniqueID, versions] : versionsOnPath) {
        if (versions.size() < 2)
            continue;
        ustring hidden;
        for (auto version = std::next(versions.begin()); version != versions.end(); ++version)
            hidden.append(hidden.empty() ? u"" : u", ").append(detail::GetTextFromPackage(*version));
        Append(detail::MakeMultiplePackageVersionsOnPath(detail::GetTextFromPackage(versions.front()), hidden),
               MessageSeverity::warning);
    }
}

/// What was reported before did not come true.
void PackagePathUpdate::ReportFailure() {
    LogFailure();
    report = Tolvex::Notification();
    Append(GetFailureMessage(), MessageSeverity::error);
}

void PackagePathUpdate::Append(Tolvex::MessageIdentifier message, MessageSeverity severity) {
    Tolvex::Notification child;
    child.Add(std::move(message), severity);
    report.Add(std::move(child));
}

std::vector<PackagePathUpdate::Folder> PackagePathUpdate::GetFolders(const Identifier& package) const {
    return GetPathFoldersForPackages(registryAfter, {&package, 1});
}

} // namespace PathManagement
