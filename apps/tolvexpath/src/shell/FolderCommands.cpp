#include "FolderArguments.h"
#include "UsageError.h"
#include "shell/ShellCommand.h"
#include "shell/ShellContext.h"

#include "foundation/environment/WorkingFolder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace TolvexPath::FolderCommands {

using PathManagement::CurrentFolderPolicy;
using PathManagement::PathManagerMutabilityPolicy;

namespace {

template <class Value>
struct Named {
    std::string_view name;
    Value value;
};

constexpr std::array<Named<PathManagerMutabilityPolicy>, 2> mutabilities = {{
    {"all", PathManagerMutabilityPolicy::allAlterations},
    {"no-adding-or-removing", PathManagerMutabilityPolicy::noAddingOrRemoving},
}};

constexpr std::array<Named<CurrentFolderPolicy>, 2> currentFolders = {{
    {"track", CurrentFolderPolicy::trackWorkingFolder},
    {"none", CurrentFolderPolicy::noCurrentFolder},
}};

template <class Value, std::size_t count>
Value Choose(const std::array<Named<Value>, count>& choices, std::string_view name) {
    const auto chosen = std::ranges::find(choices, name, &Named<Value>::name);
    if (chosen == choices.end())
        throw UsageError(fmt::format("'{}' is neither '{}' nor '{}'", name, choices[0].name, choices[1].name));
    return chosen->value;
}

template <class Value, std::size_t count>
std::string_view GetName(const std::array<Named<Value>, count>& choices, Value value) {
    return std::ranges::find(choices, value, &Named<Value>::value)->name;
}

} // namespace

bool ChangeFolder(ShellContext& context, ShellArguments& arguments) {
    const Tolvex::AbsoluteIRI folder = MakeLocation(arguments.Take("a folder"));
    arguments.CheckNothingIsLeft();
    return context.Alter([&](auto&) { Tolvex::ChangeCurrentWorkingFolder(folder, context.GetSession().GetEvents()); });
}

bool Policy(ShellContext& context, ShellArguments& arguments) {
    const auto subject = arguments.TakeOptional();
    if (!subject) {
        context.GetOutput().Write(fmt::format("mutability {}\ncurrent {}\n", GetName(mutabilities, context.mutability),
                                              GetName(currentFolders, context.currentFolder)));
        return true;
    }
    const std::string value = arguments.Take("the policy's value");
    arguments.CheckNothingIsLeft();
    if (*subject == "mutability") {
        context.mutability = Choose(mutabilities, value);
        context.GetManager().SetMutabilityPolicy(context.mutability);
    } else if (*subject == "current") {
        const CurrentFolderPolicy policy = Choose(currentFolders, value);
        const bool isDone = context.Alter([&](auto&) { context.GetManager().SetCurrentFolderPolicy(policy); });
        context.currentFolder = isDone ? policy : context.currentFolder;
        return isDone;
    } else {
        throw UsageError(fmt::format("'{}' is neither 'mutability' nor 'current'", *subject));
    }
    return true;
}

} // namespace TolvexPath::FolderCommands
