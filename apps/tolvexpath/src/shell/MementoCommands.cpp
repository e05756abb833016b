#include "DisplayText.h"
#include "UsageError.h"
#include "shell/ShellCommand.h"
#include "shell/ShellContext.h"

#include <fmt/format.h>

namespace TolvexPath::MementoCommands {

namespace {

bool Save(ShellContext& context, ShellArguments& arguments) {
    const std::string name = arguments.Take("a name");
    arguments.CheckNothingIsLeft();
    context.mementos.insert_or_assign(name, context.GetManager().CreateMemento());
    return true;
}

bool Restore(ShellContext& context, ShellArguments& arguments) {
    const std::string name = arguments.Take("a name");
    arguments.CheckNothingIsLeft();
    const auto found = context.mementos.find(name);
    if (found == context.mementos.end())
        throw UsageError(fmt::format("nothing was saved as '{}'", name));
    return context.Alter([&](auto&) { context.GetManager().SetPath(found->second->storedPath); });
}

bool List(ShellContext& context, ShellArguments& arguments) {
    arguments.CheckNothingIsLeft();
    for (const auto& [name, memento] : context.mementos) {
        const std::size_t count = memento->pathIRIs->size();
        context.GetOutput().Write(
            fmt::format("{}  {} folder{}\n", ToDisplayText(Tolvex::FromUtf8(name)), count, count == 1 ? "" : "s"));
    }
    return true;
}

} // namespace

bool Memento(ShellContext& context, ShellArguments& arguments) {
    const std::string action = arguments.Take("'save', 'restore' or 'list'");
    if (action == "save")
        return Save(context, arguments);
    if (action == "restore")
        return Restore(context, arguments);
    if (action == "list")
        return List(context, arguments);
    throw UsageError(fmt::format("'{}' is none of 'save', 'restore' and 'list'", action));
}

} // namespace TolvexPath::MementoCommands
