#include "foundation/components/InstalledPackages.h"

#include "foundation/components/PackageRegistry.h"

#include <utility>

namespace TolvexPackages {

using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;
using Tolvex::FromUtf8;

namespace {

CanonicalAbsoluteIRI Locate(const std::filesystem::path& folder) {
    return {AbsoluteIRI("file", FromUtf8(folder.native())), {}};
}

std::shared_ptr<const PackageRecord> MakeRecord(const InstalledPackage& package) {
    PackageRecord record{.identifier = package.manifest.identifier,
                         .isManaged = package.isManaged,
                         .isForPath = !package.isManaged && package.isAskedFor,
                         .isWatchedClosely = !package.isManaged,
                         .order = package.order,
                         .properties = package.manifest.properties};
    record.properties.insert_or_assign(std::string(manualInstallProperty), package.isAskedFor);
    record.memberFolders.push_back(Locate(package.root));
    for (std::size_t i = 1; i < package.manifest.folders.size(); ++i)
        record.memberFolders.push_back(Locate(package.root / package.manifest.folders[i]));
    return std::make_shared<const PackageRecord>(std::move(record));
}

} // namespace

InstalledPackages::InstalledPackages(std::vector<InstalledPackage> packages) noexcept : packages(std::move(packages)) {}

std::vector<const InstalledPackage*>
InstalledPackages::Find(Tolvex::ustring_view name,
                        const std::optional<TolvexComponents::ComponentVersion>& version) const {
    std::vector<const InstalledPackage*> found;
    for (const auto& package : packages) {
        const ComponentIdentifier& identifier = package.manifest.identifier;
        if (identifier.GetName() == name && (!version || identifier.GetVersion() == *version))
            found.push_back(&package);
    }
    return found;
}

std::shared_ptr<const IPackageRegistry> InstalledPackages::CreateRegistry() const {
    IPackageRegistry::Packages records;
    std::vector<CanonicalAbsoluteIRI> unusable;
    for (const auto& package : packages) {
        if (package.problem)
            unusable.push_back(Locate(package.root));
        else
            records.push_back(MakeRecord(package));
    }
    return std::make_shared<const PackageRegistry>(std::move(records), unusable);
}

} // namespace TolvexPackages
