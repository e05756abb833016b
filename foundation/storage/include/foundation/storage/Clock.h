#pragma once

#include "foundation/text/Export.h"

#include <chrono>

namespace Tolvex {

/// A moment as file systems stamp it, in nanoseconds since 1970-01-01 00:00 UTC.
using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// The clock that stamps come from; handed in wherever time matters, so that tests own it. Safe from any thread.
class IClock {
public:
    virtual ~IClock() = default;
    [[nodiscard]] virtual FileTime Now() const = 0;
};

/// The system's wall clock, read at the same coarse tick that the kernel stamps files with.
[[nodiscard]] KX_EXPORT const IClock& GetSystemClock();

} // namespace Tolvex
