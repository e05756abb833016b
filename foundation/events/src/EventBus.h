#pragma once

#include "foundation/events/ScopedConnection.h"

#include "Subscriber.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>
#include <unordered_map>
#include <vector>

namespace Tolvex {

/// Who subscribed to what. Lists of subscribers are never changed, only replaced, so a publication walks the one it
/// found without a lock. Kept alive by its managers and by its subscriptions. Safe from any thread.
class EventBus {
public:
    /// The subscription keeps `bus` alive.
    [[nodiscard]] static ScopedConnection Subscribe(const std::shared_ptr<EventBus>& bus, std::type_index type,
                                                    Subscriber::Handler handler, std::string tag);

    /// Calls all handlers of an event on this thread, then rethrows the first exception that one of them threw. The bus
    /// itself is not touched once handlers run: they may drop its last owner.
    void Publish(std::type_index type, const void* event);

private:
    class Subscription;
    using Subscribers = std::vector<std::shared_ptr<Subscriber>>;
    using SubscribersHandle = std::shared_ptr<const Subscribers>;

    [[nodiscard]] SubscribersHandle Find(std::type_index type);
    /// Puts `added` into its place among the subscribers of `type` and leaves `removed` out; either may be null.
    void Replace(std::type_index type, const std::shared_ptr<Subscriber>& added, const Subscriber* removed);

    /// Every type stands for one of 64 bits.
    [[nodiscard]] static std::uint64_t GetBit(std::type_index type) {
        return std::uint64_t{1} << (type.hash_code() % 64);
    }

    /// The bits of all types somebody subscribed to: most events find nobody, and are done after one look at it.
    std::atomic<std::uint64_t> subscribedBits{0};
    std::mutex mutex;
    std::unordered_map<std::type_index, SubscribersHandle> subscribersByType; // guarded by `mutex`; no list is empty
};

} // namespace Tolvex
