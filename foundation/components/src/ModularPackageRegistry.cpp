#include "foundation/components/ModularPackageRegistry.h"

#include "foundation/components/ModularPackageRegistryHasBeenChanged.h"
#include "foundation/messages/Exceptions.h"

#include "FolderOwners.h"

#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace TolvexComponents {

class ModularPackageRegistry::Snapshot {
public:
    explicit Snapshot(const Components& registered) {
        for (const auto& component : registered) {
            const IComponent* const owner = component.get();
            if (!components.emplace(owner->GetIdentifier(), component).second)
                throw std::invalid_argument("A component was registered twice.");
            if (!owners.Add(owner->GetRootFolder(), owner))
                throw std::invalid_argument("Two components were registered for one folder.");
        }
    }

    [[nodiscard]] const IComponent* FindOwner(const Tolvex::AbsoluteIRI& folder) const {
        const auto* const owner = owners.Find(folder);
        return owner == nullptr ? nullptr : *owner;
    }

    [[nodiscard]] std::shared_ptr<const IComponent> Find(const ComponentIdentifier& identifier) const {
        const auto found = components.find(identifier);
        return found == components.end() ? nullptr : found->second;
    }

private:
    std::unordered_map<ComponentIdentifier, std::shared_ptr<const IComponent>, ComponentIdentifierHash> components;
    Tolvex::FolderOwners<const IComponent*> owners;
};

ModularPackageRegistry::ModularPackageRegistry() : snapshot(std::make_shared<const Snapshot>(Components())) {}

ModularPackageRegistry::~ModularPackageRegistry() = default;

std::shared_ptr<const ModularPackageRegistry::Snapshot> ModularPackageRegistry::GetSnapshot() const {
    const std::lock_guard lock(mutex);
    return snapshot;
}

std::optional<ComponentIdentifier>
ModularPackageRegistry::FindComponentOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const {
    const auto present = GetSnapshot();
    const IComponent* const owner = present->FindOwner(folder);
    return owner == nullptr ? std::nullopt : std::optional(owner->GetIdentifier());
}

std::shared_ptr<const IComponent> ModularPackageRegistry::GetComponent(const ComponentIdentifier& identifier) const {
    if (auto component = GetSnapshot()->Find(identifier))
        return component;
    throw Tolvex::InternalException("The component " + Tolvex::ToUtf8(identifier.GetName()) + " " +
                                    Tolvex::ToUtf8(identifier.GetVersion().toString()) + " is not registered.");
}

void ModularPackageRegistry::ReplaceComponents(const Components& components, Tolvex::EventMgr& events) {
    auto next = std::make_shared<const Snapshot>(components);
    {
        const std::lock_guard lock(mutex);
        snapshot.swap(next);
    }
    next.reset(); // outside the lock: it may be the last to know large components
    events.Publish(ModularPackageRegistryHasBeenChanged());
}

} // namespace TolvexComponents
