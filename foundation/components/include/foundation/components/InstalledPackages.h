#pragma once

#include "foundation/components/IPackageRegistry.h"
#include "foundation/components/PackageManifest.h"

namespace TolvexPackages {

/// One package of a store.
struct InstalledPackage {
    /// As it is now; for a package that cannot be used, as it was recorded.
    PackageManifest manifest;
    std::filesystem::path root; ///< absolute
    std::uint64_t order = 0;    ///< as in PackageRecord
    bool isManaged = true;      ///< a copy that the store made; false for a folder used where it lies
    bool isAskedFor = true;     ///< a person asked for it; false when another package needs it

    /// The manifest is another one than was recorded: somebody else has changed the package.
    bool isChanged = false;

    /// Why the package cannot be used.
    std::optional<PackageProblem> problem{};

    bool operator==(const InstalledPackage&) const = default;
};

/// The packages of a store at one moment, in the order of their installation. A value; safe from any thread.
class KX_EXPORT InstalledPackages {
public:
    explicit InstalledPackages(std::vector<InstalledPackage> packages) noexcept;

    [[nodiscard]] const std::vector<InstalledPackage>& Get() const noexcept { return packages; }

    /// Those of a name, of all versions or of one.
    [[nodiscard]] std::vector<const InstalledPackage*>
    Find(Tolvex::ustring_view name, const std::optional<TolvexComponents::ComponentVersion>& version = {}) const;

    /// The packages that can be used; the folders of the others count as those of packages that are not installed.
    /// Never null.
    [[nodiscard]] std::shared_ptr<const IPackageRegistry> CreateRegistry() const;

private:
    std::vector<InstalledPackage> packages;
};

} // namespace TolvexPackages
