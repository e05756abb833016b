#pragma once

#include "ICommand.h"

#include <memory>
#include <vector>

namespace TolvexPath {

// One line for each command here and one in CreateCommands; the rest of a command stays in its own source.
[[nodiscard]] std::unique_ptr<ICommand> CreateCacheCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateCheckCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateEntryCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateFindCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreatePackageCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreatePathCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateShadowsCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateShellCommand();
[[nodiscard]] std::unique_ptr<ICommand> CreateWatchCommand();

/// All commands, in the order in which the help lists them.
[[nodiscard]] std::vector<std::unique_ptr<ICommand>> CreateCommands();

} // namespace TolvexPath
