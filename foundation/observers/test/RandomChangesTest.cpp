#include "ObservedTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace Tolvex {
namespace {

/// How the observers of a test come to know, and of what.
struct Means {
    const char* name;
    ObservationLevel level;
    ObservationOptions options;
    bool areAllAsked = true;
    bool hasLinks = true;
    bool changesWaysOnly = false;
    StampAge age = StampAge::enough;

    friend std::ostream& operator<<(std::ostream& out, const Means& means) { return out << means.name; }
};

/// A small tree that random changes keep populated, so that most of them find something to change.
class RandomTree : public ObservedTree {
public:
    RandomTree(unsigned seed, const Means& means)
        : ObservedTree(means.options, means.age), random(seed), hasLinks(means.hasLinks),
          changesWaysOnly(means.changesWaysOnly) {
        for (const std::string a : {"a", "b", "c"})
            for (const std::string b : {"a", "b"})
                for (const std::string c : {"b", "c"})
                    MakeFolder(a + "/" + b + "/" + c);
    }

    /// Returns what was done, for people; empty when nothing was found to do it to.
    std::string Change() {
        MoveStampsOn();
        waysChanged.clear();
        if (changesWaysOnly && random() % 4 != 0)
            return ChangeWay(random() % 3);
        switch (random() % 12) {
        case 0:
        case 1:
        case 2:
            return MakeFilledFolder();
        case 3:
        case 4:
            return MakeNewFile();
        case 5:
        case 6:
            return MoveOrRemoveFile();
        case 7:
            return RemoveFolder();
        default:
            return ChangeWay(random() % 5);
        }
    }

    /// A name in the tree, there or not.
    std::string Pick() {
        static const char* const names[] = {"a", "b", "c"};
        std::string path = names[random() % 3];
        for (auto depth = random() % 3; depth > 0; --depth)
            path += std::string("/") + names[random() % 3];
        return path;
    }

    /// True when the last change was one of an ancestor of the folder, or of a link on the way to it.
    [[nodiscard]] bool IsBelowChange(const std::string& folder) const {
        return std::ranges::any_of(waysChanged, [&](const auto& path) { return folder.starts_with(path + '/'); });
    }

    /// The names in a folder, that of a folder with a "/" behind. Links are names of their own: where they lead is
    /// nothing that the folder would have changed by.
    [[nodiscard]] std::optional<Names> List(const std::string& folder) const {
        std::error_code failure;
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(At(folder), failure)) {
            const bool isFolder = std::filesystem::is_directory(entry.symlink_status());
            names.insert(entry.path().filename().native() + (isFolder ? "/" : ""));
        }
        return failure ? std::nullopt : std::optional(names);
    }

    std::mt19937 random;
    int linksRetargeted = 0;

private:
    /// Empty when chance finds none.
    template <class Predicate>
    std::string PickWhere(Predicate&& isRight) {
        for (int tries = 0; tries < 40; ++tries)
            if (auto path = Pick(); isRight(path))
                return path;
        return {};
    }
    std::string PickFolder() {
        return PickWhere([&](const std::string& path) { return IsFolder(At(path)); });
    }
    std::string PickFreeName() {
        return PickWhere([&](const std::string& path) {
            std::error_code ignored;
            return std::filesystem::symlink_status(At(path), ignored).type() == std::filesystem::file_type::not_found &&
                   IsFolder(At(path).parent_path());
        });
    }
    std::string PickLink() {
        std::error_code ignored; // links may lead in circles
        return PickWhere([&](const std::string& path) { return std::filesystem::is_symlink(At(path), ignored); });
    }
    static bool IsFolder(const std::filesystem::path& path) {
        std::error_code ignored;
        return std::filesystem::is_directory(path, ignored);
    }

    std::string MakeFilledFolder() {
        const auto path = PickFreeName();
        if (path.empty())
            return {};
        std::filesystem::create_directory(At(path));
        Fill(path);
        return "make folder " + path;
    }

