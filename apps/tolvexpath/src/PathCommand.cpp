#include "CacheArguments.h"
#include "Commands.h"
#include "DisplayText.h"
#include "FolderArguments.h"
#include "FoldersOnPath.h"
#include "JsonWriter.h"
#include "KindNames.h"
#include "Output.h"
#include "Session.h"

#include "foundation/messages/Catalogue.h"
#include "path_utilities/PathText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace TolvexPath {

namespace {

constexpr const char* help = R"(The path as an environment would have it: missing folders, and such as may not stand
on a path by themselves, are left out, and of two names of one folder the first
counts. Files are counted with those of the special folders below. 'watched' is how
changes are to be noticed: where the kernel gives no notification, as on network
drives, a time check stands in.

Examples:
  tolvexpath path -p geometry -p statistics
  tolvexpath path --path-file path.txt --json
  TOLVEXPATH=geometry:statistics tolvexpath path
  tolvexpath path --path-file path.txt --cache toolboxes.cache --root toolboxes

Exit status: 0 every folder is on the path; 1 something was left out; 2 wrong use.)";

class PathCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "path"; }
    [[nodiscard]] std::string GetSummary() const override { return "Show the resulting path and what was left out"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    FolderArguments folders;
    CacheArguments cache;
    bool asJson = false;
};

void WriteJson(Output& output, const std::vector<FolderOnPath>& folders, const Tolvex::Notification& leftOut) {
    JsonWriter json(output);
    const auto write = [&json](std::string_view key, Tolvex::ustring_view text) {
        json.Key(key);
        json.String(text);
    };
    json.BeginObject();
    json.Key("folders");
    json.BeginArray();
    for (const auto& [entry, fileCount, state] : folders) {
        json.BeginObject();
        write("folder", PathManagement::GetStringFromIRI(entry->GetIRI()));
        write("kind", Tolvex::FromUtf8(GetKindName(entry->GetPathEntryType())));
        json.Key("files");
        json.Number(fileCount);
        write("source", Tolvex::FromUtf8(GetSourceName(state.source)));
        write("watched", Tolvex::FromUtf8(GetWatchName(state.level)));
        json.EndObject();
    }
    json.EndArray();
    json.Key("left_out");
    json.BeginArray();
    leftOut.ForEach([&](const Tolvex::Notification::Entry& problem) {
        json.BeginObject();
        write("id", Tolvex::FromUtf8(problem.message.GetFullName()));
        write("message", Tolvex::FromUtf8(Tolvex::GetMessageText(problem.message)));
        json.EndObject();
        return false;
    });
    json.EndArray();
    json.EndObject();
    output.Write('\n');
}

/// What may be long comes last, so that columns need no measuring.
void ShowFolders(Output& output, const std::vector<FolderOnPath>& folders) {
    constexpr const char* line = "{:>5}  {:<9}  {:>7}  {:<10}  {:<12}  {}\n";
    if (folders.empty()) {
        output.Write("The path is empty.\n");
        return;
    }
    output.Write(fmt::format(line, "place", "kind", "files", "source", "watched", "folder"));
    std::size_t place = 0;
    for (const auto& [entry, fileCount, state] : folders)
        output.Write(fmt::format(line, ++place, GetKindName(entry->GetPathEntryType()), fileCount,
                                 GetSourceName(state.source), GetWatchName(state.level),
                                 ToDisplayText(PathManagement::GetStringFromIRI(entry->GetIRI()))));
}

void ShowLeftOut(Output& output, const Tolvex::Notification& leftOut) {
    if (leftOut.IsEmpty())
        return;
    output.Write("\nLeft out:\n");
    leftOut.ForEach([&output](const Tolvex::Notification::Entry& problem) {
        output.Write("  " + ToDisplayText(Tolvex::FromUtf8(Tolvex::GetMessageText(problem.message))) + "\n");
        return false;
    });
}

void PathCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments);
    arguments.add_flag("--json", asJson, "Write one JSON object");
    arguments.footer(help);
}

ExitCode PathCommand::Run() {
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder);
    const Tolvex::Notification leftOut = cache.SetPath(session, folders.GetLocations());
    const std::vector<FolderOnPath> onPath = DescribeFolders(*session.GetManager().GetPath());
    Output output;
    if (asJson) {
        WriteJson(output, onPath, leftOut);
    } else {
        ShowFolders(output, onPath);
        ShowLeftOut(output, leftOut);
    }
    output.Flush();
    return leftOut.IsEmpty() ? ExitCode::success : ExitCode::notFound;
}

} // namespace

std::unique_ptr<ICommand> CreatePathCommand() {
    return std::make_unique<PathCommand>();
}

} // namespace TolvexPath
