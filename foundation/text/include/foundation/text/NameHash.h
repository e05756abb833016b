#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>

namespace Tolvex {

/// 32-bit hash of a name that is already folded. Not seeded and equal in every process of one build; not for storage.
/// The low half of XXH3 (Yann Collet, 64-bit variant).
[[nodiscard]] KX_EXPORT std::uint32_t HashName(ustring_view foldedName) noexcept;

} // namespace Tolvex
