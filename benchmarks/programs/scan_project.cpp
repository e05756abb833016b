// From nothing, or from a path cache file, to an answering path, in a process of its own. Prints "ready" the moment
// every question is answered rightly, then, each as a JSON line: of a scanned path, what it weighs and what letting go
// of it costs; of a path from a cache file, what the first look at its folders costs.
#include "path_utilities/PathText.h"
#include "path_utilities/ToolboxCacheFile.h"
#include "programs/HostSession.h"
#include "programs/ManagerSession.h"
#include "programs/Measurements.h"
#include "programs/ResidentMemory.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>
#include <tbb/global_control.h>

#include <cstdio>
#include <stdexcept>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

struct Arguments {
    unsigned threads = 1;
    bool throughManager = false;
    std::string cacheFile;
    std::string cacheRoot;
    std::string pathFile;
    std::vector<std::pair<std::string, std::string>> questions;
};

void DemandRightAnswers(const IPath& path, const Arguments& arguments) {
    for (const auto& [name, file] : arguments.questions) {
        const auto found = HostSession::Find(path, Tolvex::FromUtf8(name));
        if (!found || Tolvex::ToUtf8(found->GetItem().GetIRI().getPath()) != file)
            throw std::runtime_error("wrong answer to " + name);
    }
}

/// Asks every entry for its items and returns how many there are.
std::size_t HandOutItems(const IPath& path) {
    std::size_t files = 0;
    path.ForEachEntry(SearchScope::All(), [&files](const std::shared_ptr<const IPathEntry>& entry) {
        files += entry->GetPathItems()->size();
        return false;
    });
    return files;
}

void ReportDrop(std::shared_ptr<const IPath>& path) {
    Report("g1", "project", MeasureMilliseconds([&path] { path.reset(); }));
}

void SayReady(const IPath& path, const Arguments& arguments) {
    DemandRightAnswers(path, arguments);
    fmt::print("ready\n");
    std::fflush(stdout);
}

std::shared_ptr<const IPath> CreateAnsweringPath(const std::vector<Tolvex::AbsoluteIRI>& folders,
                                                 const Arguments& arguments) {
    auto path = HostSession::CreatePath(HostSession().CreateEntries(folders));
    SayReady(*path, arguments);
    return path;
}

/// With the working folder in front, and what is watched to be watched from the first refresh on.
void ScanThroughManager(const Arguments& arguments) {
    ManagerSession session;
    session.SetFolders(ReadFolders(arguments.pathFile));
    SayReady(*session.GetManager().GetPath(), arguments);
}

/// The first round of a refresh finds out whether the cache file still speaks for the folders.
void LookAtEveryFolder() {
    if (!GetPathEntryFactory().GetChangesSince({}).changed.empty())
        throw std::runtime_error("a folder has changed since the cache file was written");
}

void StartFromCacheFile(const Arguments& arguments) {
    LoadToolboxPathCache(GetPathEntryFactory(), GetIRIFromString(Tolvex::FromUtf8(arguments.cacheRoot)),
                         arguments.cacheFile);
    const auto path = CreateAnsweringPath(ReadFolders(arguments.pathFile), arguments);
    if (GetPathEntryFactory().GetCounters().foldersListed != 0)
        throw std::runtime_error("a folder was listed although there is a cache file");
    Report("c2", "first look", MeasureMilliseconds(LookAtEveryFolder));
}

void Scan(const Arguments& arguments) {
    const auto folders = ReadFolders(arguments.pathFile);
    const auto before = GetResidentBytes();
    auto path = CreateAnsweringPath(folders, arguments);
    const auto built = GetResidentBytes();
    const auto files = static_cast<double>(HandOutItems(*path));
    const auto handedOut = GetResidentBytes();
    Report("f1", "built", static_cast<double>(built - before) / files);
    Report("f1", "handed out", static_cast<double>(handedOut - before) / files);
    ReportDrop(path);
}

void Run(const Arguments& arguments) {
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, arguments.threads);
    if (arguments.throughManager)
        ScanThroughManager(arguments);
    else if (arguments.cacheFile.empty())
        Scan(arguments);
    else
        StartFromCacheFile(arguments);
}

} // namespace

int main(int count, char** texts) {
    CLI::App app("Scans the folders of a path and asks it");
    Arguments arguments;
    app.add_option("--threads", arguments.threads, "How many threads may scan and index")->check(CLI::PositiveNumber);
    auto* const cache = app.add_option("--cache", arguments.cacheFile, "Start from this path cache file");
    cache->needs(app.add_option("--root", arguments.cacheRoot, "The folder that the cache file speaks for"));
    app.add_flag("--manager", arguments.throughManager, "Ask the path of a search path manager")->excludes(cache);
    app.add_option("pathfile", arguments.pathFile, "Absolute folders, one a line")->required();
    app.add_option("questions", arguments.questions, "NAME FILE pairs: a name and the file that answers")->required();
    CLI11_PARSE(app, count, texts);
    try {
        Run(arguments);
        return 0;
    } catch (const std::exception& problem) {
        fmt::print(stderr, "scan_project: {}\n", problem.what());
        return 1;
    }
}
