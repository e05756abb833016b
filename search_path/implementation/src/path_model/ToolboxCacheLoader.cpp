#include "path_model/ToolboxCacheLoader.h"

#include "path_model/EntryDescriptor.h"
#include "path_model/PathEntryFactory.h"
#include "path_utilities/PathEntryTypeRules.h"
#include "path_utilities/ToolboxCacheReader.h"

#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

#include <algorithm>

namespace PathManagement {

namespace {

constexpr std::uint32_t none = ToolboxCacheRecord::Folder::none;

/// So many records are read and not made into entries yet, at most.
constexpr std::size_t recordsInWork = 32;

bool HoldsSeparator(ustring_view text) {
    return Tolvex::ContainsUnit(text, u'/') || Tolvex::ContainsUnit(text, u'\0');
}

bool IsName(ustring_view name) {
    return !name.empty() && name != u"." && name != u".." && !HoldsSeparator(name);
}

/// Whether a text is a chain of names with one "/" in between, not deeper than any folder that is made into an entry.
bool IsRelativePath(ustring_view path) {
    for (std::size_t depth = 0; depth < EntryBuilder::maximumDepth; ++depth) {
        const std::size_t separator = path.find(u'/');
        if (!IsName(path.substr(0, separator)))
            return false;
        if (separator == ustring_view::npos)
            return true;
        path.remove_prefix(separator + 1);
    }
    return false;
}

/// Appends the names of files that a folder can hold. One look at the text in which all of them lie mostly says that
/// there is no separator in any.
void AppendFileNames(const ToolboxCacheRecord& record, std::span<const ToolboxCacheRecord::File> files,
                     std::vector<ustring_view>& names) {
    names.reserve(names.size() + files.size());
    const bool mayHoldSeparators = HoldsSeparator(record.GetText(files));
    for (const ToolboxCacheRecord::File& file : files) {
        const ustring_view name = record.GetName(file);
        const bool isName = (name.size() > 2 && !mayHoldSeparators) || IsName(name);
        if (isName && name.size() <= PathItemBlock::maximumNameLength)
            names.push_back(name);
    }
}

} // namespace

/// Where a folder of a record belongs.
struct ToolboxCacheLoader::Place {
    Location location;
    PathEntryType type{};
    std::size_t depth = 0;
    bool isUsed = false;
    std::uint32_t firstChild = none;
    std::uint32_t nextSibling = none;
    std::shared_ptr<const PathEntry> entry{};
};

ToolboxCacheLoader::ToolboxCacheLoader(const EntryBuilding& building, Location cacheRoot,
                                       const Tolvex::PathComparator& comparator, Tolvex::FileTime writtenAt)
    : building(building), cacheRoot(std::move(cacheRoot)), comparator(comparator),
      mark(Tolvex::ChangeMark::AsOf(writtenAt, Tolvex::GetSystemClock().Now())) {}

void ToolboxCacheLoader::Load(std::istream& cacheFile) {
    ToolboxCacheReader reader(cacheFile);
    using Record = std::pair<std::size_t, std::shared_ptr<const ToolboxCacheRecord>>;
    std::size_t count = 0;
    const auto read = [&reader, &count](tbb::flow_control& flow) {
        Record record{count++, reader.Next()};
        if (!record.second)
            flow.stop();
        return record;
    };
    const auto make = [this](const Record& record) { MakeEntries(*record.second, record.first); };
    // Whoever waits here must not be given other work, which might want the lock that is held meanwhile.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_pipeline(recordsInWork, tbb::make_filter<void, Record>(tbb::filter_mode::serial_in_order, read) &
                                                  tbb::make_filter<Record, void>(tbb::filter_mode::parallel, make));
    });
}

