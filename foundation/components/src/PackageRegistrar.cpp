#include "foundation/components/IPackageRegistrar.h"

#include "foundation/components/PackageRegistry.h"
#include "foundation/components/PackageRegistryHasBeenChanged.h"

#include <mutex>
#include <utility>

namespace TolvexPackages {

namespace {

class PackageRegistrar final : public IPackageRegistrar {
public:
    [[nodiscard]] std::shared_ptr<const IPackageRegistry> GetRegistry() const override {
        const std::lock_guard lock(mutex);
        return present;
    }

    [[nodiscard]] std::optional<ComponentIdentifier>
    FindPackageOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const override {
        return GetRegistry()->FindPackageOfFolder(folder);
    }

    [[nodiscard]] std::shared_ptr<const PackageRecord>
    FindPackage(const ComponentIdentifier& identifier) const override {
        return GetRegistry()->FindPackage(identifier);
    }

    void ReplaceRegistry(std::shared_ptr<const IPackageRegistry> registry, Tolvex::EventMgr& events) override {
        auto changes = std::make_shared<const PackageRegistryChanges>(GetRegistry(), registry);
        {
            const std::lock_guard lock(mutex);
            present.swap(registry);
        }
        events.Publish(PackageRegistryHasBeenChanged(std::move(changes)));
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const IPackageRegistry> present = std::make_shared<const PackageRegistry>(); // guarded by `mutex`
};

} // namespace

IPackageRegistrar& GetPackageRegistrar() {
    static PackageRegistrar registrar;
    return registrar;
}

std::unique_ptr<IPackageRegistrar> CreatePackageRegistrar() {
    return std::make_unique<PackageRegistrar>();
}

} // namespace TolvexPackages
