#include "PathWorld.h"

#include "path_utilities/PathEntryVectorDifferentiator.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace PathManagement {
namespace {

std::size_t CountOf(const PathEntryVector& entries, const IPathEntry& wanted) {
    return static_cast<std::size_t>(
        std::ranges::count(entries, wanted.GetIRI(), [](const auto& e) { return e->GetIRI(); }));
}

void EraseFolder(PathEntryVector& entries, const IPathEntry& folder) {
    entries.erase(std::ranges::find(entries, folder.GetIRI(), [](const auto& entry) { return entry->GetIRI(); }));
}

/// By the textbook's table.
std::size_t LongestCommonSubsequence(const PathEntryVector& a, const PathEntryVector& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (const auto& one : a) {
        std::size_t diagonal = 0;
        for (std::size_t i = 0; i < b.size(); ++i) {
            const std::size_t above = row[i + 1];
            row[i + 1] = one->GetIRI() == b[i]->GetIRI() ? diagonal + 1 : std::max(above, row[i]);
            diagonal = above;
        }
    }
    return row.back();
}

PathEntryVector Flatten(const PathEntryVector& entries) {
    PathEntryVector all;
    for (const auto& entry : entries)
        entry->ForEachEntry(SearchScope::All(), [&](const auto& each) { return all.push_back(each), false; });
    return all;
}

/// All five lists of a comparison.
std::vector<PathEntryVector> Lists(const PathEntryVector& before, const PathEntryVector& after,
                                   ComparisonFilter filter) {
    PathEntryVectorDifferentiator difference;
    difference.Compare(before, after, filter);
    return {*difference.GetAdded(), *difference.GetRemoved(), *difference.GetReordered(),
            *difference.GetRefreshedBefore(), *difference.GetRefreshedAfter()};
}

/// Lists of folders, each as one of two objects; every third folder has a package.
class DifferentiatorStory {
public:
    DifferentiatorStory() : earlier(Files()), later(earlier.storage) {
        for (int folder = 0; folder < folderCount; ++folder)
            for (PathWorld* world : {&earlier, &later})
                objects.push_back(world->Entry("/m" + std::to_string(folder)));
    }

    PathEntryVector AnyList() {
        PathEntryVector entries;
        for (const int number : *rc::gen::unique<std::vector<int>>(rc::gen::inRange(0, folderCount)))
            entries.push_back(AnyObjectOf(static_cast<std::size_t>(number)));
        return entries;
    }

    /// A list made from another by a few steps, so that long parts of both are alike.
    PathEntryVector Edited(PathEntryVector entries) {
        for (int step = *rc::gen::inRange(0, 5); step > 0; --step) {
            auto entry = AnyObjectOf(*rc::gen::inRange<std::size_t>(0, folderCount));
            const bool isMove = *rc::gen::arbitrary<bool>();
            const bool isThere = CountOf(entries, *entry) != 0;
            if (isThere)
                EraseFolder(entries, *entry);
            if (!isThere || isMove)
                entries.insert(entries.begin() + *rc::gen::inRange<std::ptrdiff_t>(0, std::ssize(entries) + 1), entry);
        }
        return entries;
    }

private:
    static constexpr int folderCount = 12;

    static std::vector<std::string> Files() {
        std::vector<std::string> files;
        for (int folder = 0; folder < folderCount; ++folder)
            files.push_back("/m" + std::to_string(folder) + (folder % 3 == 0 ? "/+p/a.kx" : "/a.kx"));
        return files;
    }

    std::shared_ptr<const IPathEntry> AnyObjectOf(std::size_t folder) {
        return objects[2 * folder + *rc::gen::inRange<std::size_t>(0, 2)];
    }

    PathWorld earlier;
    PathWorld later;
    PathEntryVector objects; // two a folder
};

RC_GTEST_PROP(PathEntryVectorDifferentiator, TurnsTheOldListIntoTheNewWithFewestMoves, ()) {
    DifferentiatorStory story;
    const PathEntryVector before = story.AnyList();
    const PathEntryVector after = *rc::gen::arbitrary<bool>() ? story.Edited(before) : story.AnyList();
    PathEntryVectorDifferentiator difference;
    difference.Compare(before, after, ComparisonFilter::asListed);

    PathEntryVector stillBefore = before;
    for (const auto& entry : *difference.GetRemoved())
        std::erase(stillBefore, entry);
    RC_ASSERT(stillBefore.size() + difference.GetRemoved()->size() == before.size());
    RC_ASSERT(difference.GetRefreshedBefore()->size() == difference.GetRefreshedAfter()->size());
    for (std::size_t i = 0; i < difference.GetRefreshedBefore()->size(); ++i) {
        const auto& old = (*difference.GetRefreshedBefore())[i];
        RC_ASSERT(old != (*difference.GetRefreshedAfter())[i]);
        RC_ASSERT(old->GetIRI() == (*difference.GetRefreshedAfter())[i]->GetIRI());
        std::ranges::replace(stillBefore, old, (*difference.GetRefreshedAfter())[i]);
    }
    PathEntryVector alreadyThere = after;
    for (const auto& entry : *difference.GetAdded()) {
        RC_ASSERT(CountOf(before, *entry) == 0u);
        std::erase(alreadyThere, entry);
    }
    RC_ASSERT(alreadyThere.size() + difference.GetAdded()->size() == after.size());
    RC_ASSERT(alreadyThere.size() ==
              LongestCommonSubsequence(stillBefore, alreadyThere) + difference.GetReordered()->size());
    for (const auto& entry : *difference.GetReordered()) {
        std::erase(stillBefore, entry);
        std::erase(alreadyThere, entry);
    }
    RC_ASSERT(stillBefore == alreadyThere);
    for (const auto& list : {difference.GetAdded(), difference.GetReordered(), difference.GetRefreshedAfter()})
        RC_ASSERT(LongestCommonSubsequence(*list, after) == list->size()); // in the new list's order
    RC_ASSERT(LongestCommonSubsequence(*difference.GetRemoved(), before) == difference.GetRemoved()->size());

    RC_ASSERT(Lists(before, after, ComparisonFilter::withDescendants) ==
              Lists(Flatten(before), Flatten(after), ComparisonFilter::asListed));
}

TEST(PathEntryVectorDifferentiator, CountsFoldersThatAreListedSeveralTimes) {
    PathWorld world({"/a/", "/b/", "/c/"});
    const auto laterA = PathWorld(world.storage).Entry("/a");
    const auto a = world.Entry("/a");
    const auto b = world.Entry("/b");
    const auto c = world.Entry("/c");
    PathEntryVectorDifferentiator difference;
    EXPECT_TRUE(difference.GetAdded()->empty());
    difference.Compare({a, b, a, c}, {b, a, b, b, a}, ComparisonFilter::asListed);
    const auto added = difference.GetAdded();
    EXPECT_EQ(Where(*added), "/b /b");
    EXPECT_EQ(Where(*difference.GetRemoved()), "/c");
    EXPECT_THROW(difference.Compare({a}, {}, static_cast<ComparisonFilter>(2)), std::invalid_argument);
    EXPECT_EQ(difference.GetAdded(), added);
    difference.Compare({a, a, b}, {b, laterA, laterA}, ComparisonFilter::asListed);
    EXPECT_TRUE(difference.GetAdded()->empty());
    EXPECT_EQ(Where(*difference.GetReordered()), "/b");
    EXPECT_EQ(*difference.GetRefreshedAfter(), (PathEntryVector{laterA, laterA}));
    EXPECT_EQ(Where(*added), "/b /b") << "what was handed out stays";
}

} // namespace
} // namespace PathManagement
