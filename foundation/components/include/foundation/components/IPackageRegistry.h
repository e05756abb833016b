#pragma once

#include "foundation/components/PackageRecord.h"

#include <memory>
#include <optional>
#include <vector>

namespace TolvexPackages {

/// The installed packages at one moment. Immutable; safe from any thread.
class IPackageRegistry {
public:
    virtual ~IPackageRegistry() = default;

    using Packages = std::vector<std::shared_ptr<const PackageRecord>>;

    /// All packages, each identifier once; no element is null.
    [[nodiscard]] virtual const Packages& GetPackages() const = 0;

    /// Null when the package is not registered.
    [[nodiscard]] virtual std::shared_ptr<const PackageRecord>
    FindPackage(const ComponentIdentifier& identifier) const = 0;

    /// The package that owns a folder: the one whose member folder it is or lies below; of several, the one whose
    /// member folder is nearest.
    [[nodiscard]] virtual std::optional<ComponentIdentifier>
    FindPackageOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;

    /// True when no registered package owns the folder, and it belongs to a package that is known but not installed.
    [[nodiscard]] virtual bool IsFolderOfUninstalledPackage(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;
};

} // namespace TolvexPackages
