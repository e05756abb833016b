#include "CacheArguments.h"
#include "Commands.h"
#include "FolderArguments.h"
#include "Messages.h"
#include "Output.h"
#include "PackageArguments.h"
#include "Session.h"
#include "watch/ChangeWriter.h"
#include "watch/WatchLoop.h"

#include "foundation/environment/CodeFiles.h"
#include "foundation/environment/StorageAccess.h"
#include "path_interfaces/events/PathChangeEvent.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <system_error>
#include <type_traits>

namespace TolvexPath {

using PathManagement::IPath;
using PathManagement::PathChangeEvent;

namespace {

constexpr const char* help = R"help(Stays, and tells of each change as it happens: the folders that hold other
files now, then the names that came (+), went (-) or are answered by another
file (~). What a file holds does not matter. A file that is hidden by another
one changes no name, then only its folder is told, as "(no name changed)".

Changes that come close together are told together: after --quiet milliseconds
in which nothing happened, but at most 20 times as long. Folders of which the
system does not tell (far disks, or no kernel watch left) are looked at every
--interval seconds.

--json writes one object a line, at first {"event":"ready"}: what changes from
then on is told, as
  {"event":"change","folders":[..],"added":[..],"removed":[..],"changed":[..]}
with {"name":...,"before":FILE,"after":FILE} for each name; 'before' is left
out of added names, 'after' of removed ones.

With --packages, packages that some program installs, updates or removes are
told, too: "put", "moved" and "taken" list the folders that came on the path,
changed their place on it or left it.

Ends at Ctrl-C or SIGTERM, or when nobody reads its output any more.

Examples:
  tolvexpath watch -p geometry -p statistics
  tolvexpath watch --path-file path.txt | while read -r line; do make; done

Exit status: 0 ended as above; 1 no folder could be read; 2 wrong use.)help";

/// Whether a value is a number from `least` to `most`; without a name, which the help would show.
template <typename Number>
CLI::Validator MakeRange(Number least, Number most) {
    const auto refuse = [least, most](const std::string& text) {
        Number number = 0;
        if (CLI::detail::lexical_cast(text, number) && number >= least && number <= most)
            return std::string();
        return fmt::format("'{}' is no {} from {} to {}", text, std::is_integral_v<Number> ? "whole number" : "number",
                           least, most);
    };
    return {refuse, ""};
}

Finder MakeFinder(std::shared_ptr<const IPath> path) {
    const auto usual = Tolvex::GetCodeFileExtensions();
    SearchDefaults defaults;
    defaults.extensions.assign(usual.begin(), usual.end());
    return {std::move(path), std::move(defaults)};
}

/// Tells a writer of each change of a path.
class ChangeTeller {
public:
    ChangeTeller(Tolvex::EventMgr& events, ChangeWriter& writer)
        : writer(writer), connection(events.Subscribe<PathChangeEvent>([this](const auto& event) { Handle(event); })) {}

private:
    void Handle(const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::beforeChange)
            before = event.GetManager().GetPath();
        if (event.GetStage() != PathChangeEvent::Stage::afterwards)
            return;
        const Finder old = MakeFinder(std::exchange(before, nullptr));
        const Finder now = MakeFinder(event.GetManager().GetPath());
        const auto changes = FindContentChanges(event, old, now);
        if (changes.HoldAny()) // else they were read anew to be on the safe side
            writer.Write(changes);
    }

    ChangeWriter& writer;
    std::shared_ptr<const IPath> before;
    Tolvex::ScopedConnection connection;
};

class WatchCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "watch"; }
    [[nodiscard]] std::string GetSummary() const override { return "Tell of changes on a path as they happen"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    [[nodiscard]] ExitCode Watch(Session& session) const;

    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    bool asJson = false;
    unsigned quiet = 50;   // milliseconds
    double interval = 1.0; // seconds
};

void WatchCommand::DeclareArguments(CLI::App& arguments) {
    folders.DeclareOptions(arguments);
    cache.DeclareOptions(arguments, false); // it looks at every folder when it begins
    packages.DeclareOptions(arguments);
    arguments.add_flag("--json", asJson, "Write one JSON object a line");
    arguments.add_option("--quiet", quiet, "Wait until nothing has happened for so many milliseconds [50]")
        ->type_name("MS")
        ->check(MakeRange(1u, 60'000u));
    arguments.add_option("--interval", interval, "Seconds between looks at folders that nothing tells of [1]")
        ->type_name("SECONDS")
        ->check(MakeRange(0.01, 86'400.));
    arguments.footer(help);
}

ExitCode WatchCommand::Run() {
    const auto locations = packages.GetLocations(folders);
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder, packages.GetFolder());
    const bool isCacheLoaded = cache.Load();
    PrintMessages(session.SetPath(locations));
    if (session.GetManager().GetPathIRIs()->empty() && !packages.GetFolder())
        return ExitCode::notFound;
    if (isCacheLoaded)
        cache.TellIfUseless(*session.GetManager().GetPath()->GetMainEntries());
    try {
        return Watch(session);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::broken_pipe)
            return ExitCode::success;
        throw;
    }
}

ExitCode WatchCommand::Watch(Session& session) const {
    auto& observers = Tolvex::GetFileFolderObserverFactory(TolvexStorageSystem::GetStorageSystemReference());
    const WakeUp wakeUp(observers.getWaitHandle());
    Output output;
    const auto writer = CreateChangeWriter(output, asJson);
    session.Refresh(PathManagement::RefreshType::knownChanges); // puts the watches in place
    const ChangeTeller teller(session.GetEvents(), *writer);
    writer->BeginWatch(session.GetManager().GetPathIRIs()->size());
    const auto pause = std::chrono::duration_cast<WakeUp::Duration>(std::chrono::duration<double>(interval));
    const auto refresh = [&session] {
        session.FollowPackages();
        PrintMessages(session.TakePackageReport());
        session.GetManager().RefreshPath(PathManagement::RefreshType::knownChanges);
    };
    WatchLoop(refresh, PathManagement::GetPathEntryFactory(), wakeUp,
              {.quiet = WakeUp::Duration(quiet), .interval = pause})
        .Run();
    return ExitCode::success;
}

} // namespace

std::unique_ptr<ICommand> CreateWatchCommand() {
    return std::make_unique<WatchCommand>();
}

} // namespace TolvexPath
