#pragma once

#include "foundation/text/Export.h"

#include <memory>

namespace Tolvex {

/// One subscription on an event manager; cut when its holder dies. Movable, not copyable.
///
/// After Disconnect (or the destructor) returns, the handler is not running in any other thread and will not be called
/// again: it waits for a call in progress elsewhere. Inside the handler itself it returns at once. Two handlers that
/// cut each other's connection from two threads at the same time would wait for ever.
class KX_EXPORT ScopedConnection {
public:
    /// The event manager's side of a subscription.
    class ISubscription {
    public:
        virtual ~ISubscription() = default;
        virtual void Cut() noexcept = 0;
    };

    ScopedConnection() noexcept;
    explicit ScopedConnection(std::shared_ptr<ISubscription> subscription) noexcept;
    ScopedConnection(ScopedConnection&& other) noexcept;
    ScopedConnection& operator=(ScopedConnection&& other) noexcept;
    ~ScopedConnection();

    /// True when it holds no subscription: default-made, moved from or disconnected.
    [[nodiscard]] bool isEmpty() const noexcept { return subscription == nullptr; }

    void Disconnect() noexcept;

private:
    std::shared_ptr<ISubscription> subscription;
};

} // namespace Tolvex
