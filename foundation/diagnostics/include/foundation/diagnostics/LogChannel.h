#pragma once

#include "foundation/text/Export.h"

#include <atomic>
#include <string>
#include <string_view>

namespace Tolvex {

/// A named log channel, such as "searchpath::pathmanager". Severity grows with detail: 1 is the most important, 8 the
/// least. A channel writes a message when its severity is at most the level set for the channel; the level of every
/// channel is 0 (silent) until set. Any thread may use a channel; a message is one record, never torn.
class KX_EXPORT LogChannel {
public:
    explicit LogChannel(std::string name);
    ~LogChannel();
    LogChannel(const LogChannel&) = delete;
    LogChannel& operator=(const LogChannel&) = delete;

    /// One atomic load; ask it before putting a message together.
    [[nodiscard]] bool IsEnabled(int severity) const noexcept {
        return severity <= level->load(std::memory_order_relaxed);
    }

    /// Writes nothing when the severity is not enabled.
    void Write(int severity, std::string_view message) const;

    [[nodiscard]] const std::string& GetName() const noexcept { return name; }

private:
    std::string name;
    std::atomic<int>* level; // owned by the process's channel table; lives until the process ends
};

/// Sets the level of one channel by name, existing or not yet made. Records go to standard error.
KX_EXPORT void SetLogLevel(std::string_view channel, int level);

} // namespace Tolvex
