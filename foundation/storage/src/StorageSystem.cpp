#include "foundation/storage/StorageSystem.h"

namespace Tolvex {

Folder::~Folder() = default;

StorageSystem::~StorageSystem() = default;

} // namespace Tolvex
