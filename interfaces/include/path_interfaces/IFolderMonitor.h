#pragma once

#include "foundation/observers/IFileFolderObserverFactory.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <memory>

namespace PathManagement {

class IPath;

/// 0: not watched; 1: looked at when asked; 2: the kernel tells.
using FolderMonitoringLevel = Tolvex::ObservationLevel;

/// Decides for any folder how closely it is watched for changes. Callers serialise the operations that change the
/// monitor against the queries.
class IFolderMonitor {
public:
    virtual ~IFolderMonitor() = default;

    [[nodiscard]] virtual FolderMonitoringLevel
    GetMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;

    /// The level of the folder above; none for a root.
    [[nodiscard]] virtual FolderMonitoringLevel
    GetParentMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;

    /// Adds a package folder to those that are watched. Throws PackageFolderMonitoringChangeException when the
    /// folder belongs to a registered package.
    virtual void StartMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) = 0;

    /// Takes a package folder out; no effect when it was not in. Throws as StartMonitoringPackageFolder.
    virtual void StopMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI& folder) = 0;

    /// Replaces the monitor's view of the search path.
    virtual void SetPath(std::shared_ptr<const IPath> path) = 0;
};

} // namespace PathManagement
