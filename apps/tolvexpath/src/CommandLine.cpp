#include "CommandLine.h"

#include "Commands.h"
#include "Messages.h"
#include "Version.h"
#include "manual/ManualPage.h"
#include "manual/ShellCompletions.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <functional>
#include <iostream>
#include <map>

namespace TolvexPath {

namespace {

constexpr const char* overview = R"(Exit status:
  0  found, or everything asked for was shown
  1  nothing found, or a folder could not be read
  2  wrong use, or an input or output failed

Each command has its own --help with examples.)";

std::string DescribeWrongUse(const CLI::App* app, const CLI::Error& error) {
    const auto chosen = app->get_subcommands();
    const std::string command = chosen.empty() ? "" : chosen.front()->get_name() + ' ';
    const auto unused = app->remaining();
    const std::string problem = chosen.empty() && !unused.empty()
                                    ? fmt::format("'{}' is no command of this program", unused.front())
                                    : error.what();
    return fmt::format("{}: {}\nTry '{} {}--help'.\n", programName, problem, programName, command);
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
        app.parse(argumentCount, arguments);
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
