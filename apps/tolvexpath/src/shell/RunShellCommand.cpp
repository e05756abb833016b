#include "Commands.h"
#include "FolderArguments.h"
#include "PackageArguments.h"
#include "Terminal.h"
#include "UsageError.h"
#include "shell/BuiltInFunctions.h"
#include "shell/EditedLines.h"
#include "shell/HistoryFile.h"
#include "shell/Shell.h"
#include "shell/ShellCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace TolvexPath {

namespace {

constexpr const char* help = R"(
A line is a command and its arguments. Words are separated by blanks; '...' takes
everything as it is, "..." everything but \" and \\, a backslash elsewhere takes the
character behind it as it is; # begins a comment.

On a terminal the line can be edited, the tabulator key completes commands, folders
and names on the path, and what was typed in is kept in tolvexpath/history below
XDG_STATE_HOME (or ~/.local/state). Ctrl-C discards the line (but ends
the program while a command works), Ctrl-D ends.

Without a terminal the lines are a script on the standard input. It goes on behind a
command that failed, unless --stop says otherwise.

Examples:
  tolvexpath shell -p geometry
  printf 'add geometry\nfind area\n' | tolvexpath shell --stop

Exit status: 0 every command of a script did what it was told to, or a person typed
them in; 1 a command of a script failed; 2 wrong use of the program.)";

class RunShellCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "shell"; }
    [[nodiscard]] std::string GetSummary() const override { return "Change a path and ask it, line by line"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    [[nodiscard]] bool SetFirstPath(ShellContext& context) const;
    [[nodiscard]] ExitCode Converse(ShellContext& context) const;

    FolderArguments folders;
    PackageArguments packages;
    bool stopsAtFailure = false;
    bool keepsNoHistory = false;
};

std::string ListCommands() {
    std::string list = "Commands:\n";
    for (const ShellCommand& command : GetShellCommands())
        list += fmt::format("  {} {}\n      {}\n", command.name, command.usage, command.summary);
    list += "\nBuilt-in functions, called as Name('text', 2) with --json behind it for JSON:\n";
    for (const BuiltInFunction& function : GetBuiltInFunctions())
        list += fmt::format("  {}{}\n      {}\n", function.name, function.usage, function.summary);
    return list;
}

void RunShellCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    arguments.add_flag("--stop", stopsAtFailure, "End a script at the first command that fails");
    arguments.add_flag("--no-history", keepsNoHistory, "Neither read nor write what was typed in at other times");
    arguments.footer(ListCommands() + help);
}

ExitCode RunShellCommand::Run() {
    if (folders.ReadsStandardInput())
        throw UsageError("the standard input cannot be both the list of folders and the commands");
    ShellContext context(PathManagement::CurrentFolderPolicy::trackWorkingFolder, packages.GetFolder());
    const bool isPathWhole = SetFirstPath(context);
    if (IsTerminal(StandardChannel::input) && IsTerminal(StandardChannel::output))
        return Converse(context);
    ScriptLines lines;
    const bool isDone = (isPathWhole || !stopsAtFailure) && Shell(context).Run(lines, stopsAtFailure);
    return isDone && isPathWhole ? ExitCode::success : ExitCode::notFound;
}

bool RunShellCommand::SetFirstPath(ShellContext& context) const {
    context.Report(context.GetSession().TakePackageReport()); // an unusable package is no failure of the script
    if (!folders.NamesFolders())
        return true;
    const auto locations = folders.GetLocations();
    return context.Alter([&](Tolvex::Notification& problems) { problems = context.GetSession().SetPath(locations); });
}

ExitCode RunShellCommand::Converse(ShellContext& context) const {
    const WordCompleter completer(context);
    const auto lines = CreateEditedLines(completer, keepsNoHistory ? std::nullopt : PrepareHistoryFile());
    static_cast<void>(Shell(context).Run(*lines, false));
    return ExitCode::success;
}

} // namespace

std::unique_ptr<ICommand> CreateShellCommand() {
    return std::make_unique<RunShellCommand>();
}

} // namespace TolvexPath