    std::string MakeNewFile() {
        const auto path = PickFolder();
        if (!path.empty())
            Fill(path);
        return path.empty() ? "" : "make file in " + path;
    }

    void Fill(const std::string& folder) { std::ofstream(At(folder) / std::to_string(++fileCount)).put('x'); }

    std::string MoveOrRemoveFile() {
        const auto from = PickFolder();
        const auto to = PickFolder();
        if (from.empty() || to.empty())
            return {};
        for (const auto& entry : std::filesystem::directory_iterator(At(from))) {
            if (!std::filesystem::is_regular_file(entry.symlink_status()))
                continue;
            if (random() % 3 == 0)
                std::filesystem::remove(entry.path());
            else
                std::filesystem::rename(entry.path(), At(to) / std::to_string(++fileCount));
            return "move or remove file of " + from + ", to " + to;
        }
        return {};
    }

    std::string RemoveFolder() {
        const auto path = PickFolder();
        if (path.empty() || (path.size() < 5 && random() % 4 != 0)) // mostly the lowest ones
            return {};
        waysChanged = {path};
        std::filesystem::remove_all(At(path));
        return "remove " + path;
    }

    std::string ChangeWay(std::uint_fast32_t kind) {
        if (kind == 0 || !hasLinks)
            return MoveOrExchange();
        if (kind == 1)
            return RetargetLink();
        const auto path = PickFreeName();
        const auto target = PickFolder();
        if (kind == 2 && !path.empty() && !target.empty()) {
            std::filesystem::create_symlink(At(target), At(path));
            return "make link " + path + " to " + target;
        }
        return MoveOrExchange();
    }

    std::string MoveOrExchange() {
        const unsigned flags = random() % 2 == 0 ? 0 : RENAME_EXCHANGE;
        const auto from = PickFolder();
        const auto to = flags == 0 ? PickFreeName() : PickFolder();
        waysChanged = {from, to};
        const bool isDone = !from.empty() && !to.empty() && from != to &&
                            ::renameat2(-1, At(from).c_str(), -1, At(to).c_str(), flags) == 0;
        return isDone ? (flags == 0 ? "move " : "exchange ") + from + " and " + to : "";
    }

    std::string RetargetLink() {
        const auto link = PickLink();
        const auto target = PickFolder();
        if (link.empty() || target.empty() || At(target) == std::filesystem::read_symlink(At(link)))
            return {};
        waysChanged = {link};
        std::filesystem::create_symlink(At(target), At("new link"));
        std::filesystem::rename(At("new link"), At(link));
        ++linksRetargeted;
        return "retarget link " + link + " to " + target;
    }

    const bool hasLinks;
    const bool changesWaysOnly;
    int fileCount = 0;
    Names waysChanged;
};

/// More than so many are asked for by an environment variable.
int GetWantedChanges() {
    const char* const wanted = std::getenv("KX_RANDOM_CHANGES");
    return wanted ? std::max(1250, std::atoi(wanted)) : 1250; // over 10,000 by all means together
}

class RandomChanges : public testing::TestWithParam<Means> {
protected:
    struct Observed {
        std::string folder;
        ChangeMark mark;
        std::optional<Names> names;
        std::unique_ptr<IFileFolderObserver> observer;
    };

    [[nodiscard]] Observed Observe(const std::string& folder) {
        tree.MoveStampsOn();
        const auto mark = tree.storage->takeChangeMark(tree.Locate(folder));
        return {folder, mark, tree.List(folder), tree.Observe(folder, GetParam().level)};
    }

    /// One to three changes; what they were, for people.
    std::string Change() {
        std::string story;
        for (auto count = 1 + tree.random() % 3; count > 0; --count) {
            const auto what = tree.Change();
            ++tries;
            effective += what.empty() ? 0 : 1;
            waysChanged += !what.empty() && std::ranges::any_of(all, [&](const Observed& each) {
                return tree.IsBelowChange(each.folder);
            });
            story += what + "; ";
        }
        return story;
    }

