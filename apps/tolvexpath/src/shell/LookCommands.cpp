#include "FoundFiles.h"
#include "Terminal.h"
#include "UsageError.h"
#include "shell/ShellCommand.h"
#include "shell/ShellContext.h"

#include "path_interfaces/events/PathChangeEvent.h"

#include <fmt/format.h>

namespace TolvexPath::LookCommands {

using PathManagement::PathChangeEvent;

namespace {

std::string_view GetName(PathChangeEvent::Stage stage) {
    switch (stage) {
    case PathChangeEvent::Stage::beforeChange:
        return "before";
    case PathChangeEvent::Stage::afterChange:
        return "changed";
    case PathChangeEvent::Stage::afterwards:
        return "afterwards";
    }
    return "unknown";
}

/// For people: "path change, before: 2 folders, then 3; 1 added, 0 removed, 0 reordered, 0 refreshed".
std::string Describe(const PathChangeEvent& event) {
    const std::size_t before = event.GetOldIRIs()->size();
    return fmt::format(
        "path change, {}: {} folder{}, then {}; {} added, {} removed, {} reordered, {} refreshed{}{}\n",
        GetName(event.GetStage()), before, before == 1 ? "" : "s", event.GetNewIRIs()->size(), event.GetAdded()->size(),
        event.GetRemoved()->size(), event.GetReordered()->size(), event.GetRefreshedAfter()->size(),
        event.HasCurrentFolderChanged() ? "; another current folder" : "", event.IsRefresh() ? "; by a refresh" : "");
}

} // namespace

bool Find(ShellContext& context, ShellArguments& arguments) {
    const bool all = arguments.TakeFlag("--all");
    const std::string name = arguments.Take("a name");
    arguments.CheckNothingIsLeft();
    const Finder finder = context.MakeFinder(all);
    Question question;
    question.name = Tolvex::FromUtf8(name);
    const auto files = finder.Answer(question);
    if (IsTerminal(StandardChannel::output))
        ShowFoundPaths(context.GetOutput(), files);
    else
        WriteFoundPaths(context.GetOutput(), files, '\n');
    if (!files.empty())
        return true;
    const std::string explanation = finder.ExplainMiss(question);
    context.Report(
        fmt::format("nothing on the path answers to '{}'{}{}", name, explanation.empty() ? "" : "; ", explanation));
    return false;
}

bool Events(ShellContext& context, ShellArguments& arguments) {
    const std::string wish = arguments.Take("'on' or 'off'");
    arguments.CheckNothingIsLeft();
    if (wish != "on" && wish != "off")
        throw UsageError(fmt::format("'{}' is neither 'on' nor 'off'", wish));
    context.eventTrace.Disconnect();
    if (wish == "on")
        context.eventTrace = context.GetSession().GetEvents().Subscribe<PathChangeEvent>(
            [&context](const PathChangeEvent& event) { context.GetOutput().Write(Describe(event)); });
    return true;
}

} // namespace TolvexPath::LookCommands
