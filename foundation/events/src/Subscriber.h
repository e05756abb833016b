#pragma once

#include <atomic>
#include <functional>

namespace Tolvex {

/// One handler and the account of its running calls. Safe from any thread; whoever calls it keeps it alive.
class Subscriber {
public:
    using Handler = std::function<void(const void*)>;

    explicit Subscriber(Handler handler);

    /// Runs the handler, unless it is cut off. Passes on what the handler throws.
    void Call(const void* event);

    /// Lets no further call begin and waits until those in other threads have ended. Called from inside the handler,
    /// it does not wait at all.
    void Cut() noexcept;

private:
    class RunningCall;

    static constexpr unsigned cutOff = 1U << 31U;

    const Handler handler;
    std::atomic<unsigned> state{0}; // the number of running calls, and `cutOff`
};

} // namespace Tolvex
