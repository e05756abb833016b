#include "path_utilities/PackageFolders.h"

namespace PathManagement {

std::vector<Tolvex::CanonicalAbsoluteIRI>
GetPathFoldersForPackages(const TolvexPackages::IPackageRegistry& registry,
                          std::span<const TolvexComponents::ComponentIdentifier> packages) {
    std::vector<Tolvex::CanonicalAbsoluteIRI> folders;
    folders.reserve(packages.size());
    for (const auto& package : packages)
        if (const auto record = registry.FindPackage(package))
            folders.push_back(record->GetRootFolder());
    return folders;
}

} // namespace PathManagement
