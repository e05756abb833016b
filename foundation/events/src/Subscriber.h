#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace Tolvex {

/// One handler and the account of its running calls. Safe from any thread; whoever calls it keeps it alive.
class Subscriber {
public:
    using Handler = std::function<void(const void*)>;

    /// Without a tag when `tag` is empty.
    Subscriber(Handler handler, std::string tag);

    /// By tag; who has none runs last.
    [[nodiscard]] static bool RunsBefore(const std::shared_ptr<Subscriber>& a, const std::shared_ptr<Subscriber>& b);

    /// Runs the handler, unless it is cut off. Passes on what the handler throws.
    void Call(const void* event);

    /// Lets no further call begin and waits until those in other threads have ended. Called from inside the handler,
    /// it does not wait at all.
    void Cut() noexcept;

private:
    class RunningCall;

    static constexpr unsigned cutOff = 1U << 31U;

    const Handler handler;
    const std::string tag;
    std::atomic<unsigned> state{0}; // the number of running calls, and `cutOff`
};

} // namespace Tolvex
