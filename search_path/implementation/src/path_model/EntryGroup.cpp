#include "path_model/EntryGroup.h"

#include "path_model/PathEntry.h"
#include "path_model/SideBySide.h"

#include <typeinfo>

namespace PathManagement {

namespace {

/// In a walk that visits parents first, the parent of an entry is the nearest one before it whose folder is above it.
std::uint32_t FindParent(const EntryGroup& group, const IPathEntry& entry) {
    const Tolvex::CanonicalAbsoluteIRI location = entry.GetIRI();
    auto candidate = static_cast<std::uint32_t>(group.entries.size() - 1);
    while (candidate != 0 && !group.entries[candidate]->GetIRI().isAncestorOf(location))
        candidate = group.parents[candidate];
    return candidate;
}

} // namespace

EntryGroup FlattenEntry(const std::shared_ptr<const IPathEntry>& mainEntry) {
    // The main entry stands first, whatever handle of it the walk gives, or whether it gives one at all.
    EntryGroup group{{mainEntry}, {0}};
    const Tolvex::CanonicalAbsoluteIRI location = mainEntry->GetIRI();
    mainEntry->ForEachEntry(SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
        if (entry->GetIRI() != location) {
            group.parents.push_back(FindParent(group, *entry));
            group.entries.push_back(entry);
        }
        group.ownsEntries = group.ownsEntries && typeid(*entry) == typeid(PathEntry);
        return false;
    });
    group.ownsEntries = group.ownsEntries || group.entries.size() == 1;
    return group;
}

std::vector<EntryGroup> FlattenEntries(std::span<const std::shared_ptr<const IPathEntry>> mainEntries) {
    std::vector<EntryGroup> groups(mainEntries.size());
    ForEachSideBySide(mainEntries.size(), [&](std::size_t i) { groups[i] = FlattenEntry(mainEntries[i]); });
    return groups;
}

} // namespace PathManagement
