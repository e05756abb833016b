#include "CommandLine.h"

#include "Commands.h"
#include "HelpFormatter.h"
#include "Messages.h"
#include "NearestWord.h"
#include "Output.h"
#include "Version.h"
#include "manual/ManualPage.h"
#include "manual/ShellCompletions.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string_view>

namespace TolvexPath {

namespace {

constexpr const char* overview = R"(Exit status:
  0  found, or everything asked for was shown
  1  nothing found, or a folder could not be read
  2  wrong use, or an input or output failed

Each command has its own --help with examples; 'help COMMAND' shows it, too.)";

std::vector<std::string> ListCommands(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* const below : command.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(below->get_name());
    return names;
}

std::vector<std::string> ListOptions(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options())
        if (!option->get_group().empty()) // else it is hidden
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
    return names;
}

std::string Suggest(std::string_view word, const std::vector<std::string>& known) {
    const std::string nearest = FindNearestWord(word, known);
    return nearest.empty() ? "" : fmt::format("; did you mean '{}'?", nearest);
}

std::string DescribeUnusedOption(const CLI::App& command, const std::string& owner, const std::string& word) {
    const auto takesNames = [](const CLI::Option* option) { return option->get_positional(); };
    std::string advice = Suggest(word.substr(0, word.find('=')), ListOptions(command));
    if (advice.empty() && !command.get_options(takesNames).empty())
        advice = "; names that begin with '-' go behind '--', at the end";
    return fmt::format("'{}' is no option of {}{}", word, owner, advice);
}

/// What was not used of the words behind a command. `path`: the names of the commands that lead to this one, each with
/// a blank behind it.
std::string DescribeUnused(const CLI::App& command, const std::string& path, std::vector<std::string> words) {
    const std::string owner = path.empty() ? "this program" : path.substr(0, path.size() - 1);
    const bool isBehindMark = words.front() == "--" && words.size() > 1;
    const std::string& word = words[isBehindMark ? 1 : 0];
    if (word.starts_with('-') && !isBehindMark)
        return DescribeUnusedOption(command, owner, word);
    if (const auto commands = ListCommands(command); !commands.empty())
        return fmt::format("'{}' is no command of {}{}", word, owner, Suggest(word, commands));
    const std::string_view foldersRule =
        command.get_option_no_throw("--path") == nullptr ? "" : "; every folder needs its own -p";
    if (command.get_option_no_throw("NAME") != nullptr)
        return fmt::format("'{}' is too much: one NAME at a time{}", word, foldersRule);
    return fmt::format("'{}' is too much{}", word, foldersRule);
}

std::string DescribeWrongUse(const CLI::App* app, const CLI::Error& error) {
    std::string path;
    const CLI::App* command = app;
    for (auto chosen = app->get_subcommands(); !chosen.empty(); chosen = command->get_subcommands()) {
        command = chosen.front();
        path += command->get_name() + ' ';
    }
    const auto unused = command->remaining();
    std::string problem = error.what();
    if (!unused.empty())
        problem = DescribeUnused(*command, path, unused);
    else if (const auto commands = ListCommands(*command); !commands.empty())
        problem = fmt::format("a command is missing: {}", fmt::join(commands, ", "));
    return fmt::format("{}: {}\nTry '{} {}--help'.\n", programName, problem, programName, path);
}

/// "help find" stands for "find --help".
std::vector<const char*> ResolveHelp(std::vector<const char*> arguments,
                                     const std::vector<std::unique_ptr<ICommand>>& commands) {
    if (arguments.size() < 2 || arguments[1] != std::string_view("help"))
        return arguments;
    arguments.erase(arguments.begin() + 1);
    if (arguments.size() == 2 && arguments[1] == std::string_view("help"))
        arguments.pop_back();
    const bool isKnown = arguments.size() < 2 || std::ranges::any_of(commands, [&](const auto& command) {
                             return command->GetName() == arguments[1];
                         });
    if (isKnown) // else it is refused as any other word would be
        arguments.push_back("--help");
    return arguments;
}

void WriteWhole(std::string_view text) {
    Output output;
    output.Write(text);
    output.Flush();
}

/// What the build makes files of; none of a user's business, so not in the help.
void DeclareMakingOfFiles(CLI::App& app) {
    const auto declare = [&app](const char* name, const std::function<std::string(const CommandOutline&)>& make) {
        const auto write = [&app, make] {
            WriteWhole(make(MakeOutline(app)));
            throw CLI::Success();
        };
        app.add_flag_callback(name, write)->group("");
    };
    declare("--man", [](const CommandOutline& program) { return MakeManualPage(program, versionText); });
    declare("--bash-completion", MakeBashCompletion);
    declare("--zsh-completion", MakeZshCompletion);
}

ExitCode ParseAndRun(int argumentCount, const char* const* arguments) {
    CLI::App app("Shows what a search path of code folders holds and finds files on it by name.", programName);
    app.set_version_flag("-V,--version", fmt::format("{} {}", programName, versionText),
                         "Print the program's version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.require_subcommand(1);
    app.failure_message(DescribeWrongUse);
    app.formatter(CreateHelpFormatter());

    const auto commands = CreateCommands();
    std::map<const CLI::App*, ICommand*> byArguments;
    for (const auto& command : commands) {
        CLI::App* const declared = app.add_subcommand(command->GetName(), command->GetSummary())->group("Commands");
        command->DeclareArguments(*declared);
        byArguments.emplace(declared, command.get());
    }
    app.footer(overview); // not before: commands would inherit it
    DeclareMakingOfFiles(app);
    try {
        const auto resolved = ResolveHelp({arguments, arguments + argumentCount}, commands);
        app.parse(static_cast<int>(resolved.size()), resolved.data());
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        const bool isAnswer = app.exit(error, text, std::cerr) == 0;
        WriteWhole(text.view());
        return isAnswer ? ExitCode::success : ExitCode::failure;
    }
    return byArguments.at(app.get_subcommands().front())->Run();
}

/// The cause of much that fails, though the message is about the folder that was to be found from there.
void TellIfWorkingFolderIsGone() {
    std::error_code failure;
    static_cast<void>(std::filesystem::current_path(failure));
    if (failure)
        PrintMessage("the working folder is gone; change to one that exists");
}

} // namespace

ExitCode RunCommandLine(int argumentCount, const char* const* arguments) noexcept {
    try {
        return ParseAndRun(argumentCount, arguments);
    } catch (const std::exception& error) {
        PrintMessage(error.what());
        TellIfWorkingFolderIsGone();
    }
    return ExitCode::failure;
}

} // namespace TolvexPath
