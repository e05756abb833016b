#include "path_model/Path.h"

#include "foundation/text/CaseFolding.h"
#include "path_model/ItemSearch.h"
#include "path_model/PathEntry.h"
#include "path_utilities/PartialPathname.h"

namespace PathManagement {

using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;

namespace {

/// Whether a name is no partial pathname: it holds no separator, or begins with one.
bool IsPlainName(ustring_view name) {
    const auto isIn = [name](char16_t separator) { return Tolvex::ContainsUnit(name, separator); };
    return std::ranges::none_of(Constants::PathnameSeparatorStr, isIn) ||
           name.find_first_of(Constants::PathnameSeparatorStr) == 0;
}

/// A partial pathname taken apart at its last separator.
struct PartialPathname {
    explicit PartialPathname(ustring_view name, std::size_t last)
        : folders(SplitPartialPathname(name.substr(0, last))), stem(name.substr(last + 1)) {}
    explicit PartialPathname(ustring_view name)
        : PartialPathname(name, name.find_last_of(Constants::PathnameSeparatorStr)) {}

    PathnameComponents folders;
    ustring_view stem;
};

struct NameQuestion {
    SearchScope scope;
    const SearchTarget& target;
    FilenameMatchingPolicy policy;
};

/// The answer that stands first on the path so far.
struct Winner {
    std::uint64_t order = UINT64_MAX;
    const LayeredIndex::Slot* slot = nullptr;
    const PathItem* item = nullptr; ///< null when a foreign entry is the winner

