#include "foundation/events/EventMgr.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Tolvex {
namespace {

struct Event {
    int number = 0;
};
struct OtherEvent {};

using Calls = std::vector<std::string>;

/// Three handlers "a", "b" and "c" that write down their calls. "b" does something nasty, once, before or after.
struct Hazard {
    std::string name;
    std::function<void(struct Stage&)> deed;
    Calls duringPublication; // what is called by the publication in which it happens
    Calls afterwards;        // what the next publication calls
    bool throws = false;
};

struct Stage {
    boost::shared_ptr<EventMgr> manager;
    Calls calls;
    ScopedConnection a;
    ScopedConnection b;
    ScopedConnection c;
    ScopedConnection added;

    ScopedConnection Subscribe(const std::string& handler) {
        return manager->Subscribe<Event>([this, handler](const Event&) { calls.push_back(handler); });
    }
};

std::vector<Hazard> GetHazards() {
    const Calls all{"a", "b", "c"};
    return {
        {"Throws", [](Stage&) { throw std::runtime_error("b"); }, all, all, true},
        {"UnsubscribesItself", [](Stage& s) { s.b.Disconnect(); }, all, {"a", "c"}},
        {"UnsubscribesItselfAndThrows",
         [](Stage& s) {
             s.b.Disconnect();
             throw std::runtime_error("b");
         },
         all,
         {"a", "c"},
         true},
        {"UnsubscribesAnEarlierOne", [](Stage& s) { s.a.Disconnect(); }, all, {"b", "c"}},
        {"UnsubscribesALaterOne", [](Stage& s) { s.c.Disconnect(); }, {"a", "b"}, {"a", "b"}},
        {"ReplacesItself", [](Stage& s) { s.b = s.Subscribe("new b"); }, all, {"a", "c", "new b"}},
        {"UnsubscribesAll",
         [](Stage& s) {
             s.c.Disconnect();
             s.b.Disconnect();
             s.a.Disconnect();
         },
         {"a", "b"},
         {}},
        {"SubscribesAnother", [](Stage& s) { s.added = s.Subscribe("d"); }, all, {"a", "b", "c", "d"}},
        {"PublishesAgain", [](Stage& s) { s.manager->PublishNow(Event{}); }, {"a", "b", "a", "b", "c", "c"}, all},
        {"PublishesAnotherType", [](Stage& s) { s.manager->PublishNow(OtherEvent{}); }, all, all},
        {"DropsTheLastOwnerOfTheManager", [](Stage& s) { s.manager.reset(); }, all, {}},
        {"DropsTheManagerAndAllConnections",
         [](Stage& s) {
             s.manager.reset();
             s.a.Disconnect();
             s.b.Disconnect();
             s.c.Disconnect();
         },
         {"a", "b"},
         {}},
    };
}

/// Every hazard on a synchronous manager and on a queueing one.
class HazardTest : public testing::TestWithParam<std::tuple<std::size_t, bool>> {};

TEST_P(HazardTest, LeavesPublicationInOrder) {
    const auto [index, queueing] = GetParam();
    const Hazard hazard = GetHazards()[index];
    SCOPED_TRACE(hazard.name);
    Stage stage;
    stage.manager = queueing ? boost::shared_ptr<EventMgr>(createLocalEventMgr("hazards")) : createEventMgr();
    bool done = false;
    stage.a = stage.Subscribe("a");
    stage.b = stage.manager->Subscribe<Event>([&](const Event&) {
        stage.calls.push_back("b");
        if (!std::exchange(done, true))
            hazard.deed(stage);
    });
    stage.c = stage.Subscribe("c");

    const auto publish = [&] {
        if (!queueing)
            return stage.manager->Publish(Event{});
        stage.manager->Publish(Event{});
        EXPECT_EQ(stage.calls, Calls());
        dynamic_cast<LocalEventMgr&>(*stage.manager).Deliver();
    };
    if (hazard.throws)
        EXPECT_THROW(publish(), std::runtime_error);
    else
        publish();
    EXPECT_EQ(stage.calls, hazard.duringPublication);

    stage.calls.clear();
    if (stage.manager != nullptr)
        publish();
    EXPECT_EQ(stage.calls, hazard.afterwards);
}

INSTANTIATE_TEST_SUITE_P(Hazards, HazardTest,
                         testing::Combine(testing::Range<std::size_t>(0, GetHazards().size()), testing::Bool()),
                         [](const auto& parameters) {
                             return GetHazards()[std::get<0>(parameters.param)].name +
                                    (std::get<1>(parameters.param) ? "Queued" : "AtOnce");
                         });

TEST(EventMgr, RethrowsTheFirstOfSeveralExceptions) {
    const auto manager = createEventMgr();
    const auto first = manager->Subscribe<Event>([](const Event&) { throw std::runtime_error("first"); });
    const auto second = manager->Subscribe<Event>([](const Event&) { throw std::logic_error("second"); });
    EXPECT_THROW(manager->PublishNow(Event{}), std::runtime_error);
    EXPECT_THROW(manager->Publish(Event{}), std::runtime_error);
}

TEST(EventMgr, ABusEndsWithItsManagerOrContext) {
    Calls calls;
    const auto note = [&calls](const std::string& name) {
        return [&calls, name](const Event&) { calls.push_back(name); };
    };
    const auto own = createEventMgr();
    const auto plain = createLocalEventMgr();
    const auto engine = createLocalEventMgr("engine");
    const auto onOwn = own->Subscribe<Event>(note("own"));
    const auto onPlain = plain->Subscribe<Event>(note("plain"));
    const auto onEngine = engine->Subscribe<Event>(note("engine"));

    createEventMgr()->PublishNow(Event{});
    EXPECT_EQ(calls, Calls());
    createLocalEventMgr()->PublishNow(Event{});
    EXPECT_EQ(calls, Calls{"plain"});
    createLocalEventMgr("engine")->PublishNow(Event{});
    EXPECT_EQ(calls, (Calls{"plain", "engine"}));
    createLocalEventMgr("")->PublishNow(Event{}); // an empty name is a context, too
    EXPECT_EQ(calls, (Calls{"plain", "engine"}));
}

TEST(EventMgr, ASubscriptionOutlivesTheManagerItWasMadeOn) {
    int calls = 0;
    const auto connection = createLocalEventMgr("short")->Subscribe<Event>([&calls](const Event&) { ++calls; });
    createLocalEventMgr("short")->PublishNow(Event{});
    EXPECT_EQ(calls, 1);
}

TEST(EventMgr, MovingAConnectionKeepsItAndAssigningCutsTheOldOne) {
    const auto manager = createEventMgr();
    Calls calls;
    ScopedConnection first = manager->Subscribe<Event>([&](const Event&) { calls.push_back("first"); });
    ScopedConnection moved(std::move(first));
    EXPECT_TRUE(first.isEmpty()); // NOLINT: a moved-from connection is empty, that is its contract
    EXPECT_FALSE(moved.isEmpty());
    manager->PublishNow(Event{});
    EXPECT_EQ(calls, Calls{"first"});
    moved = manager->Subscribe<Event>([&](const Event&) { calls.push_back("second"); });
    manager->PublishNow(Event{});
    EXPECT_EQ(calls, (Calls{"first", "second"}));
    moved = ScopedConnection();
    manager->PublishNow(Event{});
    EXPECT_EQ(calls.size(), 2U);
}

TEST(LocalEventMgr, DeliversItsOwnQueueInOrderAndWhatIsQueuedMeanwhile) {
    const auto manager = createLocalEventMgr("deliver");
    const auto neighbour = createLocalEventMgr("deliver");
    std::vector<int> numbers;
    const auto connection = neighbour->Subscribe<Event>([&](const Event& event) {
        numbers.push_back(event.number);
        if (event.number == 1) {
            manager->Publish(Event{4});
            throw std::runtime_error("the rest is delivered all the same");
        }
        if (event.number == 4)
            manager->Deliver(); // nothing is left: nothing comes twice
    });
    manager->Publish(Event{1});
    neighbour->Publish(Event{7});
    manager->Publish(Event{2});
    manager->Publish(OtherEvent{});
    manager->Publish(Event{3});
    EXPECT_THROW(manager->Deliver(), std::runtime_error);
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3, 4}));
    manager->Deliver();
    EXPECT_EQ(numbers.size(), 4U);
    neighbour->Deliver();
    EXPECT_EQ(numbers.back(), 7);
}

