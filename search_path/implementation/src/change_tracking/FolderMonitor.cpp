#include "change_tracking/FolderMonitor.h"

#include "path_interfaces/IPath.h"
#include "path_interfaces/PackageFolderMonitoringChangeException.h"

#include <utility>

namespace PathManagement {

using Tolvex::CanonicalAbsoluteIRI;

namespace {

constexpr std::size_t firstBucketCount = 8;

} // namespace

FolderMonitor::FolderMonitor(const CanonicalAbsoluteIRI& installationFolder, std::shared_ptr<const IPath> initialPath,
                             TolvexPackages::IPackageRegistrar& registrar)
    : monitoredFolders(firstBucketCount), installationFolder(installationFolder), path(std::move(initialPath)),
      registrar(registrar) {}

FolderMonitor::~FolderMonitor() = default;

FolderMonitoringLevel FolderMonitor::GetMonitoringLevel(const CanonicalAbsoluteIRI& folder) const {
    if (const auto package = registrar.FindPackageOfFolder(folder)) {
        const auto record = registrar.FindPackage(*package);
        // The package may have gone between the two questions, asked from several threads.
        const bool isWatchedClosely = record != nullptr && record->isWatchedClosely;
        return isWatchedClosely ? FolderMonitoringLevel::notification : FolderMonitoringLevel::timeCheck;
    }
    if (installationFolder.isAncestorOf(folder) || monitoredFolders.contains(folder))
        return FolderMonitoringLevel::timeCheck;
    return path->GetPathEntryFromAbsoluteIRI(folder) != nullptr ? FolderMonitoringLevel::notification
                                                                : FolderMonitoringLevel::none;
}

FolderMonitoringLevel FolderMonitor::GetParentMonitoringLevel(const CanonicalAbsoluteIRI& folder) const {
    return folder.hasParent() ? GetMonitoringLevel(folder.getParent()) : FolderMonitoringLevel::none;
}

void FolderMonitor::StartMonitoringPackageFolder(const CanonicalAbsoluteIRI& folder) {
    RefuseFolderOfPackage(folder);
    monitoredFolders.insert(folder);
}

void FolderMonitor::StopMonitoringPackageFolder(const CanonicalAbsoluteIRI& folder) {
    RefuseFolderOfPackage(folder);
    monitoredFolders.erase(folder);
}

void FolderMonitor::SetPath(std::shared_ptr<const IPath> newPath) {
    path = std::move(newPath);
}

void FolderMonitor::RefuseFolderOfPackage(const CanonicalAbsoluteIRI& folder) const {
    if (registrar.FindPackageOfFolder(folder))
        throw PackageFolderMonitoringChangeException(folder);
}

} // namespace PathManagement
