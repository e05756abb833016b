#include "CommandLine.h"

#include "Commands.h"
#include "Messages.h"
#include "Version.h"
#include "manual/ManualPage.h"
#include "manual/ShellCompletions.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <map>
#include <string_view>

namespace TolvexPath {

namespace {

constexpr const char* overview = R"(Exit status:
  0  found, or everything asked for was shown
  1  nothing found, or a folder could not be read
  2  wrong use, or an input or output failed

Each command has its own --help with examples; "help COMMAND" shows it, too.)";

/// `path`: the names of the commands that lead to this one, each with a blank behind it.
std::string DescribeUnused(const CLI::App& command, const std::string& path, const std::string& word) {
    const std::string owner = path.empty() ? "this program" : path.substr(0, path.size() - 1);
    if (word.starts_with('-'))
        return fmt::format("'{}' is no option of {}", word, owner);
    if (!command.get_subcommands([](const CLI::App*) { return true; }).empty())
        return fmt::format("'{}' is no command of {}", word, owner);
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
    const std::string problem = unused.empty() ? error.what() : DescribeUnused(*command, path, unused.front());
    return fmt::format("{}: {}\nTry '{} {}--help'.\n", programName, problem, programName, path);
}

/// "help find" stands for "find --help".
std::vector<const char*> ResolveHelp(std::vector<const char*> arguments,
                                     const std::vector<std::unique_ptr<ICommand>>& commands) {
    if (arguments.size() < 2 || arguments[1] != std::string_view("help"))
        return arguments;
    arguments.erase(arguments.begin() + 1);
    const bool isKnown = arguments.size() < 2 || std::ranges::any_of(commands, [&](const auto& command) {
                             return command->GetName() == arguments[1];
                         });
    if (isKnown) // else it is refused as any other word would be
        arguments.push_back("--help");
    return arguments;
}

/// What the build makes files of; none of a user's business, so not in the help.
void DeclareMakingOfFiles(CLI::App& app) {
    const auto declare = [&app](const char* name, const std::function<std::string(const CommandOutline&)>& make) {
        const auto write = [&app, make] {
            std::cout << make(MakeOutline(app)) << std::flush;
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
    app.set_version_flag("--version", fmt::format("{} {}", programName, versionText));
    app.require_subcommand(1);
    app.footer(overview);
    app.failure_message(DescribeWrongUse);

    const auto commands = CreateCommands();
    std::map<const CLI::App*, ICommand*> byArguments;
    for (const auto& command : commands) {
        CLI::App* const declared = app.add_subcommand(command->GetName(), command->GetSummary());
        command->DeclareArguments(*declared);
        byArguments.emplace(declared, command.get());
    }
    DeclareMakingOfFiles(app);
    try {
        const auto resolved = ResolveHelp({arguments, arguments + argumentCount}, commands);
        app.parse(static_cast<int>(resolved.size()), resolved.data());
    } catch (const CLI::ParseError& error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? ExitCode::success : ExitCode::failure;
    }
    return byArguments.at(app.get_subcommands().front())->Run();
}

} // namespace

ExitCode RunCommandLine(int argumentCount, const char* const* arguments) noexcept {
    try {
        return ParseAndRun(argumentCount, arguments);
    } catch (const std::exception& error) {
        PrintMessage(error.what());
    }
    return ExitCode::failure;
}

} // namespace TolvexPath
