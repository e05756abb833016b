#include "foundation/environment/RequiredContext.h"

#include <atomic>

namespace Tolvex {

namespace {

constinit std::atomic<bool> isActive{true};

} // namespace

bool isRequiredContextActive() noexcept {
    return isActive.load(std::memory_order_relaxed);
}

void setRequiredContextActive(bool active) noexcept {
    isActive.store(active, std::memory_order_relaxed);
}

} // namespace Tolvex
