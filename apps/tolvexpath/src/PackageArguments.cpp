#include "PackageArguments.h"

#include "CacheArguments.h"
#include "FolderArguments.h"
#include "Messages.h"
#include "PackagesFolder.h"
#include "Session.h"

#include <CLI/CLI.hpp>

namespace TolvexPath {

void PackageArguments::DeclareOptions(CLI::App& arguments) {
    arguments
        .add_option("--packages", folder,
                    "Put the packages that are installed in this folder on the path, too [TOLVEX_PACKAGES]")
        ->type_name("FOLDER");
}

std::optional<std::filesystem::path> PackageArguments::GetFolder() const {
    return FindPackagesFolder(folder);
}

std::vector<Tolvex::AbsoluteIRI> PackageArguments::GetLocations(const FolderArguments& folders) const {
    if (!folders.NamesFolders() && GetFolder())
        return {};
    return folders.GetLocations();
}

PathManagement::PathEntryVector
PackageArguments::CreateEntries(const CacheArguments& cache, const std::vector<Tolvex::AbsoluteIRI>& locations) const {
    const auto packagesFolder = GetFolder();
    if (!packagesFolder)
        return cache.CreateEntries(locations);
    // It lives until all entries are made, so that no package is read twice.
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder, packagesFolder);
    PrintMessages(session.TakePackageReport());
    return cache.CreateEntries(session.PlaceAmongPackages(locations));
}

} // namespace TolvexPath