void ToolboxCacheLoader::MakeEntries(const ToolboxCacheRecord& record, std::size_t number) {
    std::vector<Place> places = FindPlaces(record);
    std::vector<ustring_view> fileNames;
    std::vector<CachedEntry> entries;
    entries.reserve(places.size());
    try {
        // Folders stand before those in them, so from the end on, children are made before parents.
        for (std::size_t folder = places.size(); folder-- > 0;)
            if (places[folder].isUsed) {
                places[folder].entry = MakeEntry(record, folder, places, fileNames);
                entries.push_back({places[folder].entry, places.front().location, PathEntrySource::cacheFile,
                                   FolderMonitoringLevel::none, true, false});
            }
    } catch (...) {
        Keep(entries, number);
        throw;
    }
    Keep(entries, number);
}

void ToolboxCacheLoader::Keep(std::vector<CachedEntry>& entries, std::size_t number) {
    // Where a file names one folder twice, the later may stand under the parent alone: it comes last.
    std::ranges::reverse(entries);
    const std::scoped_lock lock(mutex);
    if (made.size() <= number)
        made.resize(number + 1);
    made[number].swap(entries);
}

std::vector<ToolboxCacheLoader::Place> ToolboxCacheLoader::FindPlaces(const ToolboxCacheRecord& record) const {
    std::vector<Place> places;
    places.reserve(record.GetFolders().size());
    for (const ToolboxCacheRecord::Folder& folder : record.GetFolders())
        places.push_back(FindPlace(record, folder, places).value_or(Place()));
    for (std::size_t folder = places.size(); folder-- > 1;) {
        if (!places[folder].isUsed)
            continue;
        Place& parent = places[record.GetFolders()[folder].parent];
        places[folder].nextSibling = std::exchange(parent.firstChild, static_cast<std::uint32_t>(folder));
    }
    return places;
}

std::optional<ToolboxCacheLoader::Place> ToolboxCacheLoader::FindPlace(const ToolboxCacheRecord& record,
                                                                       const ToolboxCacheRecord::Folder& folder,
                                                                       const std::vector<Place>& above) const {
    const ustring_view name = record.GetName(folder);
    if (folder.parent == none) {
        if (!IsRelativePath(name))
            return std::nullopt;
        const ustring_view root = cacheRoot.getPath();
        auto location = Location::fromCanonical(
            {cacheRoot.getScheme(), ustring(root == u"/" ? ustring_view() : root).append(u"/").append(name)});
        const PathEntryType type = GetPathEntryTypeFromLocation(location);
        return Place{std::move(location), type, 0, true};
    }
    const Place& parent = above[folder.parent];
    const ustring_view parentName = record.GetName(record.GetFolders()[folder.parent]);
    if (!parent.isUsed || parent.depth + 1 >= EntryBuilder::maximumDepth || !name.starts_with(parentName) ||
        name.size() <= parentName.size() || name[parentName.size()] != u'/')
        return std::nullopt;
    const ustring_view baseName = name.substr(parentName.size() + 1);
    const PathEntryType type = GetPathEntryTypeFromBaseName(parent.location.getBaseName(), baseName);
    const auto validTypes = PathEntryFactory::GetValidChildEntryTypesForEntryType(parent.type);
    if (!IsName(baseName) || std::ranges::find(validTypes, type) == validTypes.end())
        return std::nullopt;
    return Place{parent.location.getChild(baseName), type, parent.depth + 1, true};
}

std::shared_ptr<const PathEntry> ToolboxCacheLoader::MakeEntry(const ToolboxCacheRecord& record, std::size_t folder,
                                                               const std::vector<Place>& places,
                                                               std::vector<ustring_view>& fileNames) const {
    const Place& place = places[folder];
    PathEntryChildren children;
    for (std::uint32_t child = place.firstChild; child != none; child = places[child].nextSibling)
        PathEntryFactory::PushChildEntryToCurrentPathEntry(children, places[child].entry);
    fileNames.clear();
    AppendFileNames(record, record.GetFiles(record.GetFolders()[folder]), fileNames);
    return std::make_shared<const PathEntry>(
        place.location, DescribeEntry(place.location, building.descriptors), place.type, std::move(children), fileNames,
        comparator, building.observers.createObserver(place.location, mark, FolderMonitoringLevel::none),
        building.eventManager);
}

} // namespace PathManagement
