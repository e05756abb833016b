#pragma once

#include "foundation/text/Export.h"

#include <source_location>
#include <string_view>

namespace Tolvex {

/// Ends the process because a programming error was found: writes `assertion`, the source unit's name (file name
/// without folder and extension), the line and the function's signature to standard error in one write, then aborts.
[[noreturn]] KX_EXPORT void DiagnosticTerminate(std::string_view assertion,
                                                std::source_location where = std::source_location::current()) noexcept;

} // namespace Tolvex
