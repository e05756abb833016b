#include "Subscriber.h"

#include <utility>

namespace Tolvex {

/// Stands on the stack for as long as a handler may run, linked to the calls around it in the same thread.
class Subscriber::RunningCall {
public:
    explicit RunningCall(Subscriber& called) : subscriber(called), outer(innermost) {
        admitted = (subscriber.state.fetch_add(1, std::memory_order_acq_rel) & cutOff) == 0;
        innermost = this;
    }

    ~RunningCall() {
        innermost = outer;
        if ((subscriber.state.fetch_sub(1, std::memory_order_acq_rel) & cutOff) != 0)
            subscriber.state.notify_all();
    }

    RunningCall(const RunningCall&) = delete;
    RunningCall& operator=(const RunningCall&) = delete;

    [[nodiscard]] bool IsAdmitted() const { return admitted; }

    [[nodiscard]] static bool IsInside(const Subscriber& asked) {
        for (const RunningCall* call = innermost; call != nullptr; call = call->outer) {
            if (&call->subscriber == &asked)
                return true;
        }
        return false;
    }

private:
    static constinit thread_local RunningCall* innermost;

    Subscriber& subscriber;
    RunningCall* const outer;
    bool admitted;
};

constinit thread_local Subscriber::RunningCall* Subscriber::RunningCall::innermost = nullptr;

Subscriber::Subscriber(Handler called, std::string under) : handler(std::move(called)), tag(std::move(under)) {}

bool Subscriber::RunsBefore(const std::shared_ptr<Subscriber>& a, const std::shared_ptr<Subscriber>& b) {
    return a->tag.empty() != b->tag.empty() ? b->tag.empty() : a->tag < b->tag;
}

void Subscriber::Call(const void* event) {
    const RunningCall call(*this);
    if (call.IsAdmitted())
        handler(event);
}

void Subscriber::Cut() noexcept {
    unsigned seen = state.fetch_or(cutOff, std::memory_order_acq_rel) | cutOff;
    if (RunningCall::IsInside(*this))
        return;
    while (seen != cutOff) {
        state.wait(seen, std::memory_order_acquire);
        seen = state.load(std::memory_order_acquire);
    }
}

} // namespace Tolvex
