#pragma once

#include "path_model/EntryBuilder.h"
#include "path_utilities/ToolboxCacheRecord.h"

#include <iosfwd>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace PathManagement {

/// Makes entries from the records of one path cache file, side by side and without a system call. They are not watched
/// yet and stand for their folders as of the moment of writing.
class ToolboxCacheLoader {
public:
    /// `comparator` is that of the root's file system.
    ToolboxCacheLoader(const EntryBuilding& building, Tolvex::CanonicalAbsoluteIRI cacheRoot,
                       const Tolvex::PathComparator& comparator, Tolvex::FileTime writtenAt);

    /// Makes the entries of every record. A folder that cannot stand where the record says, because its name is no path
    /// below the root or the parent's or its kind is none that the parent may hold, is left out with all below it: the
    /// disk will be asked for it. A file name that no folder can hold is left out. Whatever happens, no entry dies
    /// before this object does. Throws ToolboxCacheWrongFormatException.
    void Load(std::istream& cacheFile);

    /// What was made of each record, all in file order, so parents before children.
    [[nodiscard]] std::span<const std::vector<CachedEntry>> GetEntries() const noexcept { return made; }

private:
    struct Place;
    using Location = Tolvex::CanonicalAbsoluteIRI;

    void MakeEntries(const ToolboxCacheRecord& record, std::size_t number);
    [[nodiscard]] std::vector<Place> FindPlaces(const ToolboxCacheRecord& record) const;
    [[nodiscard]] std::optional<Place> FindPlace(const ToolboxCacheRecord& record,
                                                 const ToolboxCacheRecord::Folder& folder,
                                                 const std::vector<Place>& above) const;
    [[nodiscard]] std::shared_ptr<const PathEntry> MakeEntry(const ToolboxCacheRecord& record, std::size_t folder,
                                                             const std::vector<Place>& places,
                                                             std::vector<ustring_view>& fileNames) const;
    void Keep(std::vector<CachedEntry>& entries, std::size_t number);

    const EntryBuilding& building;
    Location cacheRoot;
    Tolvex::PathComparator comparator;
    Tolvex::ChangeMark mark;
    std::mutex mutex;                           // guards `made`
    std::vector<std::vector<CachedEntry>> made; // by record
};

} // namespace PathManagement
