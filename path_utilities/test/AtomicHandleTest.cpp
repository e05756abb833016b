#include "path_utilities/AtomicHandle.h"

#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

namespace PathManagement {
namespace {

/// Knows how many of its kind there are, and whether it is one of them still.
class Counted {
public:
    explicit Counted(std::uint64_t number) noexcept : number(number), check(~number) { ++alive; }
    ~Counted() {
        check = 0;
        --alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    [[nodiscard]] bool IsWhole() const noexcept { return check == ~number; }

    static inline std::atomic<int> alive = 0;
    const std::uint64_t number;

private:
    std::uint64_t check;
};

TEST(AtomicHandle, HoldsOneHandleAndGivesBackTheOneBefore) {
    {
        AtomicHandle<const Counted> handle(std::make_shared<const Counted>(1));
        const auto first = handle.Load();
        EXPECT_EQ(handle.Exchange(std::make_shared<const Counted>(2)), first);
        EXPECT_EQ(handle.Load()->number, 2u);
        EXPECT_EQ(handle.Exchange(nullptr)->number, 2u);
        EXPECT_EQ(handle.Load(), nullptr);
        EXPECT_EQ(Counted::alive, 1) << "the one that this test holds";
        EXPECT_EQ(first.use_count(), 1);
    }
    EXPECT_EQ(Counted::alive, 0);
}

/// Several write, several read, and any may be the last owner. A reader never meets a dead object, nor an older one
/// than it has met from the same writer.
TEST(AtomicHandle, ReadersAndWritersNeverMeetADeadObject) {
    constexpr int writers = 2;
    constexpr int readers = 4;
    constexpr std::uint64_t rounds = 20000;
    std::atomic<int> wrong = 0;
    {
        AtomicHandle<const Counted> handle(std::make_shared<const Counted>(0));
        std::atomic<int> writing = writers;
        std::barrier start(writers + readers);
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([&, writer] {
                start.arrive_and_wait();
                for (std::uint64_t round = 1; round <= rounds; ++round) {
                    const auto number = round * writers + static_cast<std::uint64_t>(writer);
                    const auto old = handle.Exchange(std::make_shared<const Counted>(number));
                    wrong += old == nullptr || !old->IsWhole();
                }
                --writing;
            });
        for (int reader = 0; reader < readers; ++reader)
            threads.emplace_back([&] {
                std::uint64_t latest[writers] = {};
                start.arrive_and_wait();
                while (writing > 0) {
                    const auto seen = handle.Load();
                    std::uint64_t& before = latest[seen->number % writers];
                    wrong += !seen->IsWhole() || seen->number < before;
                    before = seen->number;
                }
            });
        threads.clear();
        EXPECT_EQ(Counted::alive, 1);
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(Counted::alive, 0) << "each object died once";
}

} // namespace
} // namespace PathManagement
