#include "path_model/PathLayer.h"

#include "foundation/text/CaseFolding.h"
#include "path_model/PathEntry.h"
#include "path_model/SideBySide.h"

#include <stdexcept>
#include <typeinfo>

namespace PathManagement {

namespace {

/// The names of an entry that is not of this library, as items of one block; good for indexing only.
std::shared_ptr<const PathItemBlock> CopyItems(const IPathEntry& entry) {
    const std::shared_ptr<const PathItemVector> items = entry.GetPathItems();
    std::vector<ustring> fileNames;
    fileNames.reserve(items->size());
    for (const auto& item : *items)
        fileNames.push_back(ustring(item->GetStem()).append(item->GetExtension()));
    const std::vector<ustring_view> views(fileNames.begin(), fileNames.end());
    return PathItemBlock::Create(entry.GetIRI(), views);
}

} // namespace

PathLayer::PathLayer(std::span<const EntryGroup> groups) {
    FillSlots(groups);
    IndexFolders();
    IndexNames();
}

void PathLayer::FillSlots(std::span<const EntryGroup> groups) {
    std::size_t count = 0;
    for (const EntryGroup& group : groups)
        count += group.entries.size();
    if (count >= NameIndex::maximumSlots)
        throw std::length_error("PathLayer: more than two thousand million folders on one path");
    slots.reserve(count);
    groupBegin.reserve(groups.size() + 1);
    groupBegin.push_back(0);
    for (std::uint32_t group = 0; group < groups.size(); ++group) {
        const PathEntryVector& entries = groups[group].entries;
        for (std::uint32_t ordinal = 0; ordinal < entries.size(); ++ordinal) {
            const IPathEntry& entry = *entries[ordinal];
            std::span<const PathItem> items;
            if (typeid(entry) == typeid(PathEntry))
                items = static_cast<const PathEntry&>(entry).GetItems();
            slots.push_back({&entry, items.data(), static_cast<std::uint32_t>(items.size()), group, ordinal,
                             groups[group].parents[ordinal], entry.GetPathEntryType(), entry.GetPathComparator(),
                             groups[group].ownsEntries});
            hasFoldersThatIgnoreCase = hasFoldersThatIgnoreCase || slots.back().comparator.IgnoresCase();
        }
        groupBegin.push_back(static_cast<std::uint32_t>(slots.size()));
    }
}

void PathLayer::IndexFolders() {
    const auto index = [this](std::uint32_t slot) {
        const Tolvex::CanonicalAbsoluteIRI location = slots[slot].entry->GetIRI();
        locations.Add(location, slot);
        folderNames.Add(Tolvex::FoldCase(location.getBaseName()), slot);
    };
    ForEachSideBySide(static_cast<std::uint32_t>(slots.size()), index);
}

void PathLayer::IndexNames() {
    std::vector<std::shared_ptr<const PathItemBlock>> copies;
    std::vector<std::span<const PathItem>> itemsBySlot;
    itemsBySlot.reserve(slots.size());
    for (const Slot& slot : slots) {
        if (slot.IsForeign())
            copies.push_back(CopyItems(*slot.entry));
        itemsBySlot.push_back(slot.IsForeign() ? copies.back()->GetItems() : slot.GetItems());
    }
    names = NameIndex(itemsBySlot);
}

} // namespace PathManagement
