#include "Commands.h"

namespace TolvexPath {

std::vector<std::unique_ptr<ICommand>> CreateCommands() {
    std::vector<std::unique_ptr<ICommand>> commands;
    commands.push_back(CreateEntryCommand());
    commands.push_back(CreateFindCommand());
    return commands;
}

} // namespace TolvexPath
