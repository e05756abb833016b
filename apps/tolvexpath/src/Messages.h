#pragma once

#include "foundation/messages/Notification.h"

#include <string_view>

namespace TolvexPath {

inline constexpr const char* programName = "tolvexpath";

/// Writes one message, headed by the program's name, to the standard error output. Control characters, and bytes that
/// are no UTF-8, are written as escapes, so that a name cannot forge a message or upset a terminal.
void PrintMessage(std::string_view text) noexcept;

/// The messages in their order, each text once: what is wrong with a folder that is named twice is one thing to mend.
[[nodiscard]] Tolvex::Notification EachOnce(const Tolvex::Notification& problems);

/// Writes every message of a notification in its order, each once.
void PrintMessages(const Tolvex::Notification& problems);

} // namespace TolvexPath
