#pragma once

#include "path_interfaces/IPathEntryFactory.h"
#include "path_model/PathEntry.h"

#include <atomic>
#include <optional>
#include <shared_mutex>
#include <span>
#include <unordered_map>
#include <vector>

namespace PathManagement {

/// What the factory remembers of an entry it made.
struct CachedEntry {
    std::shared_ptr<const PathEntry> entry;
    Tolvex::CanonicalAbsoluteIRI builtUnder; ///< the folder that was asked for when the entry was made
    PathEntrySource source;
    FolderMonitoringLevel level;
    bool folderPresent; ///< false for the empty entry of a folder that is missing or cannot be read
    bool cutFromAbove;  ///< something below was left out because of the folders above: asked for directly, it is more
};

/// The live entries of one factory by canonical IRI: those built from the disk, and behind them those built from a path
/// cache file. Disk entries are held weakly, and so are the children of cache file entries; what stands at the top of a
/// cache file is kept until an entry from the disk takes its place or the cache is dropped. The death of an entry takes
/// out its own record, never that of a successor under the same IRI.
///
/// Safe from any thread: one reader-writer lock, never held while an entry is dropped, since an entry's death comes
/// back here.
class EntryCache {
public:
    /// The live entry at a location; no value when there is none.
    [[nodiscard]] std::optional<CachedEntry> Find(const Tolvex::AbsoluteIRI& location) const;

    /// Records entries from the disk, each in place of an earlier one at its location.
    void Add(std::span<const CachedEntry> entries);

    /// Records entries from a cache file, each in place of an earlier one from a cache file; keeps those that stand at
    /// the top.
    void AddFromCacheFile(std::span<const CachedEntry> entries);

    /// Lets go of everything that came from a cache file.
    void DropCacheFile();

    /// Notes how closely the folder of an entry is to be watched from now on, also when another entry is kept for it.
    /// False when that entry is kept and it was so already.
    bool SetLevel(const IPathEntry& entry, FolderMonitoringLevel level);

    /// True once for an entry: the first time that this is asked of it.
    [[nodiscard]] bool TakeFirstUse(const IPathEntry& entry);

    /// Forgets an entry that is being destroyed.
    void Remove(const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry);

    /// The live entries that were asked for by themselves, in the order of their locations.
    [[nodiscard]] std::vector<CachedEntry> GetTopEntries() const;

    [[nodiscard]] std::size_t GetCount() const;

    /// Keeps everything recorded as it is for as long as it is held. No entry may die in the holding thread.
    [[nodiscard]] std::shared_lock<std::shared_mutex> LockShared() const { return std::shared_lock(mutex); }

private:
    struct Record {
        std::weak_ptr<const PathEntry> entry;
        const IPathEntry* identity; // compared, never followed: by the time it is needed the handle has expired
        Tolvex::CanonicalAbsoluteIRI builtUnder;
        PathEntrySource source;
        FolderMonitoringLevel level;
        bool folderPresent;
        bool cutFromAbove;
        std::shared_ptr<const PathEntry> keeper; // null for all but the top entries of a cache file
        alignas(std::atomic_ref<bool>::required_alignment) bool wasUsed = false; // also written under a shared lock
    };
    using Records = std::unordered_map<Tolvex::AbsoluteIRI, Record, Tolvex::IRIHash>;

    [[nodiscard]] static Record MakeRecord(const CachedEntry& entry);
    [[nodiscard]] static std::optional<CachedEntry> Find(const Records& records, const Tolvex::AbsoluteIRI& location);
    static void Remove(Records& records, const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry);

    mutable std::shared_mutex mutex;
    Records diskEntries;
    Records cacheFileEntries;
};

} // namespace PathManagement
