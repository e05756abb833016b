#pragma once

#include "path_interfaces/IPathEntry.h"

#include <cstdint>
#include <span>
#include <vector>

namespace PathManagement {

/// A main entry with its descendants, in the order of its own walk.
struct EntryGroup {
    PathEntryVector entries;            ///< the main entry first
    std::vector<std::uint32_t> parents; ///< by place in `entries`; the main entry is its own parent
    bool ownsEntries = true;            ///< the main entry's handle keeps all the others alive
};

/// Walks one main entry.
[[nodiscard]] EntryGroup FlattenEntry(const std::shared_ptr<const IPathEntry>& mainEntry);

/// Walks main entries side by side; the result is in their order, whatever the schedule.
[[nodiscard]] std::vector<EntryGroup> FlattenEntries(std::span<const std::shared_ptr<const IPathEntry>> mainEntries);

} // namespace PathManagement
