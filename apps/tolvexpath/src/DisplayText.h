#pragma once

#include "foundation/text/ustring.h"

namespace TolvexPath {

/// A name as UTF-8 for people to read on one line: control characters become "\n", "\t" or "\x1b", bytes that are no
/// UTF-8 "\xff". Not meant to be read back.
[[nodiscard]] std::string ToDisplayText(Tolvex::ustring_view text);

} // namespace TolvexPath
