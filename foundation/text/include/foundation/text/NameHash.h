#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>

namespace Tolvex {

/// 32-bit hash of a name that is already folded. Not seeded and equal in every process of one build; not for storage,
/// nor against names that are made to collide. Blocks of four code units are mixed by multiplication to twice the
/// width, whose halves are then joined, as in wyhash (Wang Yi).
[[nodiscard]] KX_EXPORT std::uint32_t HashName(ustring_view foldedName) noexcept;

/// Folds `name` to `out` as FoldCaseTo does and returns HashName of what it wrote. One pass over ordinary names: the
/// hash does not wait for what was written to be read again. `out` has room for `name.size()` code units and is apart
/// from `name`.
[[nodiscard]] KX_EXPORT std::uint32_t FoldAndHashName(ustring_view name, char16_t* out) noexcept;

} // namespace Tolvex
