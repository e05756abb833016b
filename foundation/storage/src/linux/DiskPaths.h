#pragma once

#include "foundation/storage/ChangeMark.h"
#include "foundation/text/ustring.h"

#include <optional>

namespace Tolvex {

/// Resolves links of an absolute path as far as it exists and cleans the rest by text.
[[nodiscard]] ustring ResolveDiskPath(ustring_view path);

/// The one name of an open folder, which was reached by `spelled` and has `mark`; none when it has lost its name.
[[nodiscard]] std::optional<ustring> FindPathOfOpenFolder(int descriptor, ustring_view spelled, const ChangeMark& mark);

} // namespace Tolvex
