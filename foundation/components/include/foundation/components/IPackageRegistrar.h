#pragma once

#include "foundation/components/IPackageRegistry.h"
#include "foundation/events/EventMgr.h"

namespace TolvexPackages {

/// Holds the present package registry. Questions may be asked from any thread; answers of two calls may come from two
/// states: who needs one state takes the registry.
class IPackageRegistrar {
public:
    virtual ~IPackageRegistrar() = default;

    /// Never null.
    [[nodiscard]] virtual std::shared_ptr<const IPackageRegistry> GetRegistry() const = 0;

    /// As IPackageRegistry::FindPackageOfFolder on the present registry.
    [[nodiscard]] virtual std::optional<ComponentIdentifier>
    FindPackageOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;

    /// As IPackageRegistry::FindPackage on the present registry.
    [[nodiscard]] virtual std::shared_ptr<const PackageRecord>
    FindPackage(const ComponentIdentifier& identifier) const = 0;

    /// Puts `registry`, which is not null, in the place of the present one, then publishes
    /// PackageRegistryHasBeenChanged, also when nothing differs. What a handler throws passes through; the change
    /// stands. For one thread at a time.
    virtual void ReplaceRegistry(std::shared_ptr<const IPackageRegistry> registry, Tolvex::EventMgr& events) = 0;
};

/// The registrar of the process. Without a package until its registry is replaced.
[[nodiscard]] KX_EXPORT IPackageRegistrar& GetPackageRegistrar();

/// A registrar of its own, without a package.
[[nodiscard]] KX_EXPORT std::unique_ptr<IPackageRegistrar> CreatePackageRegistrar();

} // namespace TolvexPackages
