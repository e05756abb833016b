#pragma once

#include "foundation/storage/FolderListing.h"

namespace Tolvex {

/// Appends the names of an open folder, from where its descriptor stands, to `listing`. Returns 0 or the system's error
/// number.
[[nodiscard]] int ReadFolder(int descriptor, FolderListing& listing);

} // namespace Tolvex
