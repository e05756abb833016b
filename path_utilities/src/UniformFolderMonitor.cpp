#include "path_utilities/UniformFolderMonitor.h"

namespace PathManagement {

using Tolvex::CanonicalAbsoluteIRI;

UniformFolderMonitor::UniformFolderMonitor(FolderMonitoringLevel level) noexcept : level(level) {}

UniformFolderMonitor::~UniformFolderMonitor() = default;

FolderMonitoringLevel UniformFolderMonitor::GetMonitoringLevel(const CanonicalAbsoluteIRI&) const {
    return level;
}

FolderMonitoringLevel UniformFolderMonitor::GetParentMonitoringLevel(const CanonicalAbsoluteIRI& folder) const {
    return folder.hasParent() ? level : FolderMonitoringLevel::none;
}

void UniformFolderMonitor::StartMonitoringPackageFolder(const CanonicalAbsoluteIRI&) {}

void UniformFolderMonitor::StopMonitoringPackageFolder(const CanonicalAbsoluteIRI&) {}

void UniformFolderMonitor::SetPath(std::shared_ptr<const IPath>) {}

} // namespace PathManagement
