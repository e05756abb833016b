#include "PackageRegistryFile.h"

#include "LocatedJson.h"
#include "ManifestJson.h"
#include "foundation/storage/FileReplacement.h"

#include <boost/json.hpp>

#include <ostream>
#include <unordered_set>
#include <utility>

namespace TolvexPackages {

namespace fs = std::filesystem;
namespace json = boost::json;

namespace {

constexpr std::uint64_t format = 1; // goes up when older programs would misread the file

/// What stands here may be removed from the disk one day, so it must lead nowhere else.
bool IsPlainName(std::string_view name) {
    return !name.empty() && name[0] != '.' && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

RecordedPackage ReadPackage(const LocatedValue& value, const std::string& fileName) {
    const LocatedObject object(value, fileName, "a package");
    object.RefuseOthers({"manifest", "folder", "order", "managed", "askedFor"});
    RecordedPackage package{.manifest = ReadManifestJson(object.Get("manifest"), fileName),
                            .folder = object.GetText("folder"),
                            .order = object.GetCount("order"),
                            .isManaged = object.GetTruth("managed"),
                            .isAskedFor = object.GetTruth("askedFor")};
    if (package.isManaged ? !IsPlainName(package.folder) : !fs::path(package.folder).is_absolute())
        object.Refuse(object.Get("folder").line, "'" + package.folder + "' is no folder for such a package");
    return package;
}

/// The packages that a registry holds, each once.
std::vector<RecordedPackage> ReadPackages(const LocatedObject& registry, std::uint64_t nextNumber,
                                          const std::string& fileName) {
    std::vector<RecordedPackage> packages;
    std::unordered_set<TolvexComponents::ComponentIdentifier, TolvexComponents::ComponentIdentifierHash> identifiers;
    std::unordered_set<std::string> folders;
    for (const LocatedValue& value : registry.GetArray("packages")) {
        RecordedPackage& package = packages.emplace_back(ReadPackage(value, fileName));
        if (package.order >= nextNumber)
            registry.Refuse(value.line, "'order' has to be less than 'nextNumber'");
        if (!identifiers.insert(package.manifest.identifier).second || !folders.insert(package.folder).second)
            registry.Refuse(value.line, "this package, or its folder, stands there twice");
    }
    return packages;
}

json::value MakePackageJson(const RecordedPackage& package) {
    return {{"manifest", MakeManifestJson(package.manifest)},
            {"folder", package.folder},
            {"order", package.order},
            {"managed", package.isManaged},
            {"askedFor", package.isAskedFor}};
}

RecordedPackages ReadContents(const std::string& fileName) {
    const LocatedValue value = ReadLocatedJson(fileName);
    const LocatedObject object(value, fileName, "the registry");
    if (object.GetCount("format") != format)
        object.Refuse(object.Get("format").line, "this program knows format " + std::to_string(format) + " only");
    object.RefuseOthers({"format", "nextNumber", "packages", "leftovers"});
    RecordedPackages recorded{.nextNumber = object.GetCount("nextNumber"), .packages = {}, .leftovers = {}};
    recorded.packages = ReadPackages(object, recorded.nextNumber, fileName);
    for (const LocatedValue& leftover : object.GetArray("leftovers")) {
        const auto* const name = std::get_if<std::string>(&leftover.value);
        if (name == nullptr || !IsPlainName(*name))
            object.Refuse(leftover.line, "a leftover has to be the name of a folder");
        recorded.leftovers.push_back(*name);
    }
    return recorded;
}

} // namespace

RecordedPackages ReadRegistryFile(const fs::path& file) {
    std::error_code error;
    if (fs::status(file, error).type() == fs::file_type::not_found)
        return {};
    try {
        return ReadContents(file.native());
    } catch (const PackageError& refusal) {
        PackageProblem problem = refusal.GetProblem();
        problem.reason += " (mend the file, or move it away and install the packages anew)";
        throw PackageError(std::move(problem));
    }
}

void WriteRegistryFile(const fs::path& file, const RecordedPackages& recorded) {
    Tolvex::FileReplacement replacement(file);
    std::ostream& stream = replacement.GetStream();
    // A package a line: a person who has to mend the file finds the place that a message names.
    stream << "{\"format\": " << format << ",\n\"nextNumber\": " << recorded.nextNumber << ",\n\"packages\": [";
    for (std::size_t i = 0; i < recorded.packages.size(); ++i)
        stream << (i == 0 ? "\n" : ",\n") << json::serialize(MakePackageJson(recorded.packages[i]));
    stream << "],\n\"leftovers\": "
           << json::serialize(json::array(recorded.leftovers.begin(), recorded.leftovers.end())) << "}\n";
    replacement.Commit();
}

} // namespace TolvexPackages
