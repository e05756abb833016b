#include "foundation/environment/StorageAccess.h"

namespace TolvexStorageSystem {

Tolvex::StorageSystemReference GetStorageSystemReference() {
    return Tolvex::GetDiskStorageSystem();
}

} // namespace TolvexStorageSystem
