#pragma once

#include "foundation/text/Export.h"

namespace TolvexComponents {

/// The process's switch for components; off until a host sets it.
/// Safe from any thread.
class KX_EXPORT ComponentFeature {
public:
    [[nodiscard]] static bool IsOn() noexcept;
    static void Set(bool on) noexcept;
};

} // namespace TolvexComponents
