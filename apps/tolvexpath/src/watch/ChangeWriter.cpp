#include "watch/ChangeWriter.h"

#include "DisplayText.h"
#include "JsonWriter.h"
#include "Output.h"

#include "foundation/environment/StorageAccess.h"
#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::GetStringFromIRI;
using PathManagement::IPathEntry;

namespace {

/// A folder that is gone has an entry without contents, as an empty one has.
bool IsGone(const IPathEntry& folder) {
    if (!folder.GetPathItems()->empty())
        return false;
    try {
        static_cast<void>(TolvexStorageSystem::GetStorageSystemReference()->openFolder(folder.GetIRI()));
    } catch (const Tolvex::StorageError&) {
        return true;
    }
    return false;
}

std::string GetRemark(const IPathEntry& folder, const std::vector<NameChange>& names) {
    const Tolvex::CanonicalAbsoluteIRI location = folder.GetIRI();
    const auto isBelow = [&location](const std::optional<FoundItem>& found) {
        return found && location.isAncestorOf(found->GetItem().GetIRI());
    };
    if (IsGone(folder))
        return "  (folder is gone)";
    const bool hasName = std::ranges::any_of(
        names, [&isBelow](const NameChange& change) { return isBelow(change.before) || isBelow(change.after); });
    return hasName ? "" : "  (no name changed)";
}

class TextWriter final : public ChangeWriter {
public:
    explicit TextWriter(Output& output) : output(output) {}

    void BeginWatch(std::size_t folderCount) override {
        output.Write(fmt::format("watching {} folder{}\n", folderCount, folderCount == 1 ? "" : "s"));
        output.Flush();
    }

    void Write(const ContentChanges& changes) override {
        for (const auto& folder : changes.folders)
            output.Write(ToDisplayText(GetStringFromIRI(folder->GetIRI())) + GetRemark(*folder, changes.names) + '\n');
        WriteFolders(changes.put, "put on the path");
        WriteFolders(changes.moved, "moved on the path");
        WriteFolders(changes.taken, "taken off the path");
        for (const NameChange& change : changes.names)
            output.Write(Describe(change));
        output.Flush();
    }

private:
    void WriteFolders(const PathManagement::PathEntryVector& folders, std::string_view remark) const {
        for (const auto& folder : folders)
            output.Write(fmt::format("{}  ({})\n", ToDisplayText(GetStringFromIRI(folder->GetIRI())), remark));
    }

    static std::string Describe(const NameChange& change) {
        const std::string name = ToDisplayText(change.name);
        if (!change.after)
            return fmt::format("  - {}  was {}\n", name, GetFile(*change.before));
        if (!change.before)
            return fmt::format("  + {}  {}\n", name, GetFile(*change.after));
        return fmt::format("  ~ {}  {}, was {}\n", name, GetFile(*change.after), GetFile(*change.before));
    }

    static std::string GetFile(const FoundItem& found) {
        return ToDisplayText(GetStringFromIRI(found.GetItem().GetIRI()));
    }

    Output& output;
};

class LineWriter final : public ChangeWriter {
public:
    explicit LineWriter(Output& output) : output(output) {}

    void BeginWatch(std::size_t) override {
        JsonWriter json(output);
        BeginEvent(json, u"ready");
        EndEvent(json);
    }

    void Write(const ContentChanges& changes) override {
        JsonWriter json(output);
        BeginEvent(json, u"change");
        WriteFolders(json, "folders", changes.folders);
        for (const auto& [key, folders] :
             {std::pair("put", &changes.put), std::pair("moved", &changes.moved), std::pair("taken", &changes.taken)})
            if (!folders->empty())
                WriteFolders(json, key, *folders);
        WriteNames(json, "added", changes.names, [](const NameChange& change) { return !change.before; });
        WriteNames(json, "removed", changes.names, [](const NameChange& change) { return !change.after; });
        WriteNames(json, "changed", changes.names,
                   [](const NameChange& change) { return change.before && change.after; });
        EndEvent(json);
    }

private:
    static void BeginEvent(JsonWriter& json, Tolvex::ustring_view kind) {
        json.BeginObject();
        json.Key("event");
        json.String(kind);
    }

    void EndEvent(JsonWriter& json) const {
        json.EndObject();
        output.Write('\n');
        output.Flush();
    }

    static void WriteFolders(JsonWriter& json, const char* key, const PathManagement::PathEntryVector& folders) {
        json.Key(key);
        json.BeginArray();
        for (const auto& folder : folders)
            json.String(GetStringFromIRI(folder->GetIRI()));
        json.EndArray();
    }

    static void WriteNames(JsonWriter& json, const char* key, const std::vector<NameChange>& changes,
                           bool (*isWanted)(const NameChange&)) {
        json.Key(key);
        json.BeginArray();
        for (const NameChange& change : changes)
            if (isWanted(change))
                WriteName(json, change);
        json.EndArray();
    }

    static void WriteName(JsonWriter& json, const NameChange& change) {
        json.BeginObject();
        json.Key("name");
        json.String(change.name);
        WriteFile(json, "before", change.before);
        WriteFile(json, "after", change.after);
        json.EndObject();
    }

    static void WriteFile(JsonWriter& json, const char* key, const std::optional<FoundItem>& found) {
        if (!found)
            return;
        json.Key(key);
        json.String(GetStringFromIRI(found->GetItem().GetIRI()));
    }

    Output& output;
};

} // namespace

std::unique_ptr<ChangeWriter> CreateChangeWriter(Output& output, bool asJson) {
    if (asJson)
        return std::make_unique<LineWriter>(output);
    return std::make_unique<TextWriter>(output);
}

} // namespace TolvexPath
