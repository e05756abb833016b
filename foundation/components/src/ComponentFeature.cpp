#include "foundation/components/ComponentFeature.h"

#include <atomic>

namespace TolvexComponents {

namespace {

constinit std::atomic<bool> isOn{false};

} // namespace

bool ComponentFeature::IsOn() noexcept {
    return isOn.load(std::memory_order_relaxed);
}

void ComponentFeature::Set(bool on) noexcept {
    isOn.store(on, std::memory_order_relaxed);
}

} // namespace TolvexComponents