    [[nodiscard]] std::uint32_t GetMainPlace() const noexcept { return static_cast<std::uint32_t>(order >> 32); }
};

/// Kept apart so that the road of absent names, which ends before it, stays short.
[[gnu::noinline]] void FindFirstInLayer(const LayeredIndex& index, const LayeredIndex::NamedEntries& entries,
                                        const NameQuestion& question, Winner& winner) {
    entries.ForEach(winner.order, [&](const LayeredIndex::Place& place, std::uint32_t firstItem) {
        const LayeredIndex::Slot& slot = *place.slot;
        if (!question.scope.Contains(slot.type))
            return winner.order;
        index.PrepareHandle(place.GetMainPlace());
        const PathItem* item = nullptr;
        if (!slot.IsForeign()) {
            const auto modifier = static_cast<const PathEntry*>(slot.entry)->GetCaseModifier(question.policy);
            item =
                FindFirstItemOfName(slot.GetItems().subspan(firstItem), {question.target, slot.comparator, modifier});
        }
        if (slot.IsForeign() ? slot.entry->FindFirst(question.target, question.policy) != nullptr : item != nullptr)
            winner = {place.order, place.slot, item};
        return winner.order;
    });
}

bool IsMethodFolderOfEitherKind(PathEntryType type) {
    return type == PathEntryType::methodFolder || type == PathEntryType::uddClassFolder;
}

/// The entries in scope that may hold files of a name, in path order.
std::vector<LayeredIndex::Place> FindNamed(const LayeredIndex& index, SearchScope scope, const SearchTarget& target) {
    std::vector<LayeredIndex::Place> places;
    index.ForEachLayerWithName(target.GetNameHash(), [&](const LayeredIndex::NamedEntries& entries) {
        entries.ForEach(UINT64_MAX, [&](const LayeredIndex::Place& place, std::uint32_t) {
            if (scope.Contains(place.slot->type))
                places.push_back(place);
            return UINT64_MAX;
        });
    });
    std::sort(places.begin(), places.end());
    // Two names of one entry may have one hash.
    const auto repeated = std::ranges::unique(places, {}, &LayeredIndex::Place::order);
    places.erase(repeated.begin(), repeated.end());
    return places;
}

} // namespace

Path::Path(std::unique_ptr<const LayeredIndex> index, std::shared_ptr<AsynchronousWorkerQueue> queue)
    : index(std::move(index)), queue(std::move(queue)) {}

Path::~Path() {
    try {
        DestroyAsynchronously(std::move(index), *queue);
    } catch (...) {
        // No memory to queue it: it was destroyed here instead.
    }
}

std::shared_ptr<const PathEntryVector> Path::GetMainEntries() const {
    return index->GetMainEntries().GetVector();
}

PathEntryVector Path::GetMethodEntries() const {
    return GetHandles(index->FindType(PathEntryType::methodFolder));
}

PathEntryVector Path::GetMethodEntriesByName(SearchScope scope, const ustring& className) const {
    const ustring folderName = u"@" + className;
    std::vector<Place> places = index->FindFolderName(Tolvex::FoldCase(folderName));
    std::erase_if(places, [&](const Place& place) {
        const PathEntryType type = place.slot->type;
        return !IsMethodFolderOfEitherKind(type) || !scope.Contains(type) ||
               place.slot->entry->GetIRI().getBaseName() != folderName;
    });
    return GetHandles(places);
}

PathEntryVector Path::GetPartiallyMatchingEntries(SearchScope scope, const ustring& partialPath) const {
    return GetHandles(FindFolders(scope, SplitPartialPathname(partialPath)));
}

std::shared_ptr<const IPathEntry> Path::GetMainEntryForEntry(const IPathEntry& entry) const {
    const auto place = index->FindLocation(entry.GetIRI());
    return place ? index->GetMainEntries()[place->GetMainPlace()] : nullptr;
}

std::shared_ptr<const IPathEntry> Path::GetParentEntryForEntry(const IPathEntry& entry) const {
    const auto place = index->FindLocation(entry.GetIRI());
    if (!place)
        return nullptr;
    const Place parent = index->GetParent(*place);
    return parent.slot->entry == &entry ? nullptr : index->GetHandle(parent);
}

std::shared_ptr<const IPathEntry> Path::GetPathEntryFromAbsoluteIRI(const CanonicalAbsoluteIRI& location) const {
    const auto place = index->FindLocation(location);
    return place ? index->GetHandle(*place) : nullptr;
}

std::shared_ptr<const IPathEntry> Path::GetPathEntryFromAbsoluteIRI(const AbsoluteIRI& location,
                                                                    FilenameMatchingPolicy policy) const {
    if (policy == FilenameMatchingPolicy::exact ||
        (policy == FilenameMatchingPolicy::native && !index->HasFoldersThatIgnoreCase())) {
        const auto place = index->FindLocation(location);
        return place ? index->GetHandle(*place) : nullptr;
    }
    const ustring wanted(location.getPath());
    for (const Place& place : index->FindFolderName(Tolvex::FoldCase(location.getBaseName()))) {
        const IPathEntry& entry = *place.slot->entry;
        const CanonicalAbsoluteIRI candidate = entry.GetIRI();
        if (candidate.getScheme() == location.getScheme() &&
            (*entry.CreateFilenameMatcher(policy))(ustring(candidate.getPath()), wanted))
            return index->GetHandle(place);
    }
    return nullptr;
}

std::optional<FoundItem> Path::FindFirstInScope(SearchScope scope, const SearchTarget& target,
                                                FilenameMatchingPolicy policy) const {
    // No file's name holds a separator, so nothing is found here that a partial pathname should not find, and a name
    // that is found needs no look for separators. Every return gives one variable, which is then made where the caller
    // wants it instead of being moved there.
    auto found = FindFirstByName(scope, target, policy);
    if (found || IsPlainName(target.GetName()))
        return found;
    const PartialPathname pathname(target.GetName());
    const SearchTarget inFolder = target.WithName(pathname.stem);
    for (const Place& place : FindFoldersWithName(scope, pathname.folders, inFolder)) {
        if (auto item = place.slot->entry->FindFirst(inFolder, policy)) {
            found.emplace(index->GetHandle(place), std::move(item));
            break;
        }
    }
    return found;
}

std::vector<FoundItem> Path::FindAllInScope(SearchScope scope, const SearchTarget& target,
                                            FilenameMatchingPolicy policy) const {
    if (IsPlainName(target.GetName()))
        return FindAllInPlaces(FindNamed(*index, scope, target), target, policy);
    const PartialPathname pathname(target.GetName());
    const SearchTarget inFolder = target.WithName(pathname.stem);
    return FindAllInPlaces(FindFoldersWithName(scope, pathname.folders, inFolder), inFolder, policy);
}

std::optional<FoundItem> Path::FindFirstByName(SearchScope scope, const SearchTarget& target,
                                               FilenameMatchingPolicy policy) const {
    const NameQuestion question{scope, target, policy};
    Winner winner;
    index->ForEachLayerWithName(target.GetNameHash(), [&](const LayeredIndex::NamedEntries& entries) {
        FindFirstInLayer(*index, entries, question, winner);
    });
    std::optional<FoundItem> found;
    if (winner.slot == nullptr)
        return found;
    auto handle = index->GetHandle(winner.GetMainPlace(), *winner.slot);
    if (winner.item == nullptr)
        found.emplace(std::move(handle), winner.slot->entry->FindFirst(target, policy));
    else
        found.emplace(std::move(handle), *winner.item);
    return found;
}

std::vector<FoundItem> Path::FindAllInPlaces(const std::vector<Place>& places, const SearchTarget& target,
                                             FilenameMatchingPolicy policy) const {
    std::vector<FoundItem> found;
    for (const Place& place : places) {
        PathItemVector items = place.slot->entry->FindAll(target, policy);
        if (items.empty())
            continue;
        const auto handle = index->GetHandle(place);
        for (auto& item : items)
            found.emplace_back(handle, std::move(item));
    }
    return found;
}

bool Path::ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    for (const auto& entry : index->GetAllEntries())
        if (scope.Contains(entry->GetPathEntryType()) && callback(entry))
            return true;
    return false;
}

