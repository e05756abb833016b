#include "foundation/events/EventMgr.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Tolvex {
namespace {

struct Event {};
struct RareEvent {};

TEST(EventThreads, DisconnectWaitsForACallRunningElsewhere) {
    const auto manager = createEventMgr();
    std::promise<void> started;
    std::promise<void> release;
    std::atomic<bool> ended = false;
    auto connection = manager->Subscribe<Event>([&](const Event&) {
        started.set_value();
        release.get_future().wait();
        ended = true;
    });
    std::thread publisher([&] { manager->PublishNow(Event{}); });
    started.get_future().wait();
    std::atomic<bool> disconnecting = false;
    std::thread disconnector([&] {
        disconnecting = true;
        connection.Disconnect();
        EXPECT_TRUE(ended);
    });
    while (!disconnecting)
        std::this_thread::yield();
    release.set_value();
    disconnector.join();
    publisher.join();
}

// Two threads are inside one handler, and each cuts its connection there: neither may wait for the other.
TEST(EventThreads, DisconnectInsideTheHandlerNeverWaits) {
    const auto manager = createEventMgr();
    std::atomic<int> inside = 0;
    std::mutex mutex;
    ScopedConnection connection;
    connection = manager->Subscribe<Event>([&](const Event&) {
        ++inside;
        while (inside < 2)
            std::this_thread::yield();
        const std::lock_guard lock(mutex);
        connection.Disconnect();
    });
    std::thread other([&] { manager->PublishNow(Event{}); });
    manager->PublishNow(Event{});
    other.join();
    EXPECT_TRUE(connection.isEmpty());
}

/// Subscribes, cuts and checks that no call comes after the cut.
void ComeAndGo(EventMgr& manager, const std::atomic<bool>& stop) {
    while (!stop) {
        const auto alive = std::make_unique<std::atomic<bool>>(true);
        auto connection = manager.Subscribe<Event>([cell = alive.get()](const Event&) {
            if (!*cell)
                ADD_FAILURE() << "called after the connection was cut";
            throw std::runtime_error("handlers may throw");
        });
        const auto rare = manager.Subscribe<RareEvent>([](const RareEvent&) {});
        connection.Disconnect();
        *alive = false; // and freed: a late call is seen by the address sanitizer, too
    }
}

TEST(EventThreads, PublishersAndSubscribersComeAndGo) {
    constexpr int publications = 4000;
    const auto manager = createEventMgr();
    std::atomic<int> seen = 0;
    const auto steady = manager->Subscribe<Event>([&seen](const Event&) { ++seen; });
    std::atomic<bool> stop = false;
    std::vector<std::thread> subscribers;
    std::vector<std::thread> publishers;
    for (int i = 0; i != 2; ++i) {
        subscribers.emplace_back([&] { ComeAndGo(*manager, stop); });
        publishers.emplace_back([&] {
            const auto local = createLocalEventMgr("stress");
            for (int k = 0; k != publications; ++k) {
                try {
                    manager->PublishNow(Event{});
                } catch (const std::runtime_error&) { // NOLINT: thrown by whoever came and went
                }
                manager->PublishNow(RareEvent{});
                local->Publish(Event{});
                local->Deliver();
            }
        });
    }
    for (auto& publisher : publishers)
        publisher.join();
    stop = true;
    for (auto& subscriber : subscribers)
        subscriber.join();
    EXPECT_EQ(seen, 2 * publications); // the steady subscriber missed none
}

TEST(EventThreads, OneQueueIsFilledAndDeliveredByManyWithoutLoss) {
    constexpr int publications = 2000;
    const auto manager = createLocalEventMgr("queue stress");
    std::atomic<int> seen = 0;
    const auto connection = manager->Subscribe<Event>([&seen](const Event&) { ++seen; });
    std::vector<std::thread> threads;
    for (int i = 0; i != 3; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k != publications; ++k) {
                manager->Publish(Event{});
                if (k % 10 == 0)
                    manager->Deliver();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    manager->Deliver();
    EXPECT_EQ(seen, 3 * publications);
}

} // namespace
} // namespace Tolvex
