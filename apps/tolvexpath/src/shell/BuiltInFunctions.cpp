#include "shell/BuiltInFunctions.h"

#include "UsageError.h"
#include "shell/ArrayText.h"
#include "shell/BuiltInCall.h"
#include "shell/ShellContext.h"

#include "foundation/messages/Catalogue.h"
#include "search_path/BuiltIns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace TolvexPath {

namespace {

constexpr auto functions = std::to_array<BuiltInFunction>({
    {"FeatureRemotePathPolicy", "(option)", "Ask or say how folders on remote storage are checked for change",
     "'Reload': read anew at each refresh; 'TimecheckDir': by their time stamps; 'None': not at all; 'Status' asks.\n"
     "Gives the policy before the call.",
     "Reload TimecheckDir None Status"},
    {"FeatureDirChangeHandleWarn", "(option)", "Ask or say when the warning about missing kernel watches is shown",
     "'always', 'once' or 'never' say it, 'status' asks. Gives the setting before the call.",
     "always once never status"},
    {"HiddenCanonicalizepath", "(path)", "Show the one name of a file or folder",
     "It need not exist. Starts from the working folder; links are resolved.", ""},
    {"FeatureCachePath", "(option, file)", "Use the path cache of the installation",
     "'status' reports on it, 'write' saves it, 'load' takes folders from it, 'drop' forgets what was loaded. 'write'\n"
     "and 'load' may be given another file.",
     "status write load drop"},
    {"FeatureDumpMainSearchPath", "()", "Show the whole state of the search path, for a support request", "", ""},
    {"GetPathForPackagesInstalledAfter", "(point), [folders, newest] = ...",
     "Show the root folders of packages installed after a point",
     "The second output is the point to ask for next; the first one is 0. Needs installed packages (--packages).", ""},
});

constexpr bool DescribesAll() {
    return std::ranges::equal(functions, PathManagement::builtIns, {}, &BuiltInFunction::name,
                              &TolvexArrays::BuiltIn::name);
}
static_assert(DescribesAll(), "each built-in function has to be described here, in the library's order");

const TolvexArrays::BuiltInTable& GetTable() {
    static const TolvexArrays::BuiltInTable table = [] {
        TolvexArrays::BuiltInTable made;
        made.Add(PathManagement::builtIns);
        return made;
    }();
    return table;
}

void CheckName(std::string_view name) {
    if (FindBuiltInFunction(name) != nullptr)
        return;
    std::string known;
    for (const BuiltInFunction& function : functions)
        known.append(known.empty() ? "" : ", ").append(function.name);
    throw UsageError(fmt::format("there is no built-in function '{}', only {}", name, known));
}

} // namespace

std::span<const BuiltInFunction> GetBuiltInFunctions() {
    return functions;
}

const BuiltInFunction* FindBuiltInFunction(std::string_view name) {
    const auto* const found = std::ranges::find(functions, name, &BuiltInFunction::name);
    return found == functions.end() ? nullptr : found;
}

bool CallBuiltInFunction(ShellContext& context, std::string_view line) {
    const BuiltInCall call = ReadBuiltInCall(line);
    CheckName(call.name);
    try {
        const auto outputs = GetTable().Call(call.name, call.outputs.size(), call.inputs);
        if (call.wantsJson)
            WriteArraysJson(context.GetOutput(), call.outputs, outputs);
        else
            ShowArrays(context.GetOutput(), call.outputs, outputs);
        return true;
    } catch (const Tolvex::MessageIdentifierException& error) {
        const Tolvex::MessageIdentifier& message = error.GetMessageIdentifier();
        context.Report(fmt::format("{}: {}: {}", call.name, message.GetFullName(), Tolvex::GetMessageText(message)));
    }
    return false;
}

} // namespace TolvexPath
