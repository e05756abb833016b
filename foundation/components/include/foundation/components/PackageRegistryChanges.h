#pragma once

#include "foundation/components/IPackageRegistry.h"

#include <span>

namespace TolvexPackages {

/// What of a package's record has changed. Bits of a set.
enum class PackageChangeKind : std::uint32_t {
    folders = 1,
    otherProperties = 2, ///< all that is not a folder
    any = 3,
};

/// The difference between two states of the registry, both of which it keeps. Immutable; safe from any thread.
class KX_EXPORT PackageRegistryChanges {
public:
    /// REQUIRES: neither is null.
    PackageRegistryChanges(std::shared_ptr<const IPackageRegistry> before,
                           std::shared_ptr<const IPackageRegistry> after);

    [[nodiscard]] const IPackageRegistry& GetRegistryBefore() const noexcept { return *before; }
    [[nodiscard]] const IPackageRegistry& GetRegistryAfter() const noexcept { return *after; }

    /// In the order of the registry after the change; so is GetChanged.
    [[nodiscard]] std::span<const ComponentIdentifier> GetAdded() const noexcept { return added; }

    /// In the order of the registry before the change.
    [[nodiscard]] std::span<const ComponentIdentifier> GetRemoved() const noexcept { return removed; }

    /// The packages that are registered before and after, and whose records differ in one of the kinds asked for.
    [[nodiscard]] std::vector<ComponentIdentifier> GetChanged(PackageChangeKind kinds) const;

private:
    std::shared_ptr<const IPackageRegistry> before;
    std::shared_ptr<const IPackageRegistry> after;
    std::vector<ComponentIdentifier> added;
    std::vector<ComponentIdentifier> removed;
};

} // namespace TolvexPackages
