#include "Session.h"

#include "Messages.h"
#include "ProgressLine.h"

#include "foundation/components/ComponentFeature.h"
#include "foundation/environment/EngineScopeStore.h"
#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "search_path/Accessors.h"
#include "search_path/MainSearchPathManagerFactory.h"
#include "search_path/PackagesOnPath.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace TolvexPath {

using PathManagement::CurrentFolderPolicy;
using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;
using Tolvex::Notification;

namespace {

auto ShowProgress() {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    return ProgressLine([&factory] { return fmt::format("{} folders read", factory.GetCounters().foldersListed); });
}

/// Whether `folder` is the root folder of a package that asks to stand in front.
bool BelongsInFront(const TolvexPackages::IPackageRegistry& registry, const CanonicalAbsoluteIRI& folder) {
    const auto owner = registry.FindPackageOfFolder(folder);
    const auto package = owner ? registry.FindPackage(*owner) : nullptr;
    return package != nullptr && package->BelongsInFront();
}

/// Whether a change of packages did not reach the path; the refusal is then all that is reported.
bool IsRefusal(const Notification& report) {
    return report.ForEach([](const Notification::Entry& entry) {
        const std::string& key = entry.message.key;
        return key == "PathAlterationNotSupported" || key == "UnableToModifyTolvexpath";
    });
}

/// Switched on before the manager is made, which asks once.
boost::shared_ptr<Tolvex::EventMgr> BeginHost(bool hasPackages) {
    TolvexComponents::ComponentFeature::Set(hasPackages);
    return Tolvex::createEventMgr();
}

} // namespace

Session::Session(CurrentFolderPolicy policy, const std::optional<std::filesystem::path>& packagesFolder)
    : events(BeginHost(packagesFolder.has_value())),
      manager(PathManagement::CreateMainSearchPathManager(events, components)) {
    manager->SetCurrentFolderPolicy(policy);
    if (!packagesFolder)
        return;
    packages.emplace(*packagesFolder, *events);
    PathManagement::InstallPackagesOnPathCoordinator(*events, *manager, [this](const Notification& report) {
        packageReport.Add(report);
        isPathRefused = isPathRefused || IsRefusal(report);
    });
    try {
        const ProgressLine progress = ShowProgress();
        AnnouncePackages();
        firstPackageFolders = *manager->GetPathIRIs();
    } catch (...) {
        Tolvex::EngineScopeStore::End();
        throw;
    }
}

Session::~Session() {
    if (packages)
        Tolvex::EngineScopeStore::End(); // the coordinator refers to the session
}

Session::Locations Session::PlaceAmongPackages(std::span<const AbsoluteIRI> locations) const {
    std::unordered_set<CanonicalAbsoluteIRI, Tolvex::IRIHash> named;
    if (!firstPackageFolders.empty())
        for (const AbsoluteIRI& location : locations)
            named.emplace(location, u"");
    const auto registry = TolvexPackages::GetPackageRegistrar().GetRegistry();
    Locations front;
    Locations behind(locations.begin(), locations.end());
    for (const CanonicalAbsoluteIRI& folder : firstPackageFolders)
        if (!named.contains(folder))
            (BelongsInFront(*registry, folder) ? front : behind).push_back(folder);
    front.insert(front.end(), behind.begin(), behind.end());
    return front;
}

Notification Session::SetPath(std::span<const AbsoluteIRI> locations) {
    std::vector<CanonicalAbsoluteIRI> folders;
    for (const AbsoluteIRI& location : PlaceAmongPackages(locations))
        folders.emplace_back(location, u"");
    Notification problems = TakePackageReport();
    const ProgressLine progress = ShowProgress();
    manager->SetPathEntries(PathManagement::CanonicalIRIRange(folders), problems);
    return problems;
}

void Session::Refresh(PathManagement::RefreshType type) {
    if (packages)
        TakeOverPackages();
    manager->RefreshPath(type);
    auto& observers = Tolvex::GetFileFolderObserverFactory(TolvexStorageSystem::GetStorageSystemReference());
    if (const std::string warning = observers.takeChangeHandleWarning(); !warning.empty())
        PrintMessage(warning);
}

void Session::FollowPackages() {
    if (packages && packages->MayHaveChanged())
        TakeOverPackages();
}

/// What goes wrong is reported; the packages, and the path, then stay as they are.
void Session::TakeOverPackages() {
    try {
        AnnouncePackages();
    } catch (const TolvexPackages::PackageError& error) {
        ReportUnreadPackages(error.GetProblem());
    } catch (const std::filesystem::filesystem_error& error) {
        ReportUnreadPackages({error.path1().native(), 0, error.code().message()});
    }
}

/// Once, however often the same is met.
void Session::ReportUnreadPackages(const TolvexPackages::PackageProblem& problem) {
    if (problem != unreadPackages)
        packageReport.Add(MakePackageMessage("packagesNotRead", problem));
    unreadPackages = problem;
}

void Session::AnnouncePackages() {
    isPathRefused = false;
    packageReport.Add(packages->Announce());
    unreadPackages.reset();
    if (isPathRefused)
        packages->TakeBack();
}

Notification Session::TakePackageReport() {
    return std::exchange(packageReport, Notification());
}

} // namespace TolvexPath
