#include "EventBus.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace Tolvex {

class EventBus::Subscription : public ScopedConnection::ISubscription {
public:
    Subscription(std::shared_ptr<EventBus> eventBus, std::type_index eventType, std::shared_ptr<Subscriber> subscribed)
        : bus(std::move(eventBus)), type(eventType), subscriber(std::move(subscribed)) {}

    void Cut() noexcept override {
        try {
            bus->Replace(type, nullptr, subscriber.get());
        } catch (const std::bad_alloc&) {
            // It stays on the list, where it costs a look at each publication but is never called again.
        }
        subscriber->Cut();
    }

private:
    std::shared_ptr<EventBus> bus;
    std::type_index type;
    std::shared_ptr<Subscriber> subscriber;
};

ScopedConnection EventBus::Subscribe(const std::shared_ptr<EventBus>& bus, std::type_index type,
                                     Subscriber::Handler handler, std::string tag) {
    auto subscriber = std::make_shared<Subscriber>(std::move(handler), std::move(tag));
    auto subscription = std::make_shared<Subscription>(bus, type, subscriber);
    bus->Replace(type, subscriber, nullptr);
    return ScopedConnection(std::move(subscription));
}

void EventBus::Publish(std::type_index type, const void* event) {
    const std::uint64_t bits = subscribedBits.load(std::memory_order_acquire);
    if (bits == 0 || (bits & GetBit(type)) == 0) // the type is hashed only where somebody listens at all
        return;
    const SubscribersHandle subscribers = Find(type);
    if (subscribers == nullptr)
        return;
    std::exception_ptr first;
    for (const auto& subscriber : *subscribers) {
        try {
            subscriber->Call(event);
        } catch (...) {
            if (first == nullptr)
                first = std::current_exception();
        }
    }
    if (first != nullptr)
        std::rethrow_exception(first);
}

EventBus::SubscribersHandle EventBus::Find(std::type_index type) {
    const std::lock_guard lock(mutex);
    const auto found = subscribersByType.find(type);
    return found == subscribersByType.end() ? nullptr : found->second;
}

void EventBus::Replace(std::type_index type, const std::shared_ptr<Subscriber>& added, const Subscriber* removed) {
    SubscribersHandle replaced; // outlives the lock: the last handle of a handler may run anybody's destructors
    const std::lock_guard lock(mutex);

    auto subscribers = std::make_shared<Subscribers>();
    const auto found = subscribersByType.find(type);
    if (found != subscribersByType.end()) {
        replaced = found->second;
        for (const auto& subscriber : *replaced) {
            if (subscriber.get() != removed)
                subscribers->push_back(subscriber);
        }
    }
    if (added != nullptr)
        subscribers->insert(std::ranges::upper_bound(*subscribers, added, Subscriber::RunsBefore), added);

    if (!subscribers->empty())
        subscribersByType.insert_or_assign(type, std::move(subscribers));
    else if (found != subscribersByType.end())
        subscribersByType.erase(found);

    std::uint64_t bits = 0;
    for (const auto& [subscribedType, list] : subscribersByType)
        bits |= GetBit(subscribedType);
    subscribedBits.store(bits, std::memory_order_release);
}

} // namespace Tolvex
