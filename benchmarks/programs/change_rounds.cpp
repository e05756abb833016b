// Sets a manager's path once, then measures for every number read from standard input how long it takes from a change
// of one folder until the path answers rightly, beside its floor. Results are JSON lines; a line "done" follows each
// round.
#include "floors/linux/ChangedFolder.h"
#include "programs/HostSession.h"
#include "programs/LookupTrial.h"
#include "programs/ManagerSession.h"
#include "programs/Measurements.h"
#include "programs/NewFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <random>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

struct Arguments {
    std::string tree;
    std::string pathFile;
    std::string allFoldersFile;
    std::string queries;
};

constexpr std::size_t changesARound = 15;

/// A path, its floor, and one folder after the other that changes under them.
class Trial {
public:
    explicit Trial(const Arguments& arguments)
        : mainFolders(ReadLines(arguments.pathFile)), floor(ReadLines(arguments.allFoldersFile)),
          hits(arguments.queries + "/hits.txt", arguments.tree),
          absent(arguments.queries + "/absent.txt", arguments.tree) {
        session.SetFolders(ReadFolders(arguments.pathFile));
        session.GetManager().RefreshPath(RefreshType::knownChanges); // watches from now on
    }

    void MeasureRound(std::uint32_t seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<std::size_t> places(0, mainFolders.size() - 1);
        Times added;
        Times removed;
        for (std::size_t i = 0; i != changesARound; ++i) {
            const NewFile file(mainFolders[places(random)]);
            file.Create();
            MeasureAnswers(file.GetPath(), added);
            file.Remove();
            MeasureAnswers({}, removed);
        }
        Report("e1", "events", Median(added.floor));
        Report("e1", "added", Median(added.project));
        Report("e1", "events, removed", Median(removed.floor));
        Report("e1", "removed", Median(removed.project));
        Report("answers", "project", static_cast<double>(DemandAllRightAnswers()));
    }

private:
    struct Times {
        std::vector<double> floor;
        std::vector<double> project;
    };

    static double Median(std::vector<double> values) {
        return MedianOf(values.size(), [next = values.begin()]() mutable { return *next++; });
    }

    /// `expected` is the file that answers; empty when none does.
    void MeasureAnswers(const Tolvex::ustring& expected, Times& times) {
        isFloorFirst = !isFloorFirst; // whoever comes second finds the folder's listing warm
        if (isFloorFirst)
            times.floor.push_back(MeasureFloor(!expected.empty()));
        times.project.push_back(MeasureProject(expected));
        if (!isFloorFirst)
            times.floor.push_back(MeasureFloor(!expected.empty()));
    }

    double MeasureFloor(bool expected) {
        bool isFound = false;
        const double taken = MeasureMilliseconds([&] { isFound = floor.RefreshAndFind(NewFile::GetStem()); });
        if (isFound != expected)
            throw std::runtime_error("the floor gave a wrong answer after a change");
        return taken;
    }

    double MeasureProject(const Tolvex::ustring& expected) {
        std::optional<FoundItem> found;
        const double taken = MeasureMilliseconds([&] {
            session.GetManager().RefreshPath(RefreshType::knownChanges);
            found = HostSession::Find(*session.GetManager().GetPath(), NewFile::GetStem());
        });
        if ((found ? Tolvex::ustring(found->GetItem().GetIRI().getPath()) : Tolvex::ustring()) != expected)
            throw std::runtime_error("wrong answer after a change");
        return taken;
    }

    /// Everything that was not changed still answers as before. Returns how many questions were asked.
    [[nodiscard]] std::size_t DemandAllRightAnswers() const {
        const auto path = session.GetManager().GetPath();
        const auto contender = MakePathContender("path after changes", *path);
        DemandRightAnswers(contender, hits);
        DemandRightAnswers(contender, absent);
        return hits.Get().size() + absent.Get().size();
    }

    const std::vector<std::string> mainFolders;
    ManagerSession session;
    ChangedFolder floor;
    const Questions hits;
    const Questions absent;
    bool isFloorFirst = false;
};

} // namespace

int main(int count, char** texts) {
    CLI::App app("Measures changes of single folders, a round for every number read from standard input");
    Arguments arguments;
    app.add_option("tree", arguments.tree, "The folder that answers lie below")->required();
    app.add_option("pathfile", arguments.pathFile, "Absolute folders, one a line")->required();
    app.add_option("allfolders", arguments.allFoldersFile, "These and their special child folders, absolute")
        ->required();
    app.add_option("queries", arguments.queries, "The folder of the questions")->required();
    CLI11_PARSE(app, count, texts);
    try {
        Trial trial(arguments);
        ServeRounds([&trial](std::uint32_t seed) { trial.MeasureRound(seed); });
        return 0;
    } catch (const std::exception& problem) {
        fmt::print(stderr, "change_rounds: {}\n", problem.what());
        return 1;
    }
}
