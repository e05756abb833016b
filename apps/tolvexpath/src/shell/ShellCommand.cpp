#include "shell/ShellCommand.h"

#include "UsageError.h"
#include "shell/BuiltInFunctions.h"
#include "shell/ShellContext.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace TolvexPath {

namespace {

ShellCommand::Run Help, Quit;

constexpr auto commands = std::to_array<ShellCommand>({
    {"set", "FOLDER...", "Set the path to these folders",
     "Without a folder the path becomes empty. A folder that may not stand on the path is left\n"
     "out, and why is told; the others are set. When there are no others, the path stays as it was.\n"
     "Packages that are not named leave the path, too; those installed afterwards come on it.",
     Completion::folders, "", PathCommands::Set},
    {"add", "[--end] FOLDER...", "Put folders in front of the path, or behind it",
     "They stay in the order given. What is on the path already is moved there.", Completion::folders, "--end",
     PathCommands::Add},
    {"remove", "FOLDER...", "Take folders off the path", "", Completion::pathFolders, "", PathCommands::Remove},
    {"move", "FOLDER --begin|--end|--to PLACE", "Give a folder another place on the path",
     "Places are counted from 1, as 'show' counts them.", Completion::pathFolders, "--begin --end --to",
     PathCommands::Move},
    {"cd", "FOLDER", "Change the working folder",
     "It stands in front of the path, unless 'policy current none' says otherwise.", Completion::folders, "",
     FolderCommands::ChangeFolder},
    {"refresh", "[current|all]", "Read anew what has changed on the disk",
     "Without a word it reads what is known to have changed. 'current' and 'all' read the current\n"
     "folder, or every folder, whatever is known.",
     Completion::nothing, "current all", PathCommands::Refresh},
    {"find", "NAME [--all]", "Show the file that answers to a name, or all that do",
     "As the program's find command does it.", Completion::names, "--all", LookCommands::Find},
    {"show", "", "Show the path", "The current folder has no number when the path's folders do not hold it.",
     Completion::nothing, "", PathCommands::Show},
    {"policy", "[mutability all|no-adding-or-removing | current track|none]", "Show or change what the path allows",
     "mutability: whether folders may be added and removed, or only moved.\n"
     "current: whether the working folder stands in front of the path.",
     Completion::nothing, "mutability all no-adding-or-removing current track none", FolderCommands::Policy},
    {"memento", "save NAME | restore NAME | list", "Remember paths, and go back to them",
     "What is restored is what was set; the working folder stays.", Completion::mementos, "save restore list",
     MementoCommands::Memento},
    {"events", "on|off", "Tell of each change of the path in its three stages", "", Completion::nothing, "on off",
     LookCommands::Events},
    {"help", "[COMMAND|FUNCTION]", "Show what there is, or how one command or function is used", "",
     Completion::commands, "", Help},
    {"quit", "", "End the shell", "", Completion::nothing, "", Quit},
});

constexpr std::string_view quotingRules =
    "\nWords are separated by blanks. '...' takes everything as it is, \"...\" everything but \\\" and\n"
    "\\\\, a backslash elsewhere takes the character behind it as it is. # begins a comment.\n"
    "Built-in functions are called as Name('text', 2, true) or [a, b] = Name(...); --json behind it\n"
    "shows what they give as JSON. Quotes inside a text are written twice.\n";

/// `subject` is a command or a built-in function.
void Explain(Output& output, std::string_view usage, const auto& subject) {
    output.Write(fmt::format("{}\n{}.\n", usage, subject.summary));
    if (!subject.details.empty())
        output.Write(fmt::format("{}\n", subject.details));
}

bool Help(ShellContext& context, ShellArguments& arguments) {
    const auto name = arguments.TakeOptional();
    arguments.CheckNothingIsLeft();
    Output& output = context.GetOutput();
    if (!name) {
        for (const ShellCommand& command : commands)
            output.Write(fmt::format("{:<9} {}\n", command.name, command.summary));
        output.Write("\nBuilt-in functions:\n");
        for (const BuiltInFunction& function : GetBuiltInFunctions())
            output.Write(fmt::format("{:<32} {}\n", function.name, function.summary));
        output.Write(quotingRules);
        return true;
    }
    if (const ShellCommand* const command = FindShellCommand(*name))
        Explain(output, fmt::format("{}{}{}", command->name, command->usage.empty() ? "" : " ", command->usage),
                *command);
    else if (const BuiltInFunction* const function = FindBuiltInFunction(*name))
        Explain(output, fmt::format("{}{}", function->name, function->usage), *function);
    else
        throw UsageError(fmt::format("'{}' is no command", *name));
    return true;
}

bool Quit(ShellContext& context, ShellArguments& arguments) {
    arguments.CheckNothingIsLeft();
    context.End();
    return true;
}

} // namespace

std::span<const ShellCommand> GetShellCommands() {
    return commands;
}

const ShellCommand* FindShellCommand(std::string_view name) {
    const auto found = std::ranges::find(commands, name, &ShellCommand::name);
    return found == commands.end() ? nullptr : &*found;
}

} // namespace TolvexPath
