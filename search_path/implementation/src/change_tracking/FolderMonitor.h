#pragma once

#include "foundation/components/IPackageRegistrar.h"
#include "path_interfaces/IFolderMonitor.h"

#include <unordered_set>

namespace PathManagement {

/// Decides by where a folder lies how closely it is watched. Takes no lock: queries may run side by side, and callers
/// keep them apart from SetPath and from starting and stopping.
class FolderMonitor final : public IFolderMonitor {
public:
    /// `registrar` outlives the monitor. REQUIRES: `initialPath` is not null.
    FolderMonitor(const Tolvex::CanonicalAbsoluteIRI& installationFolder, std::shared_ptr<const IPath> initialPath,
                  TolvexPackages::IPackageRegistrar& registrar);
    ~FolderMonitor() override;

    /// The first that applies: a registered package's folder is watched closely or not as the package's record says, a
    /// folder below the installation and one that somebody registered is looked at when asked, a folder on the path is
    /// watched closely. Any other is not watched.
    [[nodiscard]] FolderMonitoringLevel GetMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    [[nodiscard]] FolderMonitoringLevel
    GetParentMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    void StartMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) override;
    void StopMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) override;

    /// REQUIRES: `path` is not null.
    void SetPath(std::shared_ptr<const IPath> path) override;

private:
    void RefuseFolderOfPackage(const Tolvex::CanonicalAbsoluteIRI& folder) const;

    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> monitoredFolders;
    Tolvex::CanonicalAbsoluteIRI installationFolder;
    std::shared_ptr<const IPath> path;
    TolvexPackages::IPackageRegistrar& registrar;
};

} // namespace PathManagement
