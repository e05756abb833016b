#include "foundation/components/PackageRegistry.h"

#include "FolderOwners.h"

#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace TolvexPackages {

using Tolvex::CanonicalAbsoluteIRI;

struct PackageRegistry::Contents {
    Contents(Packages given, const std::vector<CanonicalAbsoluteIRI>& uninstalledFolders) : packages(std::move(given)) {
        for (const auto& record : packages)
            Add(record);
        for (const auto& folder : uninstalledFolders)
            owners.Add(folder, nullptr); // a registered package goes before
    }

    void Add(const std::shared_ptr<const PackageRecord>& record) {
        if (record == nullptr || record->memberFolders.empty())
            throw std::invalid_argument("A package without folders was registered.");
        if (!byIdentifier.emplace(record->identifier, record).second)
            throw std::invalid_argument("A package was registered twice.");
        for (const auto& folder : record->memberFolders)
            owners.Add(folder, record.get());
    }

    Packages packages;
    std::unordered_map<ComponentIdentifier, std::shared_ptr<const PackageRecord>,
                       TolvexComponents::ComponentIdentifierHash>
        byIdentifier;
    Tolvex::FolderOwners<const PackageRecord*> owners; // null for a package that is not installed
};

PackageRegistry::PackageRegistry() : PackageRegistry(Packages()) {}

PackageRegistry::PackageRegistry(Packages packages, const std::vector<CanonicalAbsoluteIRI>& uninstalledFolders)
    : contents(std::make_unique<const Contents>(std::move(packages), uninstalledFolders)) {}

PackageRegistry::~PackageRegistry() = default;

const IPackageRegistry::Packages& PackageRegistry::GetPackages() const {
    return contents->packages;
}

std::shared_ptr<const PackageRecord> PackageRegistry::FindPackage(const ComponentIdentifier& identifier) const {
    const auto found = contents->byIdentifier.find(identifier);
    return found == contents->byIdentifier.end() ? nullptr : found->second;
}

std::optional<ComponentIdentifier> PackageRegistry::FindPackageOfFolder(const CanonicalAbsoluteIRI& folder) const {
    const auto* const owner = contents->owners.Find(folder);
    return owner == nullptr || *owner == nullptr ? std::nullopt : std::optional((*owner)->identifier);
}

bool PackageRegistry::IsFolderOfUninstalledPackage(const CanonicalAbsoluteIRI& folder) const {
    const auto* const owner = contents->owners.Find(folder);
    return owner != nullptr && *owner == nullptr;
}

} // namespace TolvexPackages
