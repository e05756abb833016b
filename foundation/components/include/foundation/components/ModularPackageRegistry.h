#pragma once

#include "foundation/components/IModularPackageRegistry.h"
#include "foundation/events/EventMgr.h"

#include <mutex>
#include <vector>

namespace TolvexComponents {

/// A registry of the components that its owner hands to it.
class KX_EXPORT ModularPackageRegistry final : public IModularPackageRegistry {
public:
    using Components = std::vector<std::shared_ptr<const IComponent>>;

    ModularPackageRegistry();
    ~ModularPackageRegistry() override;

    [[nodiscard]] std::optional<ComponentIdentifier>
    FindComponentOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    [[nodiscard]] std::shared_ptr<const IComponent> GetComponent(const ComponentIdentifier& identifier) const override;

    /// Puts `components` in the place of all that were here, then publishes ModularPackageRegistryHasBeenChanged.
    /// Throws std::invalid_argument, and changes nothing, when two have one identifier or one root folder. What a
    /// handler throws passes through; the change stands. For one thread at a time.
    void ReplaceComponents(const Components& components, Tolvex::EventMgr& events);

private:
    class Snapshot;
    [[nodiscard]] std::shared_ptr<const Snapshot> GetSnapshot() const;

    mutable std::mutex mutex;
    std::shared_ptr<const Snapshot> snapshot; // guarded by `mutex`; never null
};

} // namespace TolvexComponents
