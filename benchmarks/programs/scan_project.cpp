// From nothing to an answering path, in a process of its own. Prints "ready" the moment every question is answered
// rightly, then what the path weighs and what letting go of it costs, each as a JSON line.
#include "programs/HostSession.h"
#include "programs/ResidentMemory.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>
#include <tbb/global_control.h>

#include <chrono>
#include <cstdio>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

struct Arguments {
    unsigned threads = 1;
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

void Report(const char* row, const char* contender, double value) {
    fmt::print("{{\"row\": \"{}\", \"contender\": \"{}\", \"value\": {}}}\n", row, contender, value);
}

void ReportDrop(std::shared_ptr<const IPath>& path) {
    const auto start = std::chrono::steady_clock::now();
    path.reset();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    Report("g1", "project", taken.count());
}

void Run(const Arguments& arguments) {
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, arguments.threads);
    const auto folders = ReadFolders(arguments.pathFile);
    const auto before = GetResidentBytes();
    auto path = HostSession::CreatePath(HostSession().CreateEntries(folders));
    DemandRightAnswers(*path, arguments);
    fmt::print("ready\n");
    std::fflush(stdout);

    const auto built = GetResidentBytes();
    const auto files = static_cast<double>(HandOutItems(*path));
    const auto handedOut = GetResidentBytes();
    Report("f1", "built", static_cast<double>(built - before) / files);
    Report("f1", "handed out", static_cast<double>(handedOut - before) / files);
    ReportDrop(path);
}

} // namespace

int main(int count, char** texts) {
    CLI::App app("Scans the folders of a path and asks it");
    Arguments arguments;
    app.add_option("--threads", arguments.threads, "How many threads may scan and index")->check(CLI::PositiveNumber);
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
