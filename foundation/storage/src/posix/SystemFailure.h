#pragma once

#include "foundation/storage/StorageError.h"

namespace Tolvex {

/// The StorageError for an error number of the system.
[[nodiscard]] StorageError MakeStorageError(int errorNumber, const AbsoluteIRI& location);

} // namespace Tolvex
