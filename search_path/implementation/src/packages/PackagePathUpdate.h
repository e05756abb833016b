#pragma once

#include "foundation/components/PackageRegistryChanges.h"
#include "path_interfaces/IMainSearchPathManager.h"

#include <boost/functional/hash.hpp>

#include <deque>
#include <functional>
#include <list>
#include <unordered_map>
#include <unordered_set>

namespace PathManagement {

/// The handling of one change of the package registry: works out the new list of path folders, has the manager install
/// it and reports. Made for one change and dropped after it; costs as much as the path and the change together.
class PackagePathUpdate {
public:
    using ReportCallback = std::function<void(const Tolvex::Notification&)>;

    /// REQUIRES: `changes` is not null. `manager` and `reportCallback` outlive this object.
    PackagePathUpdate(IMainSearchPathManager& manager, const ReportCallback& reportCallback,
                      std::shared_ptr<const TolvexPackages::PackageRegistryChanges> changes);

    /// Calls the callback once, whatever happens: what prevents the change is reported in the place of all else.
    /// Throws only what the callback throws. To be called once.
    void Run();

private:
    using Folder = Tolvex::CanonicalAbsoluteIRI;
    using Folders = std::unordered_set<Folder, Tolvex::IRIHash>;
    using Identifier = TolvexComponents::ComponentIdentifier;
    using Record = std::shared_ptr<const TolvexPackages::PackageRecord>;
    using Records = std::vector<Record>;
    using Versions = std::unordered_map<Identifier::UniqueID, std::list<Identifier>, boost::hash<Identifier::UniqueID>>;
    class PendingPackages;

    void ChangePath();
    void CollectFoldersLeavingPath();
    void AssembleNewPath();
    void TakeOverPath(PendingPackages& pending);
    void PlaceInFront(const Records& packages);
    void PlaceBehind(const Records& packages);
    void RecordVersionInFront(const Identifier& package);
    void RecordVersionBehind(const Identifier& package);
    void ReportRemovedMemberFolders();
    void ReportIfRemoved(const Folder& folder);
    void ReportMultipleVersions();
    void ReportFailure();
    void Append(Tolvex::MessageIdentifier message, Tolvex::MessageSeverity severity);

    [[nodiscard]] Records SelectForPlacement(const PendingPackages& pending) const;
    [[nodiscard]] std::vector<Folder> GetFolders(const Identifier& package) const;

    IMainSearchPathManager& manager;
    const ReportCallback& reportCallback;
    const std::shared_ptr<const TolvexPackages::PackageRegistryChanges> changes; // keeps both registries
    const TolvexPackages::IPackageRegistry& registryBefore;
    const TolvexPackages::IPackageRegistry& registryAfter;
    const std::vector<Identifier> changed;
    const Records added;         // as registered after the change
    const Records removed;       // as registered before it
    const Records updatedBefore; // the changed packages, as registered before it
    const Records updatedAfter;
    Folders foldersLeavingPath{8};
    Versions versionsOnPath; // by package: every version on the new path, in path order
    std::deque<Folder> newPath;
    Tolvex::Notification report;
    Folders settledFolders; // on the new path, or looked at for a report already
};

} // namespace PathManagement
