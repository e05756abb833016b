#pragma once

#include "path_model/EntryGroup.h"
#include "path_model/NameIndex.h"
#include "path_model/SlotMap.h"

#include <cstdint>
#include <span>
#include <vector>

namespace PathManagement {

/// The indexes over some main entries and their descendants; immutable and shared by the paths that are derived from
/// one another. Every entry has a slot; the slots of one main entry form a group.
///
/// A layer owns no entry. A path that uses it knows which of its groups are still on the path; the slots of other
/// groups must not be looked into, since their entries may be gone.
class PathLayer {
public:
    struct Slot {
        const IPathEntry* entry;
        const PathItem* items; ///< null for a foreign entry
        std::uint32_t itemCount;
        std::uint32_t group;
        std::uint32_t ordinal; ///< place in the group; 0 for the main entry
        std::uint32_t parentOrdinal;
        PathEntryType type;
        Tolvex::PathComparator comparator;
        bool isOwnedByMain; ///< the main entry's handle keeps it alive

        /// Not of this library: its items are asked for, not read.
        [[nodiscard]] bool IsForeign() const noexcept { return items == nullptr; }
        [[nodiscard]] bool IsMain() const noexcept { return ordinal == 0; }
        [[nodiscard]] std::span<const PathItem> GetItems() const noexcept { return {items, itemCount}; }
    };

    explicit PathLayer(std::span<const EntryGroup> groups);

    [[nodiscard]] const Slot& GetSlot(std::uint32_t slot) const noexcept { return slots[slot]; }
    [[nodiscard]] std::size_t GetGroupCount() const noexcept { return groupBegin.size() - 1; }
    /// The slots of a group, the main entry's first.
    [[nodiscard]] std::span<const Slot> GetGroup(std::uint32_t group) const noexcept {
        return std::span(slots).subspan(groupBegin[group], groupBegin[group + 1] - groupBegin[group]);
    }

    /// Whether the file system of one of the folders ignores case.
    [[nodiscard]] bool HasFoldersThatIgnoreCase() const noexcept { return hasFoldersThatIgnoreCase; }

    [[nodiscard]] std::size_t GetNameCount() const noexcept { return names.GetCount(); }
    /// The number of entries and names indexed: what it costs to make the layer again.
    [[nodiscard]] std::size_t GetWeight() const noexcept { return slots.size() + names.GetCount(); }

    /// Slots that may hold files of a name, in slot order.
    [[nodiscard]] std::span<const NameRecord> FindName(std::uint32_t hash) const noexcept { return names.Find(hash); }
    /// Slots of the entries at a location, in no order.
    [[nodiscard]] std::span<const std::uint32_t> FindLocation(const Tolvex::AbsoluteIRI& location) const {
        return locations.Find(location);
    }
    /// Slots of the entries whose folder's normalised name is `foldedName`, in no order.
    [[nodiscard]] std::span<const std::uint32_t> FindFolderName(const ustring& foldedName) const {
        return folderNames.Find(foldedName);
    }

private:
    void FillSlots(std::span<const EntryGroup> groups);
    void IndexFolders();
    void IndexNames();

    std::vector<Slot> slots;
    std::vector<std::uint32_t> groupBegin;
    NameIndex names;
    LocationSlotMap locations;
    FolderNameSlotMap folderNames;
    bool hasFoldersThatIgnoreCase = false;
};

} // namespace PathManagement
