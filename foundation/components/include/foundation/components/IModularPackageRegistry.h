#pragma once

#include "foundation/components/IComponent.h"

#include <optional>

namespace TolvexComponents {

/// Knows the components (modular packages) of the environment. Safe from any thread. Changes are announced by
/// ModularPackageRegistryHasBeenChanged.
class IModularPackageRegistry {
public:
    virtual ~IModularPackageRegistry() = default;

    /// The component in which a folder lies; of components inside each other, the innermost.
    [[nodiscard]] virtual std::optional<ComponentIdentifier>
    FindComponentOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;

    /// Never null. Throws Tolvex::InternalException for a component that is not registered (any more).
    [[nodiscard]] virtual std::shared_ptr<const IComponent>
    GetComponent(const ComponentIdentifier& identifier) const = 0;
};

} // namespace TolvexComponents
