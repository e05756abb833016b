#include "ChangeHistory.h"

#include <algorithm>

namespace Tolvex {

void ChangeHistory::Add(ObservedFolder& folder) noexcept {
    Remove(folder);
    folder.changedAt = ++position;
    folders.push_back(folder);
}

void ChangeHistory::Remove(ObservedFolder& folder) noexcept {
    folder.FolderHook<ChangeListTag>::unlink();
}

std::vector<CanonicalAbsoluteIRI> ChangeHistory::GetChangedAfter(std::uint64_t since) const {
    const auto start = since > position ? 0 : since;
    std::vector<CanonicalAbsoluteIRI> changed;
    for (auto at = folders.rbegin(); at != folders.rend() && at->changedAt > start; ++at)
        changed.push_back(at->location);
    std::reverse(changed.begin(), changed.end());
    return changed;
}

} // namespace Tolvex