struct CountedEvent {
    explicit CountedEvent(int& counter) : copies(&counter) {}
    CountedEvent(const CountedEvent& other) : copies(other.copies) { ++*copies; }
    CountedEvent(CountedEvent&&) = default;
    int* copies;
};

TEST(EventMgr, NeverCopiesAnEvent) {
    int copies = 0;
    int calls = 0;
    const auto manager = createLocalEventMgr("copies");
    const auto connection = manager->Subscribe<CountedEvent>([&calls](const CountedEvent&) { ++calls; });
    const CountedEvent event(copies);
    manager->PublishNow(event);
    manager->Publish(CountedEvent(copies));
    createEventMgr()->Publish(CountedEvent(copies));
    manager->Deliver();
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(copies, 0);
}

TEST(EventMgrTags, HandlersUnderATagRunFirst) {
    const auto manager = createEventMgr();
    Calls calls;
    const auto subscribe = [&](const char* name, const char* tag) {
        return manager->Subscribe<Event>([&calls, name](const Event&) { calls.emplace_back(name); }, tag);
    };
    const auto plain = subscribe("plain", "");
    const auto second = subscribe("second", "Level2");
    auto first = subscribe("first", "Level1");
    const auto later = subscribe("later", "Level1");
    const auto last = subscribe("last", "");
    manager->PublishNow(Event());
    EXPECT_EQ(std::exchange(calls, {}), (Calls{"first", "later", "second", "plain", "last"}));
    first = subscribe("again", "Level1");
    manager->PublishNow(Event());
    EXPECT_EQ(calls, (Calls{"later", "again", "second", "plain", "last"}));
}

} // namespace
} // namespace Tolvex
