#pragma once

#include "foundation/storage/StorageSystem.h"

namespace TolvexStorageSystem {

/// The environment's storage system: the machine's disks.
[[nodiscard]] KX_EXPORT Tolvex::StorageSystemReference GetStorageSystemReference();

} // namespace TolvexStorageSystem
