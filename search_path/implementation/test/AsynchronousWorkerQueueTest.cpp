#include "change_tracking/AsynchronousWorkerQueue.h"

#include "foundation/diagnostics/ThreadName.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

namespace PathManagement {
namespace {

using Task = AsynchronousWorkerQueue::TypedTask<void>;

std::future<void> Queue(AsynchronousWorkerQueue& queue, std::function<void()> work) {
    std::packaged_task<void()> task(std::move(work));
    auto result = task.get_future();
    queue.Enqueue(std::make_unique<Task>(std::move(task)));
    return result;
}

TEST(AsynchronousWorkerQueue, RunsEverythingInOrderBeforeItsDestructorReturns) {
    std::vector<int> order;
    std::promise<void> gate;
    {
        AsynchronousWorkerQueue queue;
        Queue(queue, [&] { gate.get_future().wait(); });
        for (int i = 0; i < 1000; ++i)
            Queue(queue, [&order, i] { order.push_back(i); });
        Queue(queue, [&] { Queue(queue, [&order] { order.push_back(1000); }); });
        EXPECT_TRUE(order.empty());
        gate.set_value();
    }
    ASSERT_EQ(order.size(), 1001u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(AsynchronousWorkerQueue, HandsExceptionsToTheFutureAndGoesOn) {
    AsynchronousWorkerQueue queue;
    auto failed = Queue(queue, [] { throw std::runtime_error("no"); });
    auto next = Queue(queue, [] { EXPECT_EQ(Tolvex::getCurrentThreadName(), "PathManager async worker"); });
    EXPECT_THROW(failed.get(), std::runtime_error);
    EXPECT_NO_THROW(next.get());
    queue.WaitUntilIdle();
}

TEST(AsynchronousWorkerQueue, IsNotIdleWhileItsLastTaskRuns) {
    AsynchronousWorkerQueue queue;
    for (int round = 0; round < 5; ++round) {
        std::promise<void> started;
        std::atomic<bool> isAsked = false;
        std::atomic<bool> isDone = false;
        Queue(queue, [&] {
            started.set_value();
            isAsked.wait(false);
            for (int turn = 0; turn < 1000; ++turn)
                std::this_thread::yield();
            isDone = true;
        });
        started.get_future().wait();
        isAsked = true;
        isAsked.notify_one();
        queue.WaitUntilIdle();
        ASSERT_TRUE(isDone);
    }
}

TEST(AsynchronousWorkerQueue, TasksReportMisuseAsTheStandardLibraryDoes) {
    const auto codeOf = [](const std::function<void()>& act) {
        try {
            act();
        } catch (const std::future_error& error) {
            return error.code() == std::future_errc::no_state                    ? "no state"
                   : error.code() == std::future_errc::promise_already_satisfied ? "already satisfied"
                                                                                 : "broken promise";
        }
        return "none";
    };
    Task empty{std::packaged_task<void()>()};
    EXPECT_STREQ(codeOf([&] { empty.Run(); }), "no state");
    Task twice{std::packaged_task<void()>([] {})};
    twice.Run();
    EXPECT_STREQ(codeOf([&] { twice.Run(); }), "already satisfied");
    std::packaged_task<void()> never([] {});
    auto future = never.get_future();
    std::make_unique<Task>(std::move(never)).reset();
    EXPECT_STREQ(codeOf([&] { future.get(); }), "broken promise");
}

TEST(AsynchronousWorkerQueue, DestroysObjectsOnItsOwnThread) {
    struct Large {
        std::thread::id& end;
        ~Large() { end = std::this_thread::get_id(); }
    };
    std::thread::id end;
    AsynchronousWorkerQueue queue;
    DestroyAsynchronously(std::unique_ptr<Large>(new Large{end}), queue);
    queue.WaitUntilIdle();
    EXPECT_NE(end, std::thread::id());
    EXPECT_NE(end, std::this_thread::get_id());
}

TEST(AsynchronousWorkerQueueDeathTest, BeingOwnedByItsOwnTaskEndsTheProcess) {
    EXPECT_DEATH(
        {
            auto queue = std::make_shared<AsynchronousWorkerQueue>();
            auto* raw = queue.get();
            auto task = Queue(*raw, [owner = std::move(queue)]() mutable { owner.reset(); });
            task.wait();
        },
        "");
}

} // namespace
} // namespace PathManagement
