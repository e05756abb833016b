#include "foundation/events/EventMgr.h"

#include "EventBus.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <deque>
#include <exception>
#include <map>
#include <mutex>

namespace Tolvex {

namespace {

class SynchronousEventMgr : public EventMgr {
private:
    ScopedConnection DoSubscribe(std::type_index type, Handler handler, std::string tag) override {
        return EventBus::Subscribe(bus, type, std::move(handler), std::move(tag));
    }
    void DoPublish(std::type_index type, void* event, Keep* /*keep*/) override { bus->Publish(type, event); }
    void DoPublishNow(std::type_index type, const void* event) override { bus->Publish(type, event); }

    const std::shared_ptr<EventBus> bus = std::make_shared<EventBus>();
};

/// What was published and not yet delivered. Safe from any thread.
class EventQueue {
public:
    struct QueuedEvent {
        std::type_index type;
        std::shared_ptr<const void> event;
    };

    void Append(QueuedEvent event) {
        const std::lock_guard lock(mutex);
        events.push_back(std::move(event));
    }

    [[nodiscard]] std::optional<QueuedEvent> TakeFirst() {
        const std::lock_guard lock(mutex);
        if (events.empty())
            return std::nullopt;
        std::optional<QueuedEvent> first(std::move(events.front()));
        events.pop_front();
        return first;
    }

private:
    std::mutex mutex;
    std::deque<QueuedEvent> events; // guarded by `mutex`
};

class QueueingEventMgr : public LocalEventMgr {
public:
    explicit QueueingEventMgr(std::shared_ptr<EventBus> sharedBus) : bus(std::move(sharedBus)) {}

    void Deliver() override {
        const auto keptBus = bus; // a handler may drop this manager; its queue is delivered all the same
        const auto keptQueue = queue;
        std::exception_ptr first;
        while (true) {
            const auto next = keptQueue->TakeFirst();
            if (!next.has_value())
                break;
            DeliverOne(*keptBus, *next, first);
        }
        if (first != nullptr)
            std::rethrow_exception(first);
    }

private:
    static void DeliverOne(EventBus& to, const EventQueue::QueuedEvent& queued, std::exception_ptr& first) {
        try {
            to.Publish(queued.type, queued.event.get());
        } catch (...) {
            if (first == nullptr)
                first = std::current_exception();
        }
    }

    ScopedConnection DoSubscribe(std::type_index type, Handler handler, std::string tag) override {
        return EventBus::Subscribe(bus, type, std::move(handler), std::move(tag));
    }
    void DoPublish(std::type_index type, void* event, Keep* keep) override { queue->Append({type, keep(event)}); }
    void DoPublishNow(std::type_index type, const void* event) override { bus->Publish(type, event); }

    const std::shared_ptr<EventBus> bus;
    const std::shared_ptr<EventQueue> queue = std::make_shared<EventQueue>();
};

/// The buses that local managers share, by context. A bus lives as long as a manager or a subscription refers to it.
class SharedBuses {
public:
    [[nodiscard]] std::shared_ptr<EventBus> Get(const std::optional<std::string>& contextIdentifier) {
        const std::lock_guard lock(mutex);
        std::erase_if(buses, [](const auto& known) { return known.second.expired(); });
        auto& known = buses[contextIdentifier];
        auto bus = known.lock();
        if (bus == nullptr)
            known = bus = std::make_shared<EventBus>();
        return bus;
    }

private:
    std::mutex mutex;
    std::map<std::optional<std::string>, std::weak_ptr<EventBus>> buses; // guarded by `mutex`
};

/// Never destroyed: static objects may make managers in their destructors.
SharedBuses& GetSharedBuses() {
    static SharedBuses* const buses = std::make_unique<SharedBuses>().release();
    return *buses;
}

} // namespace

EventMgr::~EventMgr() = default;

boost::shared_ptr<EventMgr> createEventMgr() {
    return boost::make_shared<SynchronousEventMgr>();
}

boost::shared_ptr<LocalEventMgr> createLocalEventMgr(const std::optional<std::string>& contextIdentifier) {
    return boost::make_shared<QueueingEventMgr>(GetSharedBuses().Get(contextIdentifier));
}

} // namespace Tolvex
