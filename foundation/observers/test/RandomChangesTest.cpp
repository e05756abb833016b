#include "ObservedTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace Tolvex {
namespace {

constexpr int changesEach = 1'700; // over 10,000 in all

/// Changes a small tree at random and keeps account of the folders that each change concerns.
class RandomTree : public ObservedTree {
public:
    RandomTree(unsigned seed, ObservationOptions options, bool hasLinks)
        : ObservedTree(std::move(options)), random(seed), hasLinks(hasLinks) {}

    /// Returns what was done, for people.
    std::string Change() {
        MoveStampsOn();
        listsChanged.clear();
        waysChanged.clear();
        const auto path = Pick();
        std::error_code failure; // many changes are not possible: nothing happens then
        switch (random() % (hasLinks ? 7 : 6)) {
        case 0:
            Concern(path);
            std::filesystem::create_directory(At(path), failure);
            return "make folder " + path;
        case 1:
            listsChanged.insert(path);
            std::ofstream(At(path) / "file").put('x');
            return "make file in " + path;
        case 2:
            listsChanged.insert(path);
            std::filesystem::remove(At(path) / "file", failure);
            return "remove file in " + path;
        case 3:
            Concern(path);
            std::filesystem::remove_all(At(path), failure);
            return "remove " + path;
        case 6:
            std::filesystem::create_symlink(At(Pick()), At(path), failure);
            return "make link " + path;
        default:
            return MoveOrExchange(path, Pick());
        }
    }

    /// A folder somewhere in the tree, there or not.
    std::string Pick() {
        static const char* const names[] = {"a", "b", "c"};
        std::string path = names[random() % 3];
        for (auto depth = random() % 3; depth > 0; --depth)
            path += std::string("/") + names[random() % 3];
        return path;
    }

    /// False when the last change left alone what is in the folder and where its way leads.
    [[nodiscard]] bool MayConcern(const std::string& folder) const {
        return hasLinks || listsChanged.contains(folder) || std::ranges::any_of(waysChanged, [&](const auto& path) {
                   return (folder + '/').starts_with(path + '/');
               });
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

private:
    void Concern(const std::string& path) {
        waysChanged.insert(path);
        if (const auto end = path.rfind('/'); end != std::string::npos)
            listsChanged.insert(path.substr(0, end));
    }

    std::string MoveOrExchange(const std::string& from, const std::string& to) {
        const unsigned flags = random() % 2 == 0 ? 0 : RENAME_EXCHANGE;
        if (::renameat2(-1, At(from).c_str(), -1, At(to).c_str(), flags) != 0)
            return "nothing";
        Concern(from);
        Concern(to);
        return (flags == 0 ? "move " : "exchange ") + from + " and " + to;
    }

    const bool hasLinks;
    Names listsChanged;
    Names waysChanged;
};

struct Way {
    const char* name;
    ObservationLevel level;
    std::size_t watchLimit;
    bool askForAll;
    bool hasLinks;
};

class RandomChanges : public testing::TestWithParam<Way> {};

TEST_P(RandomChanges, AreAllSeenAndNoneIsMadeUp) {
    struct Observed {
        std::string folder;
        std::optional<Names> names;
        std::unique_ptr<IFileFolderObserver> observer;
    };
    const auto& [name, level, watchLimit, askForAll, hasLinks] = GetParam();
    const auto seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomTree tree(seed, {watchLimit, {}}, hasLinks);
    const auto observe = [&](const std::string& folder) {
        tree.MoveStampsOn();
        auto observer = tree.Observe(folder, level);
        return Observed{folder, tree.List(folder), std::move(observer)};
    };
    std::vector<Observed> all;
    for (int i = 0; i < 12; ++i)
        all.push_back(observe(tree.Pick()));
    for (int i = 0; i < changesEach && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(tree.Change());
        const auto reported = askForAll ? tree.TakeChanges() : Names();
        for (auto& [folder, names, observer] : all) {
            const bool isReported = askForAll ? reported.contains(folder) : observer->hasChanged();
            EXPECT_EQ(observer->hasChanged(), isReported) << folder;
            EXPECT_TRUE(isReported || tree.List(folder) == names) << "not seen in " << folder;
            EXPECT_TRUE(!isReported || tree.MayConcern(folder)) << "made up in " << folder;
        }
        // Changed folders are observed anew, and now and then another one takes the place of one that is not.
        for (auto& each : all)
            if (each.observer->hasChanged() || tree.random() % 20 == 0)
                each = observe(tree.random() % 3 == 0 ? tree.Pick() : each.folder);
        EXPECT_TRUE(!askForAll || tree.random() % 2 == 0 || tree.TakeChanges().empty());
    }
}

constexpr auto watching = ObservationLevel::notification;

INSTANTIATE_TEST_SUITE_P(Observers, RandomChanges,
                         testing::Values(Way{"watchesAskedSingly", watching, 1000, false, false},
                                         Way{"watchesAskedForAll", watching, 1000, true, false},
                                         Way{"watchesAndLinks", watching, 1000, true, true},
                                         Way{"timeChecks", ObservationLevel::timeCheck, 1000, true, false},
                                         Way{"someWatches", watching, 9, true, false},
                                         Way{"noWatch", watching, 0, false, false}),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace Tolvex
