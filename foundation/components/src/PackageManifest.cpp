#include "foundation/components/PackageManifest.h"

#include "FolderNesting.h"
#include "ManifestJson.h"

#include <set>
#include <system_error>

namespace TolvexPackages {

namespace fs = std::filesystem;

namespace {

/// Why a member folder cannot be one; empty when it can.
std::string FindFault(const fs::path& root, const std::string& folder, std::set<fs::path>& seen) {
    std::error_code error;
    const fs::path place = fs::canonical(root / folder, error);
    if (error || !fs::is_directory(place, error))
        return "the folder '" + folder + "' is not there";
    if (!IsSameOrBelow(place, root))
        return "the folder '" + folder + "' is a link that leads out of the package, to '" + place.native() + '\'';
    if (!seen.insert(place).second)
        return "the folder '" + folder + "' stands there twice, by another way";
    return {};
}

void CheckFolders(const fs::path& root, const PackageManifest& manifest, const LocatedValue& value,
                  const std::string& fileName) {
    const LocatedObject object(value, fileName, "a package's manifest");
    const fs::path place = fs::canonical(root);
    std::set<fs::path> seen;
    for (std::size_t i = 0; i < manifest.folders.size(); ++i) {
        if (auto fault = FindFault(place, manifest.folders[i], seen); !fault.empty())
            object.Refuse(object.GetArray("folders")[i].line, std::move(fault));
    }
}

} // namespace

bool operator==(const PackageManifest& a, const PackageManifest& b) {
    return a.identifier == b.identifier && a.identifier.GetName() == b.identifier.GetName() && a.folders == b.folders &&
           a.properties == b.properties;
}

PackageManifest ReadPackageManifest(const fs::path& root) {
    std::error_code error;
    if (!fs::is_directory(root, error))
        throw PackageError({root.native(), 0, "is no folder"});
    const std::string fileName = (root / PackageManifest::fileName).native();
    if (!fs::is_regular_file(fileName, error))
        throw PackageError({fileName, 0,
                            fs::symlink_status(fileName, error).type() == fs::file_type::not_found
                                ? "is missing; a package says there what it is"
                                : "is no file; a package says there what it is"});
    const LocatedValue value = ReadLocatedJson(fileName);
    PackageManifest manifest = ReadManifestJson(value, fileName);
    CheckFolders(root, manifest, value, fileName);
    return manifest;
}

} // namespace TolvexPackages
