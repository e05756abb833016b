#pragma once

#include "path_interfaces/IFolderMonitor.h"

namespace PathManagement {

/// A monitor that gives every folder the same level and keeps no path: for tests and for programs that ask once
/// and end.
class KX_EXPORT UniformFolderMonitor final : public IFolderMonitor {
public:
    explicit UniformFolderMonitor(FolderMonitoringLevel level = FolderMonitoringLevel::timeCheck) noexcept;
    ~UniformFolderMonitor() override;

    [[nodiscard]] FolderMonitoringLevel GetMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    [[nodiscard]] FolderMonitoringLevel
    GetParentMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    void StartMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) override;
    void StopMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) override;
    void SetPath(std::shared_ptr<const IPath> path) override;

private:
    FolderMonitoringLevel level;
};

} // namespace PathManagement
