#include "EntryTree.h"

#include "DisplayText.h"
#include "Output.h"

#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <array>

namespace TolvexPath {

using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using PathManagement::PathEntryVector;
using PathManagement::PathItem;

namespace {

struct KindOfFolder {
    const char* name;
    const char* colour;   // SGR parameters
    bool showsDescriptor; // its descriptor says more than its folder's name
};

constexpr std::array<KindOfFolder, PathManagement::pathEntryTypeCount> kindsOfFolder = {{
    {"main folder", "1", false},
    {"package", "1;34", true},
    {"class", "1;36", true},
    {"private folder", "33", false},
    {"UDD class", "36", true},
    {"resources folder", "32", false},
}};

constexpr const char* quiet = "2"; // SGR parameter

const KindOfFolder& GetKind(const IPathEntry& entry) {
    return kindsOfFolder.at(static_cast<std::size_t>(entry.GetPathEntryType()));
}

std::string DescribeKind(const IPathEntry& entry) {
    const KindOfFolder& kind = GetKind(entry);
    return kind.showsDescriptor ? fmt::format("{} {}", kind.name, ToDisplayText(entry.GetDescriptor())) : kind.name;
}

/// "2 code, 1 other"; "empty" for no file.
std::string DescribeFiles(const IPathEntry& entry) {
    constexpr std::array<const char*, 3> names = {"code", "native", "other"};
    std::array<std::size_t, names.size()> counts{};
    for (const auto& item : *entry.GetPathItems())
        ++counts.at(static_cast<std::size_t>(item->GetKind()));
    std::string text;
    for (std::size_t kind = 0; kind < names.size(); ++kind)
        if (counts[kind] > 0)
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", counts[kind], names[kind]);
    return text.empty() ? "empty" : text;
}

PathEntryVector CollectChildren(const IPathEntry& entry) {
    PathEntryVector children = *entry.GetPackageEntries();
    for (const auto& group : {entry.GetMethodEntries(), entry.GetUDDClassEntries()})
        children.insert(children.end(), group->begin(), group->end());
    for (const auto& child : {entry.GetPrivateEntry(), entry.GetResourcesEntry()})
        if (child)
            children.push_back(child);
    return children;
}

} // namespace

void EntryTree::Draw(const IPathEntry& entry) const {
    WriteFolder(entry, PathManagement::GetStringFromIRI(entry.GetIRI()));
    DrawBelow(entry, "");
}

void EntryTree::DrawBelow(const IPathEntry& entry, const std::string& indent) const {
    const PathEntryVector children = CollectChildren(entry);
    if (options.withFiles) {
        for (const auto& item : *entry.GetPathItems()) {
            output.Write(indent + (children.empty() ? "   " : "│  "));
            output.Write(ToDisplayText(item->GetIRI().getBaseName()) + "\n");
        }
    }
    for (const auto& child : children) {
        const bool isLast = child == children.back();
        output.Write(indent + (isLast ? "└─ " : "├─ "));
        WriteFolder(*child, child->GetIRI().getBaseName());
        DrawBelow(*child, indent + (isLast ? "   " : "│  "));
    }
}

void EntryTree::WriteFolder(const IPathEntry& entry, Tolvex::ustring_view name) const {
    Paint(GetKind(entry).colour, ToDisplayText(name));
    Paint(quiet, fmt::format("  {}: {}", DescribeKind(entry), DescribeFiles(entry)));
    output.Write('\n');
}

void EntryTree::Paint(std::string_view colour, std::string_view text) const {
    if (options.inColour)
        output.Write(fmt::format("\x1b[{}m{}\x1b[0m", colour, text));
    else
        output.Write(text);
}

} // namespace TolvexPath
