#pragma once

#include "foundation/environment/PackageDescriptors.h"
#include "foundation/events/EventMgr.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "path_model/EntryCache.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace PathManagement {

/// What entries are made with; referred to by every builder of a factory.
struct EntryBuilding {
    Tolvex::StorageSystemReference storage;
    const TolvexPackages::IPackageDescriptorFactory& descriptors;
    boost::shared_ptr<Tolvex::EventMgr> eventManager;
    Tolvex::IFileFolderObserverFactory& observers;
    EntryCache cache{};
    std::atomic<std::uint64_t> foldersListed = 0;
    std::atomic<std::uint64_t> entriesBuilt = 0;
    std::atomic<std::uint64_t> entriesReused = 0;
};

/// Builds one entry and the entries below it from their folders: each folder is opened, marked and listed once; child
/// folders whose live entry is up to date are not listed at all. For one use by one thread.
class EntryBuilder {
public:
    /// Special folders nested deeper than this are left out: no code library comes near it, and building, walking and
    /// releasing entries use the stack.
    static constexpr std::size_t maximumDepth = 256;

    EntryBuilder(EntryBuilding& building, const IFolderMonitor& monitor, Tolvex::CanonicalAbsoluteIRI location);

    /// Lists `folder`, which is open at the builder's location, and makes its entry. Throws Tolvex::StorageError when
    /// it cannot be listed.
    [[nodiscard]] std::shared_ptr<const PathEntry> Build(std::unique_ptr<Tolvex::Folder> folder);

    /// As Build, but nobody else will be handed the entry or what is made below it.
    [[nodiscard]] std::shared_ptr<const PathEntry> BuildUnrecorded(std::unique_ptr<Tolvex::Folder> folder);

    /// Opens and lists the folder; when it is missing or refuses to be read, makes an entry without contents that is
    /// out of date as soon as the folder changes or appears. Never null.
    [[nodiscard]] std::shared_ptr<const PathEntry> BuildOrEmpty();

private:
    struct ChildFolder;
    struct Opened;
    class ListingLease;
    using Location = Tolvex::CanonicalAbsoluteIRI;

    std::shared_ptr<const PathEntry> Publish(std::shared_ptr<const PathEntry> entry);
    template <class Open>
    std::shared_ptr<const PathEntry> TryTwice(const Location& location, PathEntryType type, const Open& open);
    std::shared_ptr<const PathEntry> BuildFrom(const Location& location, PathEntryType type,
                                               std::unique_ptr<Tolvex::Folder> folder);
    std::shared_ptr<const PathEntry> BuildChild(const Location& location, PathEntryType type,
                                                const Tolvex::Folder* parent);
    std::shared_ptr<const PathEntry> FindReusableChild(const Location& location) const;
    PathEntryChildren BuildChildren(const Location& location, const std::vector<ChildFolder>& folders,
                                    std::unique_ptr<Tolvex::Folder> folder);
    [[nodiscard]] bool LeadsBackUp(const Tolvex::ChangeMark& mark) noexcept;
    void NoteCut(std::size_t causeDepth) noexcept;
    [[nodiscard]] FolderMonitoringLevel GetLevel(const Location& location) const;
    std::shared_ptr<const PathEntry> Finish(const Location& location, PathEntryType type, PathEntryChildren children,
                                            std::span<const ustring_view> fileNames, const Opened& opened);

    EntryBuilding& building;
    const IFolderMonitor& monitor;
    Location mainLocation;
    struct ChainLink {
        Tolvex::ChangeMark mark;
        FolderMonitoringLevel level;
        bool cutFromAbove = false;
    };
    std::vector<ChainLink> folderChain; // the folders being built, outermost first
    std::vector<CachedEntry> made;      // children before parents; recorded when all is done
};

} // namespace PathManagement
