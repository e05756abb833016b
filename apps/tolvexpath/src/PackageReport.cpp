#include "PackageReport.h"

#include "DisplayText.h"
#include "JsonWriter.h"
#include "Output.h"

#include "foundation/components/PackageStore.h"

#include <boost/uuid/uuid_io.hpp>
#include <fmt/format.h>

namespace TolvexPath {

using Tolvex::FromUtf8;
using TolvexPackages::InstalledPackage;
using TolvexPackages::PackageProblem;

namespace {

void WriteText(JsonWriter& json, std::string_view key, const std::string& bytes) {
    json.Key(key);
    json.String(FromUtf8(bytes));
}

void WriteTruth(JsonWriter& json, std::string_view key, bool truth) {
    json.Key(key);
    json.Boolean(truth);
}

void WriteProblem(JsonWriter& json, const PackageProblem& problem) {
    json.BeginObject();
    WriteText(json, "file", problem.file);
    json.Key("line");
    json.Number(problem.line);
    WriteText(json, "reason", problem.reason);
    json.EndObject();
}

void WritePackage(JsonWriter& json, const InstalledPackage& package) {
    const auto& identifier = package.manifest.identifier;
    json.BeginObject();
    json.Key("name");
    json.String(identifier.GetName());
    json.Key("version");
    json.String(identifier.GetVersion().toString());
    WriteText(json, "id", boost::uuids::to_string(identifier.GetUniqueID()));
    WriteText(json, "root", package.root.native());
    json.Key("folders");
    json.BeginArray();
    for (const auto& folder : package.manifest.folders)
        json.String(FromUtf8(folder));
    json.EndArray();
    json.Key("order");
    json.Number(package.order);
    WriteTruth(json, "inPlace", !package.isManaged);
    WriteTruth(json, "askedFor", package.isAskedFor);
    WriteTruth(json, "changed", package.isChanged);
    json.Key("problem");
    if (package.problem)
        WriteProblem(json, *package.problem);
    else
        json.Null();
    json.EndObject();
}

std::string ListRemarks(const InstalledPackage& package) {
    std::string remarks;
    remarks += package.isManaged ? "" : ", in place";
    remarks += package.isAskedFor ? "" : ", not asked for";
    remarks += package.isChanged ? ", changed since it was recorded" : "";
    remarks += package.problem ? ", cannot be used" : "";
    return remarks;
}

} // namespace

void WritePackagesJson(Output& output, const std::filesystem::path& store,
                       const std::vector<const InstalledPackage*>& packages) {
    JsonWriter json(output);
    json.BeginObject();
    WriteText(json, "folder", store.native());
    json.Key("packages");
    json.BeginArray();
    for (const auto* const package : packages)
        WritePackage(json, *package);
    json.EndArray();
    json.EndObject();
    output.Write('\n');
}

void ShowPackages(Output& output, const std::vector<const InstalledPackage*>& packages) {
    for (const auto* const package : packages)
        output.Write(fmt::format("{}  {}{}\n",
                                 ToDisplayText(TolvexPackages::GetPackageText(package->manifest.identifier)),
                                 ToDisplayText(FromUtf8(package->root.native())), ListRemarks(*package)));
}

} // namespace TolvexPath
