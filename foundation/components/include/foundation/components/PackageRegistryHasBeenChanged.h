#pragma once

#include "foundation/components/PackageRegistryChanges.h"

#include <utility>

namespace TolvexPackages {

/// Packages were installed, removed or changed. Published after the change, on the host's event manager.
class PackageRegistryHasBeenChanged {
public:
    /// REQUIRES: `changes` is not null.
    explicit PackageRegistryHasBeenChanged(std::shared_ptr<const PackageRegistryChanges> changes) noexcept
        : changes(std::move(changes)) {}

    [[nodiscard]] const std::shared_ptr<const PackageRegistryChanges>& GetChanges() const noexcept { return changes; }

private:
    std::shared_ptr<const PackageRegistryChanges> changes;
};

} // namespace TolvexPackages
