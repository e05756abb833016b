#include "DisplayText.h"
#include "FoldersOnPath.h"
#include "UsageError.h"
#include "shell/ShellCommand.h"
#include "shell/ShellContext.h"

#include "path_utilities/PathText.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <span>

namespace TolvexPath::PathCommands {

using IRIs = ShellContext::IRIs;
using PathManagement::GetStringFromIRI;
using PathManagement::RefreshType;
using Tolvex::CanonicalAbsoluteIRI;

namespace {

IRIs LocateFolders(const std::vector<std::string>& folders) {
    IRIs located;
    std::ranges::transform(folders, std::back_inserter(located), LocateFolder);
    return located;
}

/// At least one.
IRIs TakeFolders(ShellArguments& arguments) {
    const std::vector<std::string> folders = arguments.TakeAll();
    if (folders.empty())
        throw UsageError("a folder is missing");
    return LocateFolders(folders);
}

bool Contains(const IRIs& folders, const CanonicalAbsoluteIRI& folder) {
    return std::ranges::find(folders, folder) != folders.end();
}

/// The folders of `from` that are not in `others`.
IRIs GetOthers(const IRIs& from, const IRIs& others) {
    IRIs left;
    std::ranges::copy_if(from, std::back_inserter(left), [&](const auto& folder) { return !Contains(others, folder); });
    return left;
}

PathManagement::PathEntryVector CreateEntries(const IRIs& folders, Tolvex::Notification& refusals) {
    const std::vector<Tolvex::AbsoluteIRI> locations(folders.begin(), folders.end());
    auto entries = PathManagement::GetPathEntryFactory().CreatePathEntries(
        locations, PathManagement::UniformFolderMonitor(), refusals);
    TellWrongKinds(entries, refusals);
    return entries;
}

bool MayStandOnPath(const std::shared_ptr<const PathManagement::IPathEntry>& entry) {
    return entry != nullptr && entry->GetPathEntryType() == PathManagement::PathEntryType::mainFolder;
}

void CheckIsOnPath(const IRIs& path, const CanonicalAbsoluteIRI& folder) {
    if (!Contains(path, folder))
        throw UsageError(fmt::format("'{}' is not on the path", Tolvex::ToUtf8(GetStringFromIRI(folder))));
}

/// A place on the path, counted from 0.
std::size_t ReadPlace(const std::string& text, std::size_t count) {
    std::size_t place = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), place);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size() || place < 1 || place > count)
        throw UsageError(fmt::format("--to: '{}' is no number from 1 to {}", text, count));
    return place - 1;
}

std::size_t TakePlace(ShellArguments& arguments, std::size_t count) {
    const bool toBegin = arguments.TakeFlag("--begin");
    const bool toEnd = arguments.TakeFlag("--end");
    const auto place = arguments.TakeOption("--to");
    if (toBegin + toEnd + place.has_value() != 1)
        throw UsageError("one of --begin, --end and --to has to say where the folder goes");
    if (place)
        return ReadPlace(*place, count);
    return toBegin ? 0 : count - 1;
}

} // namespace

/// A list in which nothing may stand on the path is a slip; it leaves the path as it was.
bool Set(ShellContext& context, ShellArguments& arguments) {
    const IRIs folders = LocateFolders(arguments.TakeAll());
    Tolvex::Notification refusals;
    const PathManagement::PathEntryVector entries = CreateEntries(folders, refusals); // alive until the path has them
    if (folders.empty() || std::ranges::any_of(entries, MayStandOnPath))
        return context.SetFolders(folders);
    static_cast<void>(context.Alter([&](Tolvex::Notification& problems) { problems = std::move(refusals); }));
    if (!context.GetManager().GetPathIRIs()->empty())
        context.Report("set: none of these folders can be put on the path; it stays as it was");
    return false;
}

bool Add(ShellContext& context, ShellArguments& arguments) {
    const bool atEnd = arguments.TakeFlag("--end");
    IRIs added = TakeFolders(arguments);
    IRIs left = GetOthers(*context.GetManager().GetPathIRIs(), added);
    IRIs& first = atEnd ? left : added;
    const IRIs& second = atEnd ? added : left;
    first.insert(first.end(), second.begin(), second.end());
    return context.SetFolders(first);
}

bool Remove(ShellContext& context, ShellArguments& arguments) {
    const IRIs removed = TakeFolders(arguments);
    const auto path = context.GetManager().GetPathIRIs();
    for (const CanonicalAbsoluteIRI& folder : removed)
        CheckIsOnPath(*path, folder);
    return context.SetFolders(GetOthers(*path, removed));
}

bool Move(ShellContext& context, ShellArguments& arguments) {
    const auto path = context.GetManager().GetPathIRIs();
    const std::size_t place = TakePlace(arguments, path->size());
    const CanonicalAbsoluteIRI folder = LocateFolder(arguments.Take("a folder"));
    arguments.CheckNothingIsLeft();
    CheckIsOnPath(*path, folder);
    IRIs folders = GetOthers(*path, {folder});
    folders.insert(folders.begin() + static_cast<std::ptrdiff_t>(place), folder);
    return context.SetFolders(folders);
}

bool Refresh(ShellContext& context, ShellArguments& arguments) {
    const std::string what = arguments.TakeOptional().value_or("");
    arguments.CheckNothingIsLeft();
    if (!what.empty() && what != "current" && what != "all")
        throw UsageError(fmt::format("'{}' is neither 'current' nor 'all'", what));
    const RefreshType type = what == "all"       ? RefreshType::markEverything
                             : what == "current" ? RefreshType::markCurrentFolder
                                                 : RefreshType::knownChanges;
    const bool isDone = context.Alter([&](auto&) { context.GetSession().Refresh(type); });
    context.Report(context.GetSession().TakePackageReport());
    return isDone;
}

bool Show(ShellContext& context, ShellArguments& arguments) {
    arguments.CheckNothingIsLeft();
    auto& manager = context.GetManager();
    Output& output = context.GetOutput();
    const auto folders = manager.GetPathIRIs();
    const auto entries = manager.GetPath()->GetMainEntries();
    const auto write = [&](const auto& number, const CanonicalAbsoluteIRI& folder, std::string_view remark) {
        output.Write(fmt::format("{:>4}  {}{}\n", number, ToDisplayText(GetStringFromIRI(folder)), remark));
    };
    for (const auto& entry : *entries)
        if (const auto folder = entry->GetIRI(); !Contains(*folders, folder))
            write("-", folder, "  (current folder)");
    for (std::size_t i = 0; i < folders->size(); ++i)
        write(i + 1, (*folders)[i], "");
    return true;
}

} // namespace TolvexPath::PathCommands
