#include "foundation/diagnostics/DiagnosticScope.h"

#include "foundation/diagnostics/LogChannel.h"

#include <exception>
#include <string>

namespace Tolvex {

namespace {

constexpr int traceSeverity = 1;
constexpr auto channelName = "diagnostics::scope";

constinit thread_local std::size_t depth = 0; // scopes that are traced and open in this thread

/// Tracing must not change what is traced: a trace line that cannot be written is dropped.
void WriteTrace(const char* mark, const std::source_location& where) noexcept {
    try {
        const LogChannel channel(channelName);
        if (channel.IsEnabled(traceSeverity))
            channel.Write(traceSeverity, std::string(2 * depth, ' ') + mark + where.function_name());
    } catch (const std::exception&) {
        return;
    }
}

} // namespace

constinit std::atomic<bool> DiagnosticScope::enabled = false;

void DiagnosticScope::SetEnabled(bool on) noexcept {
    try {
        SetLogLevel(channelName, on ? traceSeverity : 0);
        enabled.store(on, std::memory_order_relaxed);
    } catch (const std::exception&) {
        return; // no memory for the channel: tracing stays as it was
    }
}

void DiagnosticScope::Enter(const std::source_location& where) noexcept {
    WriteTrace("> ", where);
    ++depth;
}

void DiagnosticScope::Leave(const std::source_location& where) noexcept {
    --depth;
    WriteTrace("< ", where);
}

} // namespace Tolvex
