// Sets a manager's path once, then measures for every number read from standard input what a refresh costs that finds
// nothing changed, beside its floor. Results are JSON lines; a line "done" follows each round.
#include "floors/FlaggedFolders.h"
#include "floors/linux/FolderStamps.h"
#include "programs/HostSession.h"
#include "programs/Measurements.h"
#include "programs/RefreshTrial.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <stdexcept>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

struct Arguments {
    bool isWatched = false;
    std::string pathFile;
    std::string allFoldersFile;
};

constexpr std::size_t repeats = 5;

template <class Floor>
double MeasureFloor(const Floor& floor) {
    std::size_t changed = 0;
    const double taken = MeasureMilliseconds([&] { changed = floor.CountChanged(); });
    if (changed != 0)
        throw std::runtime_error("a folder has changed meanwhile");
    return taken;
}

template <class Floor>
void Serve(const char* row, const char* floorName, const Floor& floor, RefreshTrial& trial) {
    ServeRounds([&](std::uint32_t) {
        Report(row, floorName, MedianOf(repeats, [&] { return MeasureFloor(floor); }));
        Report(row, "project", MedianOf(repeats, [&] { return trial.Measure(); }));
    });
}

void Run(const Arguments& arguments) {
    using enum FolderMonitoringLevel;
    ManagerSession session;
    session.SetFolders(ReadFolders(arguments.pathFile));
    RefreshTrial trial(session, arguments.isWatched ? notification : timeCheck);
    auto folders = ReadLines(arguments.allFoldersFile);
    const FlaggedFolders flags(session.GetStoredPath());
    if (folders.size() != flags.GetCount())
        throw std::runtime_error("the path has not as many entries as there are folders");
    if (arguments.isWatched)
        Serve("d1", "flags", flags, trial);
    else
        Serve("d2", "statx", FolderStamps(std::move(folders)), trial);
}

} // namespace

int main(int count, char** texts) {
    CLI::App app("Measures refreshes without a change, a round for every number read from standard input");
    Arguments arguments;
    app.add_flag("--watched", arguments.isWatched, "The kernel watches the folders; else they are to be looked at");
    app.add_option("pathfile", arguments.pathFile, "Absolute folders, one a line")->required();
    app.add_option("allfolders", arguments.allFoldersFile, "These and their special child folders, absolute")
        ->required();
    CLI11_PARSE(app, count, texts);
    try {
        Run(arguments);
        return 0;
    } catch (const std::exception& problem) {
        fmt::print(stderr, "refresh_rounds: {}\n", problem.what());
        return 1;
    }
}
