#pragma once

#include "foundation/text/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Tolvex {

inline constexpr std::size_t maximumThreadNameLength = 128; ///< bytes

/// Names the calling thread for debuggers, traces and `getCurrentThreadName`, which gives back up to
/// `maximumThreadNameLength` bytes of it. The system may show a shorter form (Linux keeps 15 bytes).
KX_EXPORT void setCurrentThreadName(std::string_view name);

/// The name given to the calling thread, or an empty text.
[[nodiscard]] KX_EXPORT std::string getCurrentThreadName();

} // namespace Tolvex
