#include "path_model/EntryBuilder.h"

#include "path_model/EntryDescriptor.h"
#include "path_model/PathEntryFactory.h"
#include "path_utilities/PathEntryTypeRules.h"

#include <algorithm>
#include <tuple>

namespace PathManagement {

using Tolvex::ChangeMark;
using Tolvex::Folder;
using Tolvex::FolderListing;
using Tolvex::StorageError;
using Tolvex::StorageFailure;

namespace {

/// Down to this depth a folder stays open while its children are built, which are then opened relative to it; below it
/// only one folder is open at a time, so that no nesting uses up the process's descriptors.
constexpr std::size_t heldOpenDepth = 16;

bool IsGone(StorageFailure failure) {
    return failure == StorageFailure::missing || failure == StorageFailure::notAFolder;
}

} // namespace

struct EntryBuilder::ChildFolder {
    std::size_t rank; // of its type among the types that the parent may hold
    PathEntryType type;
    ustring_view name;

    [[nodiscard]] bool operator<(const ChildFolder& other) const {
        return std::tie(rank, name) < std::tie(other.rank, other.name);
    }
};

/// What is known of the folder itself when its entry is made.
struct EntryBuilder::Opened {
    Tolvex::PathComparator comparator;
    ChangeMark mark;
    bool isPresent;
    bool cutFromAbove = false;
};

/// A listing that is filled again and again by one thread; as many exist as folders are nested.
class EntryBuilder::ListingLease {
public:
    ListingLease() {
        if (pool.empty()) {
            pool.reserve(++made); // room for every buffer at once, so that giving one back never allocates
            pool.push_back(std::make_unique<Buffers>());
        }
        buffers = std::move(pool.back());
        pool.pop_back();
    }
    ~ListingLease() {
        buffers->fileNames.clear();
        pool.push_back(std::move(buffers));
    }
    ListingLease(const ListingLease&) = delete;
    ListingLease& operator=(const ListingLease&) = delete;

    /// Lists `folder`: its file names come out here, its child folders of the kinds that `type` may hold in `folders`.
    void Fill(const Folder& folder, const ustring_view baseName, PathEntryType type,
              std::vector<ChildFolder>& folders) {
        folder.list(buffers->listing);
        const std::span validTypes = PathEntryFactory::GetValidChildEntryTypesForEntryType(type);
        for (const FolderListing::Item& item : buffers->listing.GetItems()) {
            const ustring_view name = buffers->listing.GetName(item);
            if (item.kind == FolderListing::Kind::file) {
                buffers->fileNames.push_back(name);
                continue;
            }
            const PathEntryType childType = GetPathEntryTypeFromBaseName(baseName, name);
            const auto valid = std::find(validTypes.begin(), validTypes.end(), childType);
            if (valid != validTypes.end())
                folders.push_back({static_cast<std::size_t>(valid - validTypes.begin()), childType, name});
        }
        std::sort(folders.begin(), folders.end());
    }

