#include "path_model/EntryCache.h"

#include <mutex>

namespace PathManagement {

std::optional<CachedEntry> EntryCache::Find(const Tolvex::AbsoluteIRI& location) const {
    const std::shared_lock lock(mutex);
    const auto found = diskEntries.find(location);
    if (found == diskEntries.end())
        return std::nullopt;
    const Record& record = found->second;
    std::shared_ptr<const PathEntry> entry = record.entry.lock();
    if (!entry)
        return std::nullopt;
    return CachedEntry{std::move(entry), record.builtUnder,    record.source,
                       record.level,     record.folderPresent, record.cutFromAbove};
}

void EntryCache::Add(std::span<const CachedEntry> entries) {
    const std::unique_lock lock(mutex);
    for (const CachedEntry& added : entries)
        diskEntries.insert_or_assign(added.entry->GetIRI(),
                                     Record{added.entry, added.entry.get(), added.builtUnder, added.source, added.level,
                                            added.folderPresent, added.cutFromAbove});
}

void EntryCache::Remove(const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry) {
    const std::unique_lock lock(mutex);
    const auto found = diskEntries.find(location);
    if (found != diskEntries.end() && found->second.identity == &entry)
        diskEntries.erase(found);
}

std::size_t EntryCache::GetCount() const {
    const std::shared_lock lock(mutex);
    return diskEntries.size();
}

} // namespace PathManagement
