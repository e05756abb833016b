#include "EntryJson.h"

#include "JsonWriter.h"

#include "path_utilities/PathText.h"

namespace TolvexPath {

using PathManagement::IPathEntry;
using PathManagement::PathEntryVector;
using PathManagement::PathItem;

namespace {

void WriteItem(JsonWriter& json, const PathItem& item) {
    json.BeginObject();
    json.Key("stem");
    json.String(item.GetStem());
    json.Key("extension");
    json.String(item.GetExtension());
    json.Key("normalizedStem");
    json.String(item.GetNormalizedStem());
    json.Key("kind");
    json.Number(static_cast<std::uint64_t>(item.GetKind()));
    json.EndObject();
}

void WriteItems(JsonWriter& json, const PathManagement::PathItemVector& items) {
    json.Key("items");
    json.BeginArray();
    for (const auto& item : items)
        WriteItem(json, *item);
    json.EndArray();
}

void WriteChildren(JsonWriter& json, std::string_view key, const PathEntryVector& children) {
    json.Key(key);
    json.BeginArray();
    for (const auto& child : children)
        WriteEntryJson(json, *child);
    json.EndArray();
}

void WriteOnlyChild(JsonWriter& json, std::string_view key, const std::shared_ptr<const IPathEntry>& child) {
    json.Key(key);
    if (child)
        WriteEntryJson(json, *child);
    else
        json.Null();
}

} // namespace

void WriteEntryJson(JsonWriter& json, const IPathEntry& entry) {
    const Tolvex::CanonicalAbsoluteIRI location = entry.GetIRI();
    json.BeginObject();
    json.Key("path");
    json.String(PathManagement::GetStringFromIRI(location));
    json.Key("iri");
    json.String(location.toString());
    json.Key("name");
    json.String(location.getBaseName());
    json.Key("type");
    json.Number(static_cast<std::uint64_t>(entry.GetPathEntryType()));
    json.Key("descriptor");
    json.String(entry.GetDescriptor());
    WriteItems(json, *entry.GetPathItems());
    WriteChildren(json, "packages", *entry.GetPackageEntries());
    WriteChildren(json, "methods", *entry.GetMethodEntries());
    WriteChildren(json, "uddClasses", *entry.GetUDDClassEntries());
    WriteOnlyChild(json, "private", entry.GetPrivateEntry());
    WriteOnlyChild(json, "resources", entry.GetResourcesEntry());
    json.EndObject();
}

} // namespace TolvexPath
