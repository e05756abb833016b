#include "path_model/EntryCache.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace PathManagement {

using Tolvex::AbsoluteIRI;

EntryCache::Record EntryCache::MakeRecord(const CachedEntry& entry) {
    return {entry.entry, entry.entry.get(),   entry.builtUnder,   entry.source,
            entry.level, entry.folderPresent, entry.cutFromAbove, nullptr};
}

std::optional<CachedEntry> EntryCache::Find(const Records& records, const AbsoluteIRI& location) {
    const auto found = records.find(location);
    if (found == records.end())
        return std::nullopt;
    const Record& record = found->second;
    std::shared_ptr<const PathEntry> entry = record.entry.lock();
    if (!entry)
        return std::nullopt;
    return CachedEntry{std::move(entry), record.builtUnder,    record.source,
                       record.level,     record.folderPresent, record.cutFromAbove};
}

std::optional<CachedEntry> EntryCache::Find(const AbsoluteIRI& location) const {
    const std::shared_lock lock(mutex);
    auto found = Find(diskEntries, location);
    return found ? found : Find(cacheFileEntries, location);
}

void EntryCache::Add(std::span<const CachedEntry> entries) {
    std::vector<Record> replaced; // dropped behind the lock
    const std::unique_lock lock(mutex);
    for (const CachedEntry& added : entries) {
        diskEntries.insert_or_assign(added.entry->GetIRI(), MakeRecord(added));
        if (const auto old = cacheFileEntries.find(added.entry->GetIRI()); old != cacheFileEntries.end()) {
            replaced.push_back(std::move(old->second));
            cacheFileEntries.erase(old);
        }
    }
}

void EntryCache::AddFromCacheFile(std::span<const CachedEntry> entries) {
    std::vector<Record> replaced; // dropped behind the lock
    const std::unique_lock lock(mutex);
    for (const CachedEntry& added : entries) {
        Record record = MakeRecord(added);
        if (added.builtUnder == added.entry->GetIRI())
            record.keeper = added.entry;
        const auto [place, isNew] = cacheFileEntries.try_emplace(added.entry->GetIRI(), record);
        if (!isNew)
            replaced.push_back(std::exchange(place->second, std::move(record)));
    }
}

bool EntryCache::SetLevel(const IPathEntry& entry, FolderMonitoringLevel level) {
    const Tolvex::CanonicalAbsoluteIRI location = entry.GetIRI();
    bool isNoted = false;
    const std::unique_lock lock(mutex);
    for (Records* records : {&diskEntries, &cacheFileEntries}) {
        const auto found = records->find(location);
        if (found == records->end())
            continue;
        const bool wasSo = std::exchange(found->second.level, level) == level;
        isNoted = isNoted || (wasSo && found->second.identity == &entry);
    }
    return !isNoted;
}

bool EntryCache::TakeFirstUse(const IPathEntry& entry) {
    const Tolvex::CanonicalAbsoluteIRI location = entry.GetIRI();
    const std::shared_lock lock(mutex);
    for (Records* records : {&diskEntries, &cacheFileEntries})
        if (const auto found = records->find(location); found != records->end() && found->second.identity == &entry)
            return !std::atomic_ref(found->second.wasUsed).exchange(true);
    return false;
}

void EntryCache::DropCacheFile() {
    Records dropped; // behind the lock
    const std::unique_lock lock(mutex);
    dropped.swap(cacheFileEntries);
}

void EntryCache::Remove(Records& records, const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry) {
    const auto found = records.find(location);
    if (found != records.end() && found->second.identity == &entry)
        records.erase(found);
}

void EntryCache::Remove(const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry) {
    const std::unique_lock lock(mutex);
    Remove(diskEntries, location, entry);
    Remove(cacheFileEntries, location, entry);
}

std::vector<CachedEntry> EntryCache::GetTopEntries() const {
    std::vector<CachedEntry> entries; // every handle that is made below, since none may be the last one there
    {
        const std::shared_lock lock(mutex);
        const auto take = [&entries](const Records& records, const AbsoluteIRI& location) {
            if (auto entry = Find(records, location))
                entries.push_back(*std::move(entry));
        };
        for (const auto& [location, record] : diskEntries)
            if (record.builtUnder == location)
                take(diskEntries, location);
        for (const auto& [location, record] : cacheFileEntries) {
            const auto fromDisk = diskEntries.find(location);
            const bool isHidden = fromDisk != diskEntries.end() && !fromDisk->second.entry.expired();
            if (record.builtUnder == location && !isHidden)
                take(cacheFileEntries, location);
        }
    }
    std::ranges::sort(entries, {}, [](const CachedEntry& entry) { return entry.entry->GetIRI(); });
    return entries;
}

std::size_t EntryCache::GetCount() const {
    const std::shared_lock lock(mutex);
    return diskEntries.size() + cacheFileEntries.size();
}

} // namespace PathManagement
