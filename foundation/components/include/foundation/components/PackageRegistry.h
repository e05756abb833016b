#pragma once

#include "foundation/components/IPackageRegistry.h"

namespace TolvexPackages {

/// A registry that says what it was told when it was made.
class KX_EXPORT PackageRegistry final : public IPackageRegistry {
public:
    /// No package.
    PackageRegistry();

    /// `uninstalledFolders`: the root folders of packages that are known but not installed. Throws
    /// std::invalid_argument for a null record, one without folders, or two of one identifier. Of two packages that
    /// list one folder, the first owns it.
    explicit PackageRegistry(Packages packages,
                             const std::vector<Tolvex::CanonicalAbsoluteIRI>& uninstalledFolders = {});
    ~PackageRegistry() override;

    [[nodiscard]] const Packages& GetPackages() const override;
    [[nodiscard]] std::shared_ptr<const PackageRecord>
    FindPackage(const ComponentIdentifier& identifier) const override;
    [[nodiscard]] std::optional<ComponentIdentifier>
    FindPackageOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const override;
    [[nodiscard]] bool IsFolderOfUninstalledPackage(const Tolvex::CanonicalAbsoluteIRI& folder) const override;

private:
    struct Contents;
    std::unique_ptr<const Contents> contents;
};

} // namespace TolvexPackages
