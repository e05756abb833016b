#pragma once

#include "foundation/messages/Notification.h"

#include <string_view>

namespace TolvexPath {

inline constexpr const char* programName = "tolvexpath";

/// Writes one message, headed by the program's name, to the standard error output. Control characters, and bytes that
/// are no UTF-8, are written as escapes, so that a name cannot forge a message or upset a terminal.
void PrintMessage(std::string_view text) noexcept;

/// Writes every message of a notification in its order.
void PrintMessages(const Tolvex::Notification& problems);

} // namespace TolvexPath
