#include "CacheArguments.h"
#include "Commands.h"
#include "DisplayText.h"
#include "FolderArguments.h"
#include "JsonWriter.h"
#include "Messages.h"
#include "NamesOnPath.h"
#include "Output.h"
#include "PackageArguments.h"
#include "SearchOptions.h"
#include "Session.h"

#include "path_utilities/PathText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace TolvexPath {

using PathManagement::FoundItem;

namespace {

constexpr const char* help = R"(A name that more than one file answers to is listed with the file that wins and
those that it hides. Plain names are looked for in main folders. A function of
a package and a method of a class go by their full names, as 'shapes.square'
and 'Polygon.area': all folders of one package, or of one class, count
together, and the first on the path wins. Files of private folders are seen
from one folder only and hide nothing.

A source file and its prepared form or native module in one folder are forms of
one thing and no conflict, unless --forms is given.

Examples:
  tolvexpath shadows -p geometry -p statistics
  tolvexpath shadows --path-file path.txt --scope main --match ignore-case
  tolvexpath shadows --path-file path.txt --json

Exit status: 0 no file is hidden; 1 one is; 2 wrong use. A folder that is left
out is reported and has no bearing on the exit status.)";

class ShadowsCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "shadows"; }
    [[nodiscard]] std::string GetSummary() const override { return "List names that more than one file answers to"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    SearchOptions search;
    bool withForms = false;
    bool asJson = false;
};

void WriteJson(Output& output, const std::vector<NameConflict>& conflicts) {
    JsonWriter json(output);
    const auto write = [&json](const FoundItem& file) {
        json.String(PathManagement::GetStringFromIRI(file.GetItem().GetIRI()));
    };
    json.BeginArray();
    for (const NameConflict& conflict : conflicts) {
        json.BeginObject();
        json.Key("name");
        json.String(conflict.name);
        json.Key("winner");
        write(conflict.winner);
        json.Key("hidden");
        json.BeginArray();
        std::ranges::for_each(conflict.hidden, write);
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    output.Write('\n');
}

void Show(Output& output, const std::vector<NameConflict>& conflicts) {
    const auto show = [&output](std::string_view word, const FoundItem& file) {
        output.Write(fmt::format("  {:<5} {}\n", word,
                                 ToDisplayText(PathManagement::GetStringFromIRI(file.GetItem().GetIRI()))));
    };
    for (const NameConflict& conflict : conflicts) {
        output.Write(ToDisplayText(conflict.name) + "\n");
        show("is", conflict.winner);
        for (const FoundItem& hidden : conflict.hidden)
            show("hides", hidden);
    }
    if (conflicts.empty())
        output.Write("No file is hidden.\n");
}

void ShadowsCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    search.DeclareRules(arguments);
    arguments.add_flag("--forms", withForms, "Count the forms of one thing in one folder, too");
    arguments.add_flag("--json", asJson, "Write a JSON array");
    arguments.footer(help);
}

ExitCode ShadowsCommand::Run() {
    NameRules rules = search.GetNameRules();
    rules.countsOtherForms = withForms;
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder, packages.GetFolder());
    PrintMessages(cache.SetPath(session, packages.GetLocations(folders)));
    const auto conflicts = NamesOnPath(*session.GetManager().GetPath(), std::move(rules)).FindConflicts();
    Output output;
    if (asJson)
        WriteJson(output, conflicts);
    else
        Show(output, conflicts);
    output.Flush();
    return conflicts.empty() ? ExitCode::success : ExitCode::notFound;
}

} // namespace

std::unique_ptr<ICommand> CreateShadowsCommand() {
    return std::make_unique<ShadowsCommand>();
}

} // namespace TolvexPath
