#include "Commands.h"

namespace TolvexPath {

std::vector<std::unique_ptr<ICommand>> CreateCommands() {
    std::vector<std::unique_ptr<ICommand>> commands;
    commands.push_back(CreateEntryCommand());
    commands.push_back(CreateFindCommand());
    commands.push_back(CreatePathCommand());
    commands.push_back(CreateShadowsCommand());
    commands.push_back(CreateCheckCommand());
    commands.push_back(CreateCacheCommand());
    commands.push_back(CreatePackageCommand());
    commands.push_back(CreateWatchCommand());
    commands.push_back(CreateShellCommand());
    return commands;
}

} // namespace TolvexPath