    void Check(const Observed& each) {
        const bool isReported = each.observer->hasChanged();
        EXPECT_TRUE(isReported || tree.List(each.folder) == each.names) << "not seen in " << each.folder;
        // The folder that the way leads to now tells, links or no links, unless its mark is too young to tell.
        EXPECT_TRUE(!isReported || !each.mark.ProvesUnchanged(tree.storage->takeChangeMark(tree.Locate(each.folder))))
            << "made up in " << each.folder;
        seen += isReported ? 1 : 0;
        proven += isReported && each.mark.settled ? 1 : 0;
    }

    const unsigned seed = std::random_device()();
    RandomTree tree{seed, GetParam()};
    std::vector<Observed> all;
    int tries = 0;       // changes
    int effective = 0;   // those that changed something
    int waysChanged = 0; // those that changed the way to an observed folder
    int seen = 0;        // observers that changed
    int proven = 0;      // those whose mark was old enough to tell of changes that are none
};

TEST_P(RandomChanges, AreAllSeenAndNoneIsMadeUp) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const int wanted = GetWantedChanges();
    for (int i = 0; i < 12; ++i)
        all.push_back(Observe(tree.Pick()));
    while (effective < wanted && tries < 4 * wanted && !HasFailure()) {
        SCOPED_TRACE(Change());
        const auto reported = GetParam().areAllAsked ? tree.TakeChanges() : Names();
        Names changed;
        for (const auto& each : all) {
            Check(each);
            if (each.observer->hasChanged() && !changed.contains(each.folder))
                changed.insert(each.folder);
        }
        EXPECT_TRUE(!GetParam().areAllAsked || reported == changed);
        // Changed folders are observed anew, and now and then another one takes the place of one that is not.
        for (auto& each : all)
            if (each.observer->hasChanged() || tree.random() % 20 == 0)
                each = Observe(tree.random() % 3 == 0 ? tree.Pick() : each.folder);
        EXPECT_TRUE(!GetParam().areAllAsked || GetParam().age == StampAge::real || tree.random() % 2 == 0 ||
                    tree.TakeChanges().empty());
    }
    EXPECT_GE(effective, wanted);
    EXPECT_GT(seen, wanted / 2);
    // While stamps are young a folder has to be taken for changed, so that little is left to be proven unchanged.
    EXPECT_GT(proven, wanted / (GetParam().age == StampAge::real ? 100 : 10));
    EXPECT_GT(waysChanged, wanted / 10);
    EXPECT_TRUE(!GetParam().hasLinks || tree.linksRetargeted > wanted / 50);
    RecordProperty("tries", tries);
    RecordProperty("effective", effective);
    RecordProperty("seen", seen);
    RecordProperty("proven", proven);
    RecordProperty("waysChanged", waysChanged);
    RecordProperty("linksRetargeted", tree.linksRetargeted);
}

constexpr auto watching = ObservationLevel::notification;
constexpr auto timeCheck = ObservationLevel::timeCheck;

INSTANTIATE_TEST_SUITE_P(
    Observers, RandomChanges,
    testing::Values(Means{"watchesAskedSingly", watching, {1000, {}}, false, false},
                    Means{"watchesAskedForAll", watching, {1000, {}}, true, false},
                    Means{"watchesAndLinks", watching, {1000, {}}}, Means{"timeChecks", timeCheck, {1000, {}}},
                    Means{"someWatches", watching, {9, {}}}, Means{"noWatchLeft", watching, {0, {}}, false},
                    Means{"lostReports", watching, {1000, {}, 0}}, Means{"manyLostReports", watching, {1000, {}, 3}},
                    Means{"changedWays", watching, {1000, {}}, true, true, true},
                    Means{"youngMarks", watching, {1000, {}}, true, true, false, StampAge::real}),
    [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace Tolvex
