#pragma once

#include "path_interfaces/FoundItem.h"
#include "path_interfaces/IPathEntry.h"

#include <optional>

namespace PathManagement {

/// An ordered path of entries: an immutable snapshot with indexes. "In path order" means main entries in order, each
/// followed by its descendants in the order of IPathEntry::ForEachEntry. All operations may be called from any thread
/// at any time and take no lock. The order of the operations is the binary contract between modules.
class IPath {
public:
    virtual ~IPath() = default;

    /// The folders named on the path, in order. Never null.
    [[nodiscard]] virtual std::shared_ptr<const PathEntryVector> GetMainEntries() const = 0;

    /// All method-folder entries (PathEntryType::methodFolder), in path order.
    [[nodiscard]] virtual PathEntryVector GetMethodEntries() const = 0;

    /// The entries in scope whose folder is "@" followed by exactly `className`: method folders and UDD class folders,
    /// in path order.
    [[nodiscard]] virtual PathEntryVector GetMethodEntriesByName(SearchScope scope, const ustring& className) const = 0;

    /// The entries in scope whose location ends with the folder names of `partialPath`, compared by the rule of
    /// each entry's file system, in path order. Empty for an empty partial path.
    [[nodiscard]] virtual PathEntryVector GetPartiallyMatchingEntries(SearchScope scope,
                                                                      const ustring& partialPath) const = 0;

    /// The main entry under which the entry's folder lies on this path; null when it is not on the path.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry> GetMainEntryForEntry(const IPathEntry& entry) const = 0;

    /// The entry above the place where the entry's folder lies on this path; null for a main entry of this path and for
    /// what is not on it. (Another object for the folder of a main entry gets that main entry.)
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry> GetParentEntryForEntry(const IPathEntry& entry) const = 0;

    /// The entry at exactly this place, or null. When a folder occurs twice, the first in path order.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry>
    GetPathEntryFromAbsoluteIRI(const Tolvex::CanonicalAbsoluteIRI& location) const = 0;

    /// The first entry in path order whose path text the policy's matcher calls equal to that of `location`; null when
    /// there is none. The location is taken as spelled.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry>
    GetPathEntryFromAbsoluteIRI(const Tolvex::AbsoluteIRI& location, FilenameMatchingPolicy policy) const = 0;

    /// The first file in path order that answers to the target in an entry in scope. A target whose name holds a "/"
    /// behind its first character is a partial pathname: its last part is the wanted stem, the folder names before
    /// it have to be the last names of the entry's location.
    [[nodiscard]] virtual std::optional<FoundItem> FindFirstInScope(SearchScope scope, const SearchTarget& target,
                                                                    FilenameMatchingPolicy policy) const = 0;

    /// Every file that answers, in path order; within one entry in the order of IPathEntry::FindAll.
    [[nodiscard]] virtual std::vector<FoundItem> FindAllInScope(SearchScope scope, const SearchTarget& target,
                                                                FilenameMatchingPolicy policy) const = 0;

    /// Calls the callback with every entry in scope, in path order; true stops the walk and is returned.
    virtual bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const = 0;

    /// As ForEachEntry; an implementation may call the callback from several threads at once.
    virtual bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const = 0;

    /// True when the first entry's place in path order is before the second's. REQUIRES: both are on the path;
    /// what is not on it counts as behind everything.
    [[nodiscard]] virtual bool FirstEntryIsBeforeSecondOnPath(const IPathEntry& first,
                                                              const IPathEntry& second) const = 0;

    /// By IRI: another entry object for the same folder counts as on the path.
    [[nodiscard]] virtual bool IsEntryOnPath(const IPathEntry& entry) const = 0;
};

} // namespace PathManagement