bool Path::ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return ForEachEntry(scope, callback);
}

bool Path::FirstEntryIsBeforeSecondOnPath(const IPathEntry& first, const IPathEntry& second) const {
    const auto placeOfFirst = index->FindLocation(first.GetIRI());
    const auto placeOfSecond = index->FindLocation(second.GetIRI());
    if (!placeOfFirst || !placeOfSecond)
        return placeOfFirst.has_value();
    return *placeOfFirst < *placeOfSecond;
}

bool Path::IsEntryOnPath(const IPathEntry& entry) const {
    return index->FindLocation(entry.GetIRI()).has_value();
}

PathEntryVector Path::GetHandles(const std::vector<Place>& places) const {
    PathEntryVector handles;
    handles.reserve(places.size());
    for (const Place& place : places)
        handles.push_back(index->GetHandle(place));
    return handles;
}

/// The entries in scope whose last names are `partialPath`, in path order; none for an empty one.
std::vector<Path::Place> Path::FindFolders(SearchScope scope, std::span<const ustring_view> partialPath) const {
    if (partialPath.empty())
        return {};
    std::vector<Place> places = index->FindFolderName(Tolvex::FoldCase(partialPath.back()));
    std::erase_if(places, [&](const Place& place) {
        return !scope.Contains(place.slot->type) ||
               !DoesPartialPathnameMatchPathEntryIRI(partialPath, place.slot->entry->GetIRI(), place.slot->comparator);
    });
    return places;
}

/// Of the folders of a partial pathname at least those that hold its file, in path order. Many folders have one name
/// ("private") and many files another ("Contents"); the way over fewer of them is taken.
std::vector<Path::Place> Path::FindFoldersWithName(SearchScope scope, std::span<const ustring_view> partialPath,
                                                   const SearchTarget& target) const {
    if (partialPath.empty() ||
        index->CountFolderName(Tolvex::FoldCase(partialPath.back())) <= index->CountName(target.GetNameHash()))
        return FindFolders(scope, partialPath);
    std::vector<Place> places = FindNamed(*index, scope, target);
    std::erase_if(places, [&](const Place& place) {
        return !DoesPartialPathnameMatchPathEntryIRI(partialPath, place.slot->entry->GetIRI(), place.slot->comparator);
    });
    return places;
}

} // namespace PathManagement
