#include "ObserverRegistry.h"

#include "FileFolderObserver.h"

#include <algorithm>

namespace Tolvex {

void ObserverRegistry::Add(const CanonicalAbsoluteIRI& folder, FileFolderObserver& observer) {
    const std::scoped_lock lock(mutex);
    observers.emplace(folder, &observer);
}

void ObserverRegistry::Remove(const CanonicalAbsoluteIRI& folder, const FileFolderObserver& observer) noexcept {
    const std::scoped_lock lock(mutex);
    const auto [first, last] = observers.equal_range(folder);
    const auto own = std::find_if(first, last, [&](const auto& entry) { return entry.second == &observer; });
    if (own != last)
        observers.erase(own);
}

void ObserverRegistry::SetLevel(const CanonicalAbsoluteIRI& folder, ObservationLevel level) {
    const std::scoped_lock lock(mutex);
    const auto [first, last] = observers.equal_range(folder);
    std::for_each(first, last, [level](const auto& entry) { entry.second->SetLevel(level); });
}

} // namespace Tolvex
