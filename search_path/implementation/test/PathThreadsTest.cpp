#include "PathWorld.h"

#include <gtest/gtest.h>

#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace PathManagement {
namespace {

/// A host calls from tasks of its own and may hold a lock that its other tasks want.
TEST(PathThreads, NoTaskOfTheHostRunsInTheMiddleOfACall) {
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, 8);
    std::vector<std::string> files;
    std::vector<Tolvex::AbsoluteIRI> locations;
    for (int folder = 0; folder < 300; ++folder) {
        locations.push_back(PathWorld::At("/m" + std::to_string(folder)));
        for (int file = 0; file < 10; ++file)
            files.push_back("/m" + std::to_string(folder) + "/f" + std::to_string(folder * 10 + file) + ".kx");
    }
    PathWorld world(files);
    thread_local bool isInside = false;
    std::atomic<int> inTheMiddle = 0;
    const auto task = [&](int number) {
        if (isInside)
            ++inTheMiddle;
        if (isInside || number % 4 != 0)
            return;
        isInside = true;
        Tolvex::Notification problems;
        static_cast<void>(world.PathOf(world.factory.CreatePathEntries(locations, world.monitor, problems)));
        isInside = false;
    };
    tbb::task_arena arena(8);
    arena.execute([&] { tbb::parallel_for(0, 64, task, tbb::simple_partitioner()); });
    EXPECT_EQ(inTheMiddle, 0);
}

/// Paths are built, derived and dropped in one thread while others look names up on whatever path is there and are
/// sometimes its last owner. Meant for the thread sanitizer; the answers are checked anyway.
TEST(PathThreads, LookUpsGoOnWhilePathsAreBuiltDerivedAndDropped) {
    constexpr int folders = 24;
    std::vector<std::string> files;
    for (int folder = 0; folder < folders; ++folder)
        for (int file = 0; file < 20; ++file)
            files.push_back("/m" + std::to_string(folder) + (file % 5 == 0 ? "/+p" : "") + "/f" +
                            std::to_string(file + folder) + ".kx");
    PathWorld world(files);
    PathEntryVector entries;
    for (int folder = 0; folder < folders; ++folder)
        entries.push_back(world.Entry("/m" + std::to_string(folder)));

    std::mutex mutex;
    std::shared_ptr<const IPath> current = world.PathOf(entries);
    const auto take = [&] {
        const std::lock_guard lock(mutex);
        return current;
    };
    std::atomic<bool> stop = false;
    std::atomic<std::size_t> answers = 0;
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 3; ++reader)
        readers.emplace_back([&, reader] {
            for (unsigned round = 0; !stop || answers < 100; ++round) {
                const auto path = take();
                const SearchTarget target(Tolvex::FromUtf8("F" + std::to_string(round % 40)),
                                          Tolvex::GetCodeFileExtensions());
                const auto found =
                    path->FindFirstInScope(SearchScope::All(), target, FilenameMatchingPolicy::ignoreCase);
                if (found) {
                    ASSERT_EQ(found->GetItem().GetNormalizedStem(), target.GetNormalizedName());
                    ASSERT_TRUE(path->IsEntryOnPath(*found->GetEntry()));
                    ++answers;
                }
                if (round % 16 == static_cast<unsigned>(reader))
                    path->ForEachEntry({PathEntryType::packageFolder},
                                       [&](const auto& entry) { return entry->GetPathItems()->empty(); });
            }
        });
    for (int change = 0; change < 150; ++change) {
        const auto place = static_cast<std::size_t>(change * 5 % folders);
        world.storage->Add("/m" + std::to_string(place) + "/n" + std::to_string(change) + ".kx");
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        entries[place] = entries[place]->GetUpdatedPathEntry(world.factory, world.monitor);
        auto next = world.PathOf(entries, change % 10 == 0 ? nullptr : take());
        const std::lock_guard lock(mutex);
        current.swap(next);
    }
    stop = true;
    for (auto& reader : readers)
        reader.join();
    EXPECT_GE(answers, 100u);
    entries.clear();
    current.reset();
    world.queue->WaitUntilIdle();
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 0u);
}

} // namespace
} // namespace PathManagement
