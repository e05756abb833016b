#pragma once

#include "path_interfaces/IPathEntryFactory.h"
#include "path_model/PathEntry.h"

#include <optional>
#include <shared_mutex>
#include <span>
#include <unordered_map>

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

/// The live entries of one factory by canonical IRI. Entries are held weakly: an entry that nobody else holds dies, and
/// its death takes out its own record, never that of a successor under the same IRI. Safe from any thread: one
/// reader-writer lock, never held while an entry is dropped, since an entry's death comes back here.
class EntryCache {
public:
    /// The live entry at a location; no value when there is none.
    [[nodiscard]] std::optional<CachedEntry> Find(const Tolvex::AbsoluteIRI& location) const;

    /// Records entries, each in place of an earlier one at its location.
    void Add(std::span<const CachedEntry> entries);

    /// Forgets an entry that is being destroyed.
    void Remove(const Tolvex::CanonicalAbsoluteIRI& location, const IPathEntry& entry);

    [[nodiscard]] std::size_t GetCount() const;

private:
    struct Record {
        std::weak_ptr<const PathEntry> entry;
        const IPathEntry* identity; // compared, never followed: by the time it is needed the handle has expired
        Tolvex::CanonicalAbsoluteIRI builtUnder;
        PathEntrySource source;
        FolderMonitoringLevel level;
        bool folderPresent;
        bool cutFromAbove;
    };

    mutable std::shared_mutex mutex;
    std::unordered_map<Tolvex::AbsoluteIRI, Record, Tolvex::IRIHash> diskEntries; // guarded by mutex
};

} // namespace PathManagement
