#include "CacheArguments.h"
#include "Commands.h"
#include "Conversation.h"
#include "ExplanationReport.h"
#include "Finder.h"
#include "FolderArguments.h"
#include "FoldersOnPath.h"
#include "FoundFiles.h"
#include "Messages.h"
#include "Output.h"
#include "PackageArguments.h"
#include "SearchOptions.h"
#include "Terminal.h"
#include "UsageError.h"

#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <unordered_set>

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::IPath;
using PathManagement::PathEntryVector;

namespace {

constexpr const char* help = R"(NAME is the name of a file without its extension. It may have folder names in
front, as in 'geometry/area' or '+shapes/@Polygon/area': these have to be the
last names of the file's folder. A plain name is looked for in main folders
only, a name with folders in every kind of folder, unless --scope says
otherwise. Functions of packages and methods are named so, too: shapes.square
is +shapes/square here.

Without --all the first file in path order is given. In one folder the
extension that stands first in --ext wins.

--queries reads one JSON object a line and writes one JSON array a line:
  {"name":"area","extensions":[".kx"],"policy":1,"scope":[0,1],"all":true}
policy: 0 exact, 1 ignore case, 2 native; scope: 0 main, 1 package, 2 method, 3
private, 4 udd, 5 resources. All but the name may be left out and is then what
the other options say. Blank lines are passed over. Answers come as soon as no
further question waits. It ends at the first line that is no question, which
the message names; the rest is not answered.

--explain lists every file on the path that bears the name, but for case,
extension and kind of folder, in the order in which a search meets it, with its
folder's place as 'path' numbers it and why it wins or loses. Where nothing
answers it also looks into the ordinary folders below the path, at most 10,000
of them.

Examples:
  tolvexpath find area -p geometry -p statistics
  tolvexpath find area --path-file path.txt --explain
  tolvexpath find area -p geometry -p statistics --all --scope all
  tolvexpath find +shapes/area --path-file path.txt --json
  tolvexpath find --queries - -p geometry <questions.jsonl
  tolvexpath find mean --ext .txt -0 -p statistics | xargs -0 head

Exit status: 0 found; 1 not found; 2 wrong use. With --queries: 0 every
question was answered, 2 one was not. A folder that cannot be read is reported
and left out, one that may not stand on a path is reported and looked into;
neither has a bearing on the exit status.)";

class FindCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "find"; }
    [[nodiscard]] std::string GetSummary() const override { return "Find files on a path by name"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    void CheckArguments() const;
    [[nodiscard]] Finder MakeFinder() const;
    [[nodiscard]] ExitCode FindName(Output& output) const;
    void Write(Output& output, std::span<const FoundItem> files) const;

    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    SearchOptions search;
    std::optional<std::string> name;    // as bytes
    std::optional<std::string> queries; // a file's name
    bool asJson = false;
    bool endWithZero = false;
    bool explain = false;
};

/// As a path does: of two names of one folder the first counts.
void RemoveRepeats(PathEntryVector& entries) {
    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> known;
    std::erase_if(entries, [&known](const auto& entry) { return !known.insert(entry->GetIRI()).second; });
}

void FindCommand::DeclareArguments(CLI::App& arguments) {
    CLI::Option* const nameOption = arguments.add_option("NAME", name, "What to look for")->type_name("");
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    search.DeclareOptions(arguments);
    CLI::Option* const json = arguments.add_flag("--json", asJson, "Write a JSON array, or with --explain an object");
    CLI::Option* const zero =
        arguments.add_flag("-0,--print0", endWithZero, "End each path with a zero byte instead of a line feed")
            ->excludes(json);
    arguments.add_option("--queries", queries, "Answer the questions of a file; '-' is the standard input")
        ->type_name("FILE")
        ->excludes(nameOption)
        ->excludes(zero);
    arguments.add_flag("--explain", explain, "Say of every file of that name why it is found or not")
        ->needs(nameOption)
        ->excludes(zero)
        ->excludes(arguments.get_option("--all"));
    arguments.footer(help);
}

void FindCommand::CheckArguments() const {
    if (!name && !queries)
        throw UsageError("find needs a NAME or --queries");
    if (name && name->empty())
        throw UsageError("the name is empty");
    if (queries == "-" && folders.ReadsStandardInput())
        throw UsageError("the standard input cannot be both the list of folders and the questions");
}

ExitCode FindCommand::Run() {
    CheckArguments();
    Output output;
    const ExitCode result = queries ? AnswerQuestions(MakeFinder(), *queries, output) : FindName(output);
    output.Flush();
    return result;
}

Finder FindCommand::MakeFinder() const {
    SearchDefaults defaults = search.GetDefaults();
    auto entries = std::make_shared<PathEntryVector>(packages.CreateEntries(cache, packages.GetLocations(folders)));
    Tolvex::Notification wrongKinds;
    TellWrongKinds(*entries, wrongKinds);
    PrintMessages(wrongKinds);
    std::erase(*entries, nullptr);
    if (!explain) // which says so of files that are met again
        RemoveRepeats(*entries);
    return {PathManagement::GetCurrentPathFactory().CreatePath(std::move(entries), nullptr), std::move(defaults)};
}

ExitCode FindCommand::FindName(Output& output) const {
    const Finder finder = MakeFinder();
    Question question;
    question.name = Tolvex::FromUtf8(*name);
    if (explain)
        return ReportExplanation(finder, question, output, asJson);
    const std::vector<FoundItem> files = finder.Answer(question);
    Write(output, files);
    if (!files.empty())
        return ExitCode::success;
    const std::string explanation = finder.ExplainMiss(question);
    PrintMessage(
        fmt::format("nothing on the path answers to '{}'{}{}", *name, explanation.empty() ? "" : "; ", explanation));
    return ExitCode::notFound;
}

void FindCommand::Write(Output& output, std::span<const FoundItem> files) const {
    if (asJson)
        WriteFoundJson(output, files);
    else if (endWithZero)
        WriteFoundPaths(output, files, '\0');
    else if (IsTerminal(StandardChannel::output))
        ShowFoundPaths(output, files);
    else
        WriteFoundPaths(output, files, '\n');
}

} // namespace

std::unique_ptr<ICommand> CreateFindCommand() {
    return std::make_unique<FindCommand>();
}

} // namespace TolvexPath
