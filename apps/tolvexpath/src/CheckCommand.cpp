#include "CacheArguments.h"
#include "CheckPage.h"
#include "Commands.h"
#include "DisplayText.h"
#include "FolderArguments.h"
#include "JsonWriter.h"
#include "Output.h"
#include "OutputFile.h"
#include "PackageArguments.h"
#include "PathCheck.h"
#include "SearchOptions.h"
#include "Session.h"

#include "foundation/storage/FileReplacement.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace TolvexPath {

namespace {

constexpr const char* help = R"(What is looked for, by the kinds that --json gives:
  missing          a folder that does not exist
  unreadable       a folder that may not be read
  wrong-kind       a package, class, private or resources folder by itself
  left-out         a folder left out for another reason
  several-versions packages that stand on the path in more than one version
  repeated-folder  a folder that is named twice, maybe under a link
  shadowed-name    a name that more than one file answers to; see 'shadows'
  case-clash       names that differ only in case
  not-cacheable    a name that no path cache file can hold
  watch-limit      no kernel watches left for noticing changes, or nearly none

--html writes one page that needs no other file: the path drawn by size, what
hides what, every problem and every folder, to be searched by name. An old file
is replaced whole or stays.

Examples:
  tolvexpath check --path-file path.txt
  tolvexpath check --path-file path.txt --html path.html
  tolvexpath check -p geometry -p statistics --json --match exact

Exit status: 0 nothing is wrong; 1 something is; 2 wrong use, or the page could
not be written.)";

class CheckCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "check"; }
    [[nodiscard]] std::string GetSummary() const override { return "Tell everything that is wrong with a path"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    SearchOptions search;
    std::optional<std::string> page; // a file's name
    bool asJson = false;
};

void WriteJson(Output& output, const PathCheck& check) {
    JsonWriter json(output);
    const auto write = [&json](std::string_view key, Tolvex::ustring_view text) {
        json.Key(key);
        json.String(text);
    };
    json.BeginObject();
    json.Key("problems");
    json.BeginArray();
    for (const PathProblem& problem : check.problems) {
        json.BeginObject();
        write("kind", Tolvex::FromUtf8(problem.kind));
        write("subject", problem.subject);
        write("message", Tolvex::FromUtf8(problem.message));
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    output.Write('\n');
}

void Show(Output& output, const PathCheck& check) {
    output.Write(SummariseCheck(check) + "\n");
    for (const ProblemKind& kind : GetProblemKinds()) {
        const auto ofKind = std::ranges::equal_range(
            check.problems, std::ranges::find(GetProblemKinds(), kind.name, &ProblemKind::name), {},
            [](const PathProblem& problem) {
                return std::ranges::find(GetProblemKinds(), problem.kind, &ProblemKind::name);
            });
        if (ofKind.empty())
            continue;
        output.Write(fmt::format("\n{} ({})\n", kind.heading, ofKind.size()));
        for (const PathProblem& problem : ofKind)
            output.Write(fmt::format("  {}\n      {}\n", ToDisplayText(problem.subject),
                                     ToDisplayText(Tolvex::FromUtf8(problem.message))));
    }
}

void WritePage(const std::string& fileName, const PathCheck& check) {
    const std::string page = MakeCheckPage(check);
    try {
        Tolvex::FileReplacement replacement(fileName);
        replacement.GetStream() << page << std::flush;
        if (!replacement.GetStream())
            throw std::runtime_error(fmt::format("cannot write '{}': {}", fileName, replacement.GetWriteFailure()));
        replacement.Commit();
    } catch (const std::filesystem::filesystem_error& failure) {
        throw std::runtime_error(fmt::format("cannot write '{}': {}", fileName, failure.code().message()));
    }
}

void CheckCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    search.DeclareRules(arguments);
    arguments.add_option("--html", page, "Write a page to look at in a browser, too")->type_name("FILE");
    arguments.add_flag("--json", asJson, "Write one JSON object");
    arguments.footer(help);
}

ExitCode CheckCommand::Run() {
    const NameRules rules = search.GetNameRules();
    if (page)
        RequireReplaceable(*page);
    const auto locations = packages.GetLocations(folders);
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder, packages.GetFolder());
    const Tolvex::Notification leftOut = cache.SetPath(session, locations);
    const PathCheck check = CheckPath(session.GetManager().GetPath(), locations, leftOut, rules);
    if (page)
        WritePage(*page, check);
    Output output;
    if (asJson)
        WriteJson(output, check);
    else
        Show(output, check);
    output.Flush();
    return check.problems.empty() ? ExitCode::success : ExitCode::notFound;
}

} // namespace

std::unique_ptr<ICommand> CreateCheckCommand() {
    return std::make_unique<CheckCommand>();
}

} // namespace TolvexPath
