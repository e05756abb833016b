#include "shell/Shell.h"

#include "UsageError.h"
#include "shell/BuiltInCall.h"
#include "shell/BuiltInFunctions.h"
#include "shell/ShellCommand.h"
#include "shell/Words.h"

#include <fmt/format.h>

#include <system_error>

namespace TolvexPath {

bool Shell::Run(LineSource& lines, bool stopsAtFailure) {
    bool allWell = true;
    while (!context.IsEnded() && (allWell || !stopsAtFailure)) {
        const auto line = lines.Next();
        if (!line)
            break;
        context.SetPlace(lines.GetPlace());
        allWell = Execute(*line) && allWell;
        context.GetOutput().Flush();
    }
    return allWell;
}

/// A line that fails ends nothing but itself, unless the output fails.
bool Shell::Execute(std::string_view line) {
    try {
        context.FollowPackages();
        return ExecuteWords(line);
    } catch (const std::system_error&) {
        throw;
    } catch (const std::exception& error) {
        context.Report(error.what());
    }
    return false;
}

bool Shell::ExecuteWords(std::string_view line) {
    if (IsBuiltInCall(line))
        return CallBuiltInFunction(context, line);
    std::vector<std::string> words = SplitWords(line);
    if (words.empty())
        return true;
    const ShellCommand* const command = FindShellCommand(words.front());
    if (command == nullptr)
        throw UsageError(FindBuiltInFunction(words.front()) != nullptr
                             ? fmt::format("'{0}' is a built-in function; write {0}(...)", words.front())
                             : fmt::format("'{}' is no command; 'help' lists what there is", words.front()));
    words.erase(words.begin());
    ShellArguments arguments(std::move(words));
    try {
        return command->run(context, arguments);
    } catch (const UsageError& error) {
        throw UsageError(fmt::format("{}: {}", command->name, error.what()));
    }
}

} // namespace TolvexPath