    [[nodiscard]] std::span<const ustring_view> GetFileNames() const { return buffers->fileNames; }

private:
    struct Buffers {
        FolderListing listing;
        std::vector<ustring_view> fileNames;
    };
    static thread_local std::vector<std::unique_ptr<Buffers>> pool;
    static thread_local std::size_t made;
    std::unique_ptr<Buffers> buffers;
};

thread_local std::vector<std::unique_ptr<EntryBuilder::ListingLease::Buffers>> EntryBuilder::ListingLease::pool;
thread_local std::size_t EntryBuilder::ListingLease::made = 0;

EntryBuilder::EntryBuilder(EntryBuilding& building, const IFolderMonitor& monitor, Location location)
    : building(building), monitor(monitor), mainLocation(std::move(location)) {}

std::shared_ptr<const PathEntry> EntryBuilder::Build(std::unique_ptr<Folder> folder) {
    return Publish(BuildFrom(mainLocation, GetPathEntryTypeFromLocation(mainLocation), std::move(folder)));
}

std::shared_ptr<const PathEntry> EntryBuilder::BuildUnrecorded(std::unique_ptr<Folder> folder) {
    return BuildFrom(mainLocation, GetPathEntryTypeFromLocation(mainLocation), std::move(folder));
}

std::shared_ptr<const PathEntry> EntryBuilder::BuildOrEmpty() {
    const PathEntryType type = GetPathEntryTypeFromLocation(mainLocation);
    return Publish(TryTwice(mainLocation, type, [&] { return building.storage->openFolder(mainLocation); }));
}

std::shared_ptr<const PathEntry> EntryBuilder::Publish(std::shared_ptr<const PathEntry> entry) {
    building.cache.Add(made);
    building.entriesBuilt += made.size();
    made.clear();
    return entry;
}

/// Builds from the folder that `open` gives. When that fails, marks the folder and tries once more, so that whatever
/// changes after the second look is seen later; then settles for an entry without contents.
template <class Open>
std::shared_ptr<const PathEntry> EntryBuilder::TryTwice(const Location& location, PathEntryType type,
                                                        const Open& open) {
    const std::size_t depth = folderChain.size();
    try {
        return BuildFrom(location, type, open());
    } catch (const StorageError&) {
        folderChain.resize(depth);
    }
    Opened refused{Tolvex::PathComparator(), building.storage->takeChangeMark(location), false};
    try {
        return BuildFrom(location, type, open());
    } catch (const StorageError& error) {
        folderChain.resize(depth);
        if (depth > 0 && IsGone(error.GetFailure()))
            return nullptr; // a child that vanished after its parent was listed; the parent counts as changed by then
        if (error.GetFailure() == StorageFailure::accessFailure)
            refused.mark.settled = false; // nothing says that the folder has to change before it can be read again
    }
    return Finish(location, type, {}, {}, refused);
}

/// Null for a child folder that leads back to a folder above it.
std::shared_ptr<const PathEntry> EntryBuilder::BuildFrom(const Location& location, PathEntryType type,
                                                         std::unique_ptr<Folder> folder) {
    Opened opened{folder->getPathComparator(), folder->getChangeMark(), true};
    if (LeadsBackUp(opened.mark))
        return nullptr;
    ListingLease listing;
    std::vector<ChildFolder> folders;
    listing.Fill(*folder, location.getBaseName(), type, folders);
    ++building.foldersListed;
    folderChain.push_back({opened.mark, GetLevel(location)});
    PathEntryChildren children = BuildChildren(location, folders, std::move(folder));
    opened.cutFromAbove = folderChain.back().cutFromAbove;
    folderChain.pop_back();
    return Finish(location, type, std::move(children), listing.GetFileNames(), opened);
}

PathEntryChildren EntryBuilder::BuildChildren(const Location& location, const std::vector<ChildFolder>& folders,
                                              std::unique_ptr<Folder> folder) {
    PathEntryChildren children;
    if (folderChain.size() > heldOpenDepth)
        folder.reset();
    if (folderChain.size() >= maximumDepth) {
        if (!folders.empty())
            NoteCut(0);
        return children;
    }
    for (const ChildFolder& child : folders)
        if (auto entry = BuildChild(location.getChild(child.name), child.type, folder.get()))
            PathEntryFactory::PushChildEntryToCurrentPathEntry(children, std::move(entry));
    return children;
}

std::shared_ptr<const PathEntry> EntryBuilder::BuildChild(const Location& location, PathEntryType type,
                                                          const Folder* parent) {
    if (auto live = FindReusableChild(location))
        return live;
    return TryTwice(location, type, [&] {
        return parent != nullptr ? parent->openChild(location.getBaseName()) : building.storage->openFolder(location);
    });
}

/// Only an entry made under the same main folder has been checked for links that lead back up the same chain, and only
/// one that is looked at can say that it is up to date. One from a cache file knows a time only, which says nothing
/// when an older folder has taken the place of the one above.
std::shared_ptr<const PathEntry> EntryBuilder::FindReusableChild(const Location& location) const {
    const auto live = building.cache.Find(location);
    if (!live || !live->folderPresent || live->cutFromAbove || live->level == FolderMonitoringLevel::none ||
        live->source == PathEntrySource::cacheFile || live->builtUnder != mainLocation || live->entry->IsOutOfDate())
        return nullptr;
    ++building.entriesReused;
    return live->entry;
}

bool EntryBuilder::LeadsBackUp(const ChangeMark& mark) noexcept {
    const auto above = std::find_if(folderChain.begin(), folderChain.end(), [&](const ChainLink& link) {
        return link.mark.device == mark.device && link.mark.inode == mark.inode;
    });
    if (above == folderChain.end())
        return false;
    NoteCut(static_cast<std::size_t>(above - folderChain.begin()));
    return true;
}

/// Something is left out here because of the folder at this depth. The entries of the folders below that one would have
/// it if they were asked for by themselves.
void EntryBuilder::NoteCut(std::size_t causeDepth) noexcept {
    for (std::size_t depth = causeDepth + 1; depth < folderChain.size(); ++depth)
        folderChain[depth].cutFromAbove = true;
}

/// A child folder that is new is not on the monitored path yet, but will be with its parent: it is watched like that.
FolderMonitoringLevel EntryBuilder::GetLevel(const Location& location) const {
    const FolderMonitoringLevel level = monitor.GetMonitoringLevel(location);
    return level == FolderMonitoringLevel::none && !folderChain.empty() ? folderChain.back().level : level;
}

std::shared_ptr<const PathEntry> EntryBuilder::Finish(const Location& location, PathEntryType type,
                                                      PathEntryChildren children,
                                                      std::span<const ustring_view> fileNames, const Opened& opened) {
    const FolderMonitoringLevel level = GetLevel(location);
    auto entry = std::make_shared<const PathEntry>(
        location, DescribeEntry(location, building.descriptors), type, std::move(children), fileNames,
        opened.comparator, building.observers.createObserver(location, opened.mark, level), building.eventManager);
    made.push_back({entry, mainLocation, PathEntrySource::disk, level, opened.isPresent, opened.cutFromAbove});
    return entry;
}

} // namespace PathManagement
