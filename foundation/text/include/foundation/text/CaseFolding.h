#pragma once

#include "foundation/text/ustring.h"

namespace Tolvex {

/// Unicode simple case folding (CaseFolding.txt, status C and S) of one code point, independent of locale. No change of
/// normal form. Code points without a folding, surrogates included, are returned as they are.
[[nodiscard]] KX_EXPORT char32_t FoldCase(char32_t codePoint) noexcept;

/// Folds every code point of `text`. Folding never changes the number of code units: it never crosses the border
/// of the basic plane.
[[nodiscard]] KX_EXPORT ustring FoldCase(ustring_view text);

/// As above, written to `out`, which has room for `text.size()` code units; `out` may be `text.data()`.
/// Returns whether anything differs from `text`.
KX_EXPORT bool FoldCaseTo(ustring_view text, char16_t* out) noexcept;

/// True when the folded texts are equal; makes no copy of either.
[[nodiscard]] KX_EXPORT bool EqualIgnoringCase(ustring_view a, ustring_view b) noexcept;

} // namespace Tolvex
