#include "foundation/storage/StorageSystem.h"

#include <algorithm>

namespace Tolvex {

Folder::~Folder() = default;

StorageSystem::~StorageSystem() = default;

void StorageSystem::takeChangeMarks(std::span<const AbsoluteIRI* const> locations,
                                    std::span<ChangeMark> marks) const noexcept {
    std::transform(locations.begin(), locations.end(), marks.begin(),
                   [this](const AbsoluteIRI* location) { return takeChangeMark(*location); });
}

} // namespace Tolvex
