#pragma once

#include "foundation/text/ustring.h"

#include <optional>

namespace Tolvex {

/// Percent-encodes, byte by byte of its UTF-8 form, what an IRI may not hold in its path. Letters of all scripts stay.
/// UnescapePath gives the same text back, whatever it was.
[[nodiscard]] ustring EscapePath(ustring_view path);

/// No value when `text` is no path of an IRI, or when an escape stands for a zero or for "/" (no name holds them).
[[nodiscard]] std::optional<ustring> UnescapePath(ustring_view text);

} // namespace Tolvex
