#pragma once

#include "foundation/messages/Notification.h"
#include "path_interfaces/IFolderMonitor.h"
#include "path_interfaces/IPathEntry.h"

#include <cstdint>
#include <iosfwd>
#include <span>

namespace PathManagement {

/// Where an entry's contents came from.
enum class PathEntrySource : std::uint32_t { unknown, disk, cacheFile };

struct PathEntryState {
    PathEntrySource source = PathEntrySource::unknown;
    FolderMonitoringLevel level = FolderMonitoringLevel::none; ///< how closely its folder is to be watched
};

/// What a factory has done since it was made; for tests, dumps and people who tune.
struct PathEntryFactoryCounters {
    std::uint64_t foldersListed = 0;
    std::uint64_t entriesBuilt = 0;  ///< child entries included
    std::uint64_t entriesReused = 0; ///< requests answered with a live entry
    std::uint64_t entriesKept = 0;   ///< live entries that can be handed out again
};

/// The only maker of entries. Process-wide; safe from any thread. The order of the operations is the binary contract
/// between modules.
class IPathEntryFactory {
public:
    virtual ~IPathEntryFactory() = default;

    /// Creates the entries of a requested list, in parallel; the result does not depend on the schedule. The result has
    /// one place for each location, in order; null where the folder does not exist or cannot be read, for which
    /// `problems` gets the folder message, in the order of the locations.
    [[nodiscard]] virtual PathEntryVector CreatePathEntries(std::span<const Tolvex::AbsoluteIRI> locations,
                                                            const IFolderMonitor& monitor,
                                                            Tolvex::Notification& problems) const = 0;

    /// The live entry kept for a folder, up to date or not; null when there is none. Never touches the disk.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry>
    GetLiveEntry(const Tolvex::CanonicalAbsoluteIRI& location) const = 0;

    /// What is known of an entry; nothing of one that this factory does not keep.
    [[nodiscard]] virtual PathEntryState GetEntryState(const IPathEntry& entry) const = 0;

    [[nodiscard]] virtual PathEntryFactoryCounters GetCounters() const = 0;

    /// The entry for a canonical location: the live one when it is up to date, else a new one. A folder that is missing
    /// or cannot be read gives an empty entry, which comes back to life when the folder does. Never null.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry>
    CreatePathEntry(const Tolvex::CanonicalAbsoluteIRI& location, const IFolderMonitor& monitor) const = 0;

    /// As above for a location as a person spells it, links and all. Throws Tolvex::StorageError when the folder does
    /// not exist or cannot be opened, unless an entry is kept under that very IRI.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry> CreatePathEntry(const Tolvex::AbsoluteIRI& location,
                                                                            const IFolderMonitor& monitor) const = 0;

    /// What the observers of this factory's entries have seen since a token; asked once for all of them.
    [[nodiscard]] virtual Tolvex::ChangeReport GetChangesSince(Tolvex::ChangeToken token) const = 0;

    /// Reads a path cache file: each top-level folder record becomes an entry below `cacheRoot`, made without asking
    /// the disk about it and handed out from then on, until it is known to be out of date. `writtenAt` is the moment
    /// whose state the file records; a folder that changed later is out of date at the first look. Throws
    /// ToolboxCacheWrongFormatException, and nothing of the file is used; Tolvex::StorageError when the root cannot be
    /// opened.
    virtual void LoadToolboxCache(std::istream& cacheFile, const Tolvex::AbsoluteIRI& cacheRoot,
                                  Tolvex::FileTime writtenAt) = 0;

    /// Writes a path cache file of every main-folder entry kept here that lies below `cacheRoot`, in the order of their
    /// locations. Folders that may have changed are listed again for it, so that the file is true as of the moment in
    /// which writing began. Names are written as they are, those that no reader will take among them
    /// (WriteToolboxPathCache refuses these). Throws UnableToSaveToolboxCacheException; Tolvex::StorageError when the
    /// root cannot be opened.
    virtual void WriteToolboxCache(std::ostream& cacheFile, const Tolvex::AbsoluteIRI& cacheRoot) const = 0;

    /// Forgets what came from cache files. Entries that are in use stay what they are.
    virtual void DropToolboxCache() = 0;

    /// Has the folders of these entries, and all below them, watched as closely as `monitor` says from now on. Entries
    /// are made before their folders are on the monitored path. Of entries of others it is the folder that counts.
    virtual void UpdateObservation(std::span<const std::shared_ptr<const IPathEntry>> entries,
                                   const IFolderMonitor& monitor) const = 0;

    /// The installation folder that the toolbox cache speaks for.
    [[nodiscard]] virtual Tolvex::CanonicalAbsoluteIRI GetInstallationFolder() const = 0;
};

} // namespace PathManagement
