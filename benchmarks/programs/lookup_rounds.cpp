// Sets a manager's path and makes what it is compared with once, then measures a round for every number read from
// standard input. Results are JSON lines; a line "done" follows each round, and the checked answers before the first.
#include "programs/ChangeTrial.h"
#include "programs/HostSession.h"
#include "programs/LookupTrial.h"
#include "programs/ManagerSession.h"
#include "programs/Measurements.h"

#include "path_utilities/PathText.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

struct Arguments {
    std::string tree;
    std::string pathFile;
    std::string queries;
    std::string spareFolder;
    std::string spareName;
};

constexpr std::size_t shuffledNames = 100'000;
constexpr std::size_t hotNames = 16;
constexpr std::size_t hotRepeats = 50'000;

/// What is asked, and everybody who answers.
class Trial {
public:
    explicit Trial(const Arguments& arguments)
        : path(SetPath(session, arguments)), wholePath(session.GetManager().GetPath()), catalogue(*path),
          spareEntry(FindSpareEntry()), spareName(arguments.spareName),
          hits(arguments.queries + "/hits.txt", arguments.tree),
          absent(arguments.queries + "/absent.txt", arguments.tree),
          front(arguments.queries + "/front.txt", arguments.tree),
          back(arguments.queries + "/back.txt", arguments.tree) {
        contenders = {MakeFlatMapContender(catalogue),    MakeFlatTableContender(catalogue),
                      MakePathContender("path", *path),   MakeAccessorContender(catalogue),
                      MakeEqualRangeContender(catalogue), MakePathContender("manager", *wholePath)};
    }

    /// Every contender, every question; throws at the first wrong answer. Returns how many were asked.
    [[nodiscard]] std::size_t DemandAllRightAnswers() const {
        std::size_t asked = 0;
        for (const auto& contender : contenders)
            for (const Questions* questions : {&front, &back, &absent, &hits}) {
                DemandRightAnswers(contender, *questions);
                asked += questions->Get().size();
            }
        return asked;
    }

    void MeasureRound(std::uint32_t seed) {
        // Whoever comes first finds the questions themselves cold, so the turn goes round.
        std::ranges::rotate(contenders, contenders.begin() + 1);
        const PackedNames shuffledHits = hits.Shuffle(seed, shuffledNames);
        const PackedNames shuffledAbsent = absent.Shuffle(seed, shuffledNames);
        const PackedNames hot = hits.Shuffle(seed + 1, hotNames);
        MeasureRow("b1", {.names = shuffledHits.Get()});
        MeasureRow("b2", {.names = shuffledAbsent.Get(), .areFound = false});
        MeasureRow("b3", {.names = hot.Get(), .repeats = hotRepeats});
        MeasureRow("b4", {.names = hot.Get(), .repeats = hotRepeats, .threads = 2});
        Report("x1", "project", ChangeTrial(path, spareEntry, Tolvex::FromUtf8(spareName)).Measure(seed));
    }

private:
    void MeasureRow(const char* row, const LookupTask& task) const {
        for (const auto& contender : contenders)
            Report(row, contender.name, contender.measure(task));
    }

    /// The path of what was set; the spare folder is made the working folder.
    static std::shared_ptr<const IPath> SetPath(ManagerSession& session, const Arguments& arguments) {
        session.EnterFolder(GetIRIFromString(Tolvex::FromUtf8(arguments.spareFolder)));
        session.SetFolders(ReadFolders(arguments.pathFile));
        return session.GetStoredPath();
    }

    [[nodiscard]] std::shared_ptr<const IPathEntry> FindSpareEntry() const {
        auto inFront = wholePath->GetMainEntries()->front();
        if (path->IsEntryOnPath(*inFront))
            throw std::runtime_error("the spare folder is on the path");
        return inFront;
    }

    ManagerSession session;
    std::shared_ptr<const IPath> path;
    std::shared_ptr<const IPath> wholePath; // the working folder in front
    NameCatalogue catalogue;
    std::shared_ptr<const IPathEntry> spareEntry;
    std::string spareName;
    Questions hits;
    Questions absent;
    Questions front;
    Questions back;
    std::vector<LookupContender> contenders;
};

void Run(const Arguments& arguments) {
    Trial trial(arguments);
    fmt::print("{{\"answers\": {}}}\n", trial.DemandAllRightAnswers());
    std::fflush(stdout);
    ServeRounds([&trial](std::uint32_t seed) { trial.MeasureRound(seed); });
}

} // namespace

int main(int count, char** texts) {
    CLI::App app("Measures look-ups, a round for every number read from standard input");
    Arguments arguments;
    app.add_option("tree", arguments.tree, "The folder that answers lie below")->required();
    app.add_option("pathfile", arguments.pathFile, "Absolute folders, one a line")->required();
    app.add_option("queries", arguments.queries, "The folder of the questions")->required();
    app.add_option("sparefolder", arguments.spareFolder, "A folder that is not on the path")->required();
    app.add_option("sparename", arguments.spareName, "A name that only the spare folder has")->required();
    CLI11_PARSE(app, count, texts);
    try {
        Run(arguments);
        return 0;
    } catch (const std::exception& problem) {
        fmt::print(stderr, "lookup_rounds: {}\n", problem.what());
        return 1;
    }
}
