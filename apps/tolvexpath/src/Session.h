#pragma once

#include "PackageFollower.h"

#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/events/EventMgr.h"
#include "path_interfaces/IMainSearchPathManager.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>

namespace TolvexPath {

/// A search path as an environment has one: its manager, and the host services that the manager stands on. One a
/// process; for one thread.
class Session {
public:
    using Locations = std::vector<Tolvex::AbsoluteIRI>;

    /// Begins with the packages that are installed in a folder on the path; without such a folder the path is empty.
    /// Throws Tolvex::StorageError when the working folder is gone, TolvexPackages::PackageError and
    /// std::filesystem::filesystem_error when the record of the packages cannot be read.
    explicit Session(PathManagement::CurrentFolderPolicy policy,
                     const std::optional<std::filesystem::path>& packagesFolder = std::nullopt);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] PathManagement::IMainSearchPathManager& GetManager() noexcept { return *manager; }
    /// Where everything that happens to the path is published.
    [[nodiscard]] Tolvex::EventMgr& GetEvents() noexcept { return *events; }

    /// Folders and, in their places, the packages with which the session began: those that ask to stand in front, then
    /// the folders, then the others. A package whose root folder is one of the folders stands where that does.
    [[nodiscard]] Locations PlaceAmongPackages(std::span<const Tolvex::AbsoluteIRI> locations) const;

    /// Sets the path to PlaceAmongPackages, with progress on a terminal. Gives what is to be told of packages, then
    /// what was left out and why, in the order of the folders as far as they could be read.
    [[nodiscard]] Tolvex::Notification SetPath(std::span<const Tolvex::AbsoluteIRI> locations);

    /// Refreshes the path, packages included, those that it refused before, too; says so when the system gives no more
    /// watches for it.
    void Refresh(PathManagement::RefreshType type);

    /// Takes over what some process has installed, updated or removed since. Costs nothing when that is nothing. What
    /// goes wrong, a handler of path events that throws excepted, is for TakePackageReport.
    void FollowPackages();

    /// What is to be told of packages since the last time: those that cannot be used, and what their coming and going
    /// did to the path.
    [[nodiscard]] Tolvex::Notification TakePackageReport();

private:
    void TakeOverPackages();
    void AnnouncePackages();
    void ReportUnreadPackages(const TolvexPackages::PackageProblem& problem);

    boost::shared_ptr<Tolvex::EventMgr> events;
    TolvexComponents::ModularPackageRegistry components;
    std::unique_ptr<PathManagement::IMainSearchPathManager> manager;
    std::optional<PackageFollower> packages;
    std::vector<Tolvex::CanonicalAbsoluteIRI> firstPackageFolders; // on the path when the session began
    Tolvex::Notification packageReport;
    bool isPathRefused = false;                                   // the path could not follow what was announced last
    std::optional<TolvexPackages::PackageProblem> unreadPackages; // what was reported and has not been mended
};

} // namespace TolvexPath
