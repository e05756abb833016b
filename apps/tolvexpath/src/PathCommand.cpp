#include "CacheArguments.h"
#include "Commands.h"
#include "DisplayText.h"
#include "FolderArguments.h"
#include "FoldersOnPath.h"
#include "JsonWriter.h"
#include "KindNames.h"
#include "Messages.h"
#include "Output.h"
#include "PackageArguments.h"
#include "Session.h"

#include "foundation/messages/Catalogue.h"
#include "path_utilities/PathText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace TolvexPath {

namespace {

constexpr const char* help = R"(The path as an environment would have it: missing folders, and such as may not
stand on a path by themselves, are left out, and of two names of one folder the
first counts. Files are counted with those of the special folders below.
'watched' is how changes are to be noticed: where the kernel gives no
notification, as on network drives, a time check stands in. So it does below
the installation folder (TOLVEX_ROOT): its folders are many and change with a
new version at most, so that no kernel watches are spent on them.

Examples:
  tolvexpath path -p geometry -p statistics
  tolvexpath path --path-file path.txt --json
  TOLVEXPATH=geometry:statistics tolvexpath path
  tolvexpath path --path-file path.txt --cache toolboxes.cache --root toolboxes

Exit status: 0 every folder is on the path; 1 something was left out; 2 wrong
use.)";

class PathCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "path"; }
    [[nodiscard]] std::string GetSummary() const override { return "Show the resulting path and what was left out"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    bool asJson = false;
};

struct LeftOut {
    std::string id;
    std::string message;
};

/// What the path refused, then what it has already.
std::vector<LeftOut> CollectLeftOut(const Tolvex::Notification& refused, std::span<const Tolvex::AbsoluteIRI> locations,
                                    const PathManagement::IMainSearchPathManager& manager) {
    std::vector<LeftOut> leftOut;
    EachOnce(refused).ForEach([&leftOut](const Tolvex::Notification::Entry& problem) {
        leftOut.push_back({problem.message.GetFullName(), Tolvex::GetMessageText(problem.message)});
        return false;
    });
    const auto onPath = manager.GetPathIRIs();
    for (const auto& [location, first, folder] : FindRepeatedFolders(locations)) {
        const auto place = std::ranges::find(*onPath, folder);
        if (place != onPath->end()) // else it was refused each time
            leftOut.push_back(
                {"tolvexpath:repeatedFolder",
                 fmt::format("The folder '{}' has place {} already.",
                             Tolvex::ToUtf8(PathManagement::GetStringFromIRI(location)), place - onPath->begin() + 1)});
    }
    return leftOut;
}

void WriteJson(Output& output, const std::vector<FolderOnPath>& folders, const std::vector<LeftOut>& leftOut) {
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
    for (const auto& [id, message] : leftOut) {
        json.BeginObject();
        write("id", Tolvex::FromUtf8(id));
        write("message", Tolvex::FromUtf8(message));
        json.EndObject();
    }
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

void ShowLeftOut(Output& output, const std::vector<LeftOut>& leftOut) {
    if (leftOut.empty())
        return;
    output.Write("\nLeft out:\n");
    for (const auto& [id, message] : leftOut)
        output.Write("  " + ToDisplayText(Tolvex::FromUtf8(message)) + "\n");
}

void PathCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    arguments.add_flag("--json", asJson, "Write one JSON object");
    arguments.footer(help);
}

ExitCode PathCommand::Run() {
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder, packages.GetFolder());
    const auto locations = packages.GetLocations(folders);
    const Tolvex::Notification refused = cache.SetPath(session, locations);
    const std::vector<LeftOut> leftOut = CollectLeftOut(refused, locations, session.GetManager());
    const std::vector<FolderOnPath> onPath = DescribeFolders(*session.GetManager().GetPath());
    Output output;
    if (asJson) {
        WriteJson(output, onPath, leftOut);
    } else {
        ShowFolders(output, onPath);
        ShowLeftOut(output, leftOut);
    }
    output.Flush();
    return leftOut.empty() ? ExitCode::success : ExitCode::notFound;
}

} // namespace

std::unique_ptr<ICommand> CreatePathCommand() {
    return std::make_unique<PathCommand>();
}

} // namespace TolvexPath
