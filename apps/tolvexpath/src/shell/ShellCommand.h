#pragma once

#include <span>
#include <string_view>

namespace TolvexPath {

class ShellArguments;
class ShellContext;

/// What a command's arguments are completed with.
enum class Completion { nothing, commands, folders, pathFolders, names, mementos };

/// One command of the shell. The texts live as long as the program.
struct ShellCommand {
    using Run = bool(ShellContext& context, ShellArguments& arguments);

    std::string_view name;
    std::string_view usage; ///< its arguments
    std::string_view summary;
    std::string_view details; ///< more for its own help; may be empty
    Completion completion;
    std::string_view words; ///< with blanks between them: its options and what else is written as it is
    Run* run;               ///< false when it did not do what it was told to, and has said why; may throw UsageError
};

/// All commands in the order of the help.
[[nodiscard]] std::span<const ShellCommand> GetShellCommands();

/// Null when there is none of that name.
[[nodiscard]] const ShellCommand* FindShellCommand(std::string_view name);

// The commands, by subject; GetShellCommands says what each does.
namespace PathCommands {
ShellCommand::Run Set, Add, Remove, Move, Refresh, Show;
} // namespace PathCommands
namespace FolderCommands {
ShellCommand::Run ChangeFolder, Policy;
} // namespace FolderCommands
namespace LookCommands {
ShellCommand::Run Find, Events;
} // namespace LookCommands
namespace MementoCommands {
ShellCommand::Run Memento;
} // namespace MementoCommands

} // namespace TolvexPath
