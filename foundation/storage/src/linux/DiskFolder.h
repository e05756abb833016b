#pragma once

#include "foundation/storage/StorageSystem.h"

namespace Tolvex {

/// Opens a folder of the machine's disks. `clock` outlives the folder and its children. Throws StorageError.
[[nodiscard]] std::unique_ptr<Folder> OpenDiskFolder(const AbsoluteIRI& location, const IClock& clock);

} // namespace Tolvex
