#pragma once

#include "ObservedFolder.h"

#include <cstdint>
#include <vector>

namespace Tolvex {

/// The folders with changed observers in the order in which they changed last, each with its position. A folder that is
/// looked after no more takes its place along, so nothing grows with time. Guarded by the registry's lock.
class ChangeHistory {
public:
    void Add(ObservedFolder& folder) noexcept;
    void Remove(ObservedFolder& folder) noexcept;

    [[nodiscard]] std::uint64_t GetPosition() const noexcept { return position; }
    /// Those that changed after `since`, in order; all of them for a position that was never given out.
    [[nodiscard]] std::vector<CanonicalAbsoluteIRI> GetChangedAfter(std::uint64_t since) const;

private:
    FolderList<ChangeListTag> folders; // ascending in `changedAt`
    std::uint64_t position = 0;        // of the last change
};

} // namespace Tolvex
