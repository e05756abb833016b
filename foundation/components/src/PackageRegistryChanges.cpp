#include "foundation/components/PackageRegistryChanges.h"

#include <utility>

namespace TolvexPackages {

namespace {

/// The packages of `registry` that `other` does not know.
std::vector<ComponentIdentifier> ListUnknownTo(const IPackageRegistry& other, const IPackageRegistry& registry) {
    std::vector<ComponentIdentifier> unknown;
    for (const auto& record : registry.GetPackages()) {
        if (other.FindPackage(record->identifier) == nullptr)
            unknown.push_back(record->identifier);
    }
    return unknown;
}

bool Includes(PackageChangeKind kinds, PackageChangeKind kind) {
    return (static_cast<std::uint32_t>(kinds) & static_cast<std::uint32_t>(kind)) != 0;
}

bool DiffersInOtherProperties(const PackageRecord& before, const PackageRecord& after) {
    PackageRecord moved = before;
    moved.memberFolders = after.memberFolders;
    return moved != after;
}

bool Differs(const PackageRecord& before, const PackageRecord& after, PackageChangeKind kinds) {
    return (Includes(kinds, PackageChangeKind::folders) && before.memberFolders != after.memberFolders) ||
           (Includes(kinds, PackageChangeKind::otherProperties) && DiffersInOtherProperties(before, after));
}

} // namespace

PackageRegistryChanges::PackageRegistryChanges(std::shared_ptr<const IPackageRegistry> before,
                                               std::shared_ptr<const IPackageRegistry> after)
    : before(std::move(before)), after(std::move(after)), added(ListUnknownTo(*this->before, *this->after)),
      removed(ListUnknownTo(*this->after, *this->before)) {}

std::vector<ComponentIdentifier> PackageRegistryChanges::GetChanged(PackageChangeKind kinds) const {
    std::vector<ComponentIdentifier> changed;
    for (const auto& record : after->GetPackages()) {
        const auto former = before->FindPackage(record->identifier);
        if (former != nullptr && former != record && Differs(*former, *record, kinds))
            changed.push_back(record->identifier);
    }
    return changed;
}

} // namespace TolvexPackages
