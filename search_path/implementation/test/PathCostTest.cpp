#include "PathWorld.h"

#include "path_model/Path.h"
#include "path_utilities/ConcatenatedPath.h"
#include "path_utilities/DeduplicatedPath.h"
#include "path_utilities/MultiMaskedPath.h"
#include "path_utilities/PathEntryVectorDifferentiator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

// Every allocation of this program is counted, those of the libraries it loads included.

namespace {

std::atomic<std::size_t> allocations = 0;

void* Allocate(std::size_t size, std::size_t alignment) {
    ++allocations;
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    if (void* memory = std::aligned_alloc(alignment, rounded))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return Allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace PathManagement {
namespace {

constexpr int folders = 100;
constexpr int filesAFolder = 30;

/// Main folders of distinct files, some of them in packages, on a path that was derived twice.
class PathCost : public testing::Test {
protected:
    PathCost() : world(Files()) {
        for (int folder = 0; folder < folders; ++folder)
            entries.push_back(world.Entry("/m" + std::to_string(folder)));
        path = world.PathOf(entries);
        for (const int place : {3, 70})
            Change(place);
    }

    static std::vector<std::string> Files() {
        std::vector<std::string> files;
        for (int folder = 0; folder < folders; ++folder)
            for (int file = 0; file < filesAFolder; ++file)
                files.push_back("/m" + std::to_string(folder) + (file % 3 == 0 ? "/+p/" : "/") +
                                Tolvex::ToUtf8(Name(folder, file)) + (file % 2 == 0 ? ".kx" : ".kxp"));
        return files;
    }

    static ustring Name(int folder, int file) {
        return Tolvex::FromUtf8("F" + std::to_string(folder) + "Size" + std::to_string(file));
    }

    void Change(int place) {
        world.storage->Add("/m" + std::to_string(place) + "/added.kx");
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        auto& entry = entries[static_cast<std::size_t>(place)];
        entry = entry->GetUpdatedPathEntry(world.factory, world.monitor);
        path = world.PathOf(entries, path);
    }

    /// How many of these names are found; each is looked up with a target of its own.
    std::size_t CountFound(ustring_view suffix, FilenameMatchingPolicy policy) {
        std::size_t found = 0;
        for (int folder = 0; folder < folders; ++folder) {
            name.assign(names[static_cast<std::size_t>(folder)]).append(suffix);
            const SearchTarget target(name, extensions);
            found += path->FindFirstInScope(SearchScope::All(), target, policy).has_value();
        }
        return found;
    }

    static std::vector<ustring> Names() {
        std::vector<ustring> names;
        for (int folder = 0; folder < folders; ++folder)
            names.push_back(Name(folder, folder % filesAFolder));
        return names;
    }

    PathWorld world;
    PathEntryVector entries;
    std::shared_ptr<const IPath> path;
    std::vector<ustring> names = Names();
    ustring name = ustring(100, u'x'); // room for what is put together while nothing may be allocated
    std::vector<ustring> extensions{u".kxp", u".kx"};
};

TEST_F(PathCost, LookUpsAllocateNothing) {
    for (const auto policy :
         {FilenameMatchingPolicy::exact, FilenameMatchingPolicy::ignoreCase, FilenameMatchingPolicy::native}) {
        const std::size_t before = allocations;
        const std::size_t hits = CountFound(u"", policy);
        const std::size_t absent = CountFound(u"_not_there", policy);
        const std::size_t after = allocations;
        EXPECT_EQ(hits, static_cast<std::size_t>(folders));
        EXPECT_EQ(absent, 0u);
        EXPECT_EQ(after - before, 0u);
    }
}

TEST_F(PathCost, LookUpsThroughViewsAllocateNothing) {
    const auto other = world.PathOf({entries[7]});
    path = std::make_shared<const DeduplicatedPath>(std::vector{other, path});
    path = std::make_shared<const ConcatenatedPath>(path, world.PathOf({world.Entry("/m9")}));
    const auto whole = path;
    for (const bool hidesSome : {false, true}) {
        // What is hidden holds none of the names, which would send the look-up further.
        const PathEntryVector hidden{world.Entry("/m7/private"), world.Entry("/m8/private")};
        path = std::make_shared<const MultiMaskedPath>(whole, hidesSome ? hidden : PathEntryVector());
        const std::size_t before = allocations;
        const std::size_t hits = CountFound(u"", FilenameMatchingPolicy::ignoreCase);
        const std::size_t absent = CountFound(u"_not_there", FilenameMatchingPolicy::ignoreCase);
        EXPECT_EQ(allocations - before, 0u);
        EXPECT_EQ(hits, static_cast<std::size_t>(folders));
        EXPECT_EQ(absent, 0u);
    }
}

TEST_F(PathCost, ListsThatDifferInOnePlaceAreComparedWithoutTables) {
    PathEntryVector after = entries;
    after[40] = entries[41];
    after.erase(after.begin() + 41);
    after[60] = PathWorld(world.storage).Entry("/m61");
    PathEntryVectorDifferentiator difference;
    const std::size_t before = allocations;
    difference.Compare(entries, after, ComparisonFilter::asListed);
    EXPECT_EQ(allocations - before, 5u + 3u) << "five lists, three of them with an entry";
    EXPECT_EQ(*difference.GetRemoved(), PathEntryVector{entries[40]});
    EXPECT_EQ(*difference.GetRefreshedBefore(), PathEntryVector{entries[61]});
}

TEST_F(PathCost, ThreadsCountTheirAnswersApart) {
    const SearchTarget target(names[50], extensions);
    const auto& mainEntry = path->GetMainEntries()->at(50);
    const auto find = [&] { return path->FindFirstInScope(SearchScope::All(), target, FilenameMatchingPolicy::exact); };
    world.queue->WaitUntilIdle(); // dropped paths let go of their handles there
    const long alone = mainEntry.use_count();
    const auto mine = find();
    EXPECT_EQ(mainEntry.use_count(), alone + 1) << "an answer is one counted handle";
    std::optional<FoundItem> theirs;
    long withLease = 0;
    std::size_t allocated = 0;
    std::thread([&] {
        theirs = find();
        withLease = mainEntry.use_count();
        const std::size_t before = allocations;
        const auto again = find();
        allocated = allocations - before;
        EXPECT_EQ(mainEntry.use_count(), withLease) << "the thread's answers share its lease";
        EXPECT_EQ(again->GetEntry(), mine->GetEntry());
    }).join();
    EXPECT_EQ(withLease, alone + 2);
    EXPECT_EQ(allocated, 0u);

    entries.clear();
    path.reset();
    world.queue->WaitUntilIdle();
    ASSERT_TRUE(theirs);
    EXPECT_EQ(theirs->GetItem().GetStem(), names[50]) << "an answer outlives the path";
    const std::weak_ptr<const IPathEntry> entry = mine->GetEntry();
    theirs.reset();
    EXPECT_FALSE(entry.expired());
}

TEST_F(PathCost, APathWithAFewReplacementsTouchesNoOtherEntry) {
    std::vector<std::shared_ptr<const IPath>> paths{path};
    const auto& far = path->GetMainEntries()->at(70);
    const auto replace = [&](std::size_t place) {
        PathEntryVector after = entries;
        after[place] = PathWorld(world.storage).Entry("/m" + std::to_string(place));
        auto next = world.PathWithReplacements(paths.back(), entries, after);
        entries = std::move(after);
        return next;
    };
    paths.push_back(replace(10)); // takes the list apart
    const long held = far.use_count();
    for (const std::size_t place : {11u, 12u, 13u})
        paths.push_back(replace(place));
    EXPECT_EQ(far.use_count(), held);
    EXPECT_EQ(*paths.back()->GetMainEntries(), entries);
    EXPECT_GT(far.use_count(), held) << "the list is made when it is asked for";
}

TEST_F(PathCost, ADerivedPathPaysForTheFolderThatChanged) {
    world.TakeListings();
    Change(20);
    EXPECT_EQ(world.TakeListings(), 1u + 0u) << "the folder; its package did not change";
    const LayeredIndex& index = static_cast<const Path&>(*path).GetIndex();
    // With the layer of one folder below it that it is made again with, as layers of like size are.
    EXPECT_LE(index.GetIndexedNameCount(), 3u * (filesAFolder + 1));
    EXPECT_GE(index.GetIndexedNameCount(), filesAFolder + 1u);

    const auto derived = world.PathOf(entries, path);
    EXPECT_EQ(static_cast<const Path&>(*derived).GetIndex().GetIndexedNameCount(), 0u);
    EXPECT_EQ(world.TakeListings(), 0u);
}

} // namespace
} // namespace PathManagement
