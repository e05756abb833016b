#pragma once

#include "foundation/text/Export.h"

#include <string>
#include <string_view>

namespace Tolvex {

/// Names the calling thread for debuggers, traces and `getCurrentThreadName`. The system may show a shortened form
/// (Linux keeps 15 bytes); the full name is kept here.
KX_EXPORT void setCurrentThreadName(std::string_view name);

/// The name given to the calling thread, or an empty text.
[[nodiscard]] KX_EXPORT std::string getCurrentThreadName();

} // namespace Tolvex
