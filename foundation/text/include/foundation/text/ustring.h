#pragma once

#include "foundation/text/Export.h"

#include <string>
#include <string_view>

namespace Tolvex {

/// The environment's string of 16-bit code units; used for every name and path.
using ustring = std::u16string;
using ustring_view = std::u16string_view;

/// Converts bytes to 16-bit text. A byte that is not part of well-formed UTF-8 (a surrogate encoded in three bytes is
/// not well formed either) becomes one lone surrogate U+DC80..U+DCFF, so that FromUtf8 followed by ToUtf8 gives the
/// same bytes for any input. The escape is the one Python calls "surrogateescape" (PEP 383).
[[nodiscard]] KX_EXPORT ustring FromUtf8(std::string_view bytes);

/// As FromUtf8, appended to `out`. Appends at most one code unit a byte.
KX_EXPORT void AppendFromUtf8(ustring& out, std::string_view bytes);

/// As FromUtf8, written to `out`, which has room for `bytes.size()` code units. Returns how many were written.
KX_EXPORT std::size_t ConvertFromUtf8(std::string_view bytes, char16_t* out) noexcept;

/// Converts 16-bit text to bytes. Lone surrogates U+DC80..U+DCFF become the byte they stand for; any other lone
/// surrogate (no file name read from a disk holds one) becomes its three-byte generalised UTF-8 form.
[[nodiscard]] KX_EXPORT std::string ToUtf8(ustring_view text);

} // namespace Tolvex
