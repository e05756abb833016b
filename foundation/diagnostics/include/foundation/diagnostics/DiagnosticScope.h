#pragma once

#include "foundation/text/Export.h"

#include <atomic>
#include <source_location>

namespace Tolvex {

/// Traces entry and exit of the function it is made in, when tracing is on. Off (the start state) it costs one relaxed
/// atomic load. The trace goes to the log channel "diagnostics::scope".
class DiagnosticScope {
public:
    explicit DiagnosticScope(std::source_location where = std::source_location::current())
        : location(where), active(enabled.load(std::memory_order_relaxed)) {
        if (active)
            Enter(location);
    }
    ~DiagnosticScope() {
        if (active)
            Leave(location);
    }
    DiagnosticScope(const DiagnosticScope&) = delete;
    DiagnosticScope& operator=(const DiagnosticScope&) = delete;

    /// Switches tracing, and with it the log channel, for the whole process.
    KX_EXPORT static void SetEnabled(bool on) noexcept;

private:
    KX_EXPORT static std::atomic<bool> enabled;
    KX_EXPORT static void Enter(const std::source_location& where) noexcept;
    KX_EXPORT static void Leave(const std::source_location& where) noexcept;

    std::source_location location;
    bool active;
};

} // namespace Tolvex
