#pragma once

#include "foundation/events/ScopedConnection.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <typeindex>
#include <utility>

namespace Tolvex {

/// An event bus: events are plain types, handlers subscribe to one type. Safe from any thread; no lock is held while a
/// handler runs, so handlers may publish, subscribe and unsubscribe.
///
/// Handlers run on the publishing thread: those that subscribed under a tag first, in the order of their tags, then the
/// others, each in the order in which they subscribed. A handler that subscribed during a
/// publication sees the next one. When handlers throw, the others still run; then the first exception is rethrown.
class KX_EXPORT EventMgr {
public:
    virtual ~EventMgr();

    /// `tag` is for handlers on whose work others build, such as "Level1"; without one a handler runs behind those.
    template <class Event>
    [[nodiscard]] ScopedConnection Subscribe(std::function<void(const Event&)> handler, const std::string& tag = {}) {
        return DoSubscribe(
            typeid(Event),
            [handler = std::move(handler)](const void* event) { handler(*static_cast<const Event*>(event)); }, tag);
    }

    /// Publishes in this manager's own way: at once, or, on a local manager, when it is told to deliver.
    template <class Event>
    void Publish(Event event) {
        DoPublish(typeid(Event), &event, [](void* published) -> std::shared_ptr<const void> {
            return std::make_shared<const Event>(std::move(*static_cast<Event*>(published)));
        });
    }

    /// Publishes at once on any manager, and copies nothing. An event that nobody subscribed to costs next to nothing.
    template <class Event>
    void PublishNow(const Event& event) {
        DoPublishNow(typeid(Event), &event);
    }

protected:
    using Handler = std::function<void(const void*)>;
    /// Moves an event to the heap, for those who keep it until later.
    using Keep = std::shared_ptr<const void>(void* event);

    EventMgr() = default;

private:
    virtual ScopedConnection DoSubscribe(std::type_index type, Handler handler, std::string tag) = 0;
    virtual void DoPublish(std::type_index type, void* event, Keep* keep) = 0;
    virtual void DoPublishNow(std::type_index type, const void* event) = 0;
};

/// An event manager that queues what is published until told to deliver it.
class KX_EXPORT LocalEventMgr : public EventMgr {
public:
    /// Publishes what this manager has queued, in order, on the calling thread. What handlers queue meanwhile is
    /// delivered too. When a handler throws, the rest is still delivered and the first exception is rethrown at the
    /// end.
    virtual void Deliver() = 0;
};

/// Makes a bus of its own, which publishes at once.
[[nodiscard]] KX_EXPORT boost::shared_ptr<EventMgr> createEventMgr();

/// Makes a local manager. Local managers of one context share one bus inside the process, those without a context
/// share one, too; each has its own queue.
[[nodiscard]] KX_EXPORT boost::shared_ptr<LocalEventMgr>
createLocalEventMgr(const std::optional<std::string>& contextIdentifier = std::nullopt);

} // namespace Tolvex
