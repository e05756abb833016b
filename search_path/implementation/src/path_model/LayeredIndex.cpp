#include "path_model/LayeredIndex.h"

#include "path_model/PathEntry.h"

#include <iterator>
#include <numeric>
#include <typeinfo>
#include <utility>

namespace PathManagement {

namespace {

constexpr std::uint32_t notThere = UINT32_MAX;

/// The upper layers are folded into a new lowest one when they weigh more than this and than a share of it.
constexpr std::size_t smallestUpperWeight = 4096;
constexpr std::size_t upperShare = 4;

/// For each new main entry its place among the old ones, or `notThere`. Lists mostly differ in one stretch, so equal
/// ends are matched in lock-step and only what lies between is searched.
class MainEntryMatch {
public:
    MainEntryMatch(const PathEntryVector& before, const PathEntryVector& after)
        : before(before), after(after), oldPlaces(after.size(), notThere) {
        const std::size_t shorter = std::min(before.size(), after.size());
        std::size_t front = 0;
        for (; front < shorter && before[front] == after[front]; ++front)
            oldPlaces[front] = static_cast<std::uint32_t>(front);
        std::size_t back = 0;
        for (; back < shorter - front && before[before.size() - 1 - back] == after[after.size() - 1 - back]; ++back)
            oldPlaces[after.size() - 1 - back] = static_cast<std::uint32_t>(before.size() - 1 - back);
        MatchBetween(front, before.size() - back, after.size() - back);
    }

    [[nodiscard]] std::uint32_t GetOldPlace(std::size_t newPlace) const { return oldPlaces[newPlace]; }

private:
    void MatchBetween(std::size_t front, std::size_t beforeEnd, std::size_t afterEnd) {
        std::vector<std::pair<const IPathEntry*, std::uint32_t>> old;
        for (std::size_t place = front; place < beforeEnd; ++place)
            old.emplace_back(before[place].get(), static_cast<std::uint32_t>(place));
        std::sort(old.begin(), old.end());
        for (std::size_t place = front; place < afterEnd; ++place) {
            const auto found = std::lower_bound(old.begin(), old.end(), std::pair(after[place].get(), 0u));
            // An object listed twice is matched once for each time it stood there before.
            for (auto same = found; same != old.end() && same->first == after[place].get(); ++same)
                if (same->second != notThere) {
                    oldPlaces[place] = std::exchange(same->second, notThere);
                    break;
                }
        }
    }

    const PathEntryVector& before;
    const PathEntryVector& after;
    std::vector<std::uint32_t> oldPlaces;
};

/// What adding a main entry costs: its entries and their files.
std::size_t Weigh(const IPathEntry& mainEntry) {
    std::size_t count = 0;
    mainEntry.ForEachEntry(SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
        count += 1 + (typeid(*entry) == typeid(PathEntry) ? static_cast<const PathEntry&>(*entry).GetItems().size()
                                                          : entry->GetPathItems()->size());
        return false;
    });
    return count;
}

} // namespace

LayeredIndex::LayeredIndex(std::shared_ptr<const PathEntryVector> entries)
    : mainEntries(std::move(entries)), groupUses(mainEntries.GetSize()), leases(mainEntries.GetSize()) {
    std::vector<std::uint32_t> places(mainEntries.GetSize());
    std::iota(places.begin(), places.end(), 0u);
    const std::vector<EntryGroup> groups = AddLayer(std::move(places));
    allEntries.Get([&groups] {
        PathEntryVector all;
        for (const EntryGroup& group : groups)
            all.insert(all.end(), group.entries.begin(), group.entries.end());
        return all;
    });
}

LayeredIndex::LayeredIndex(std::shared_ptr<const PathEntryVector> entries, const LayeredIndex& previous)
    : mainEntries(std::move(entries)), groupUses(mainEntries.GetSize()), leases(mainEntries.GetSize()) {
    const MainEntryMatch match(*previous.mainEntries.GetVector(), *mainEntries.GetVector());
    std::size_t addedWeight = 0;
    for (std::size_t place = 0; place < mainEntries.GetSize(); ++place)
        if (match.GetOldPlace(place) == notThere)
            addedWeight += Weigh(*mainEntries[place]);
    TakeLayers(previous, previous.CountKeptLayers(addedWeight));
    std::vector<std::uint32_t> indexedAgain;
    for (std::uint32_t place = 0; place < mainEntries.GetSize(); ++place) {
        const std::uint32_t old = match.GetOldPlace(place);
        if (old == notThere || previous.groupUses[old].layer >= layers.size()) {
            indexedAgain.push_back(place);
            continue;
        }
        groupUses[place] = previous.groupUses[old];
        if (const auto kept = previous.keptEntries.find(old); kept != previous.keptEntries.end())
            keptEntries.emplace(place, kept->second);
    }
    PlaceGroups(indexedAgain);
    if (!indexedAgain.empty())
        AddLayer(std::move(indexedAgain));
}

LayeredIndex::LayeredIndex(const LayeredIndex& previous, std::span<const EntryReplacement> replacements)
    : mainEntries(previous.mainEntries, replacements), groupUses(previous.groupUses), keptEntries(previous.keptEntries),
      leases(mainEntries.GetSize()) {
    std::size_t addedWeight = 0;
    for (const EntryReplacement& replacement : replacements)
        addedWeight += Weigh(*replacement.entry);
    TakeLayers(previous, previous.CountKeptLayers(addedWeight));
    std::vector<std::uint32_t> indexedAgain;
    for (const EntryReplacement& replacement : replacements) {
        const GroupUse& use = groupUses[replacement.place];
        if (use.layer < layers.size())
            layers[use.layer].mainPlaces[use.group] = offPath;
        indexedAgain.push_back(replacement.place);
    }
    for (std::size_t layer = layers.size(); layer < previous.layers.size(); ++layer)
        std::ranges::copy_if(previous.layers[layer].mainPlaces, std::back_inserter(indexedAgain),
                             [](std::uint32_t place) { return place != offPath; });
    std::ranges::sort(indexedAgain);
    const auto repeats = std::ranges::unique(indexedAgain);
    indexedAgain.erase(repeats.begin(), repeats.end());
    for (const std::uint32_t place : indexedAgain)
        keptEntries.erase(place);
    if (!indexedAgain.empty())
        AddLayer(std::move(indexedAgain));
}

std::shared_ptr<const IPathEntry> LayeredIndex::GetKeptHandle(std::uint32_t mainPlace, const Slot& slot) const {
    return (*keptEntries.find(mainPlace)->second)[slot.ordinal];
}

/// How many of the lower layers an index derived from this one takes over, when so much is added on top.
std::size_t LayeredIndex::CountKeptLayers(std::size_t addedWeight) const {
    if (layers.empty())
        return 0;
    const LayerUse& lowest = layers.front();
    const auto gone = std::count(lowest.mainPlaces.begin(), lowest.mainPlaces.end(), offPath);
    if (static_cast<std::size_t>(gone) > lowest.mainPlaces.size() / 2)
        return 0;
    std::size_t upperWeight = addedWeight;
    for (std::size_t layer = 1; layer < layers.size(); ++layer)
        upperWeight += layers[layer].layer->GetWeight();
    if (upperWeight > std::max(smallestUpperWeight, lowest.layer->GetWeight() / upperShare))
        return 0;
    std::size_t kept = layers.size();
    std::size_t merged = addedWeight;
    for (; addedWeight > 0 && kept > 1 && layers[kept - 1].layer->GetWeight() < 2 * merged; --kept)
        merged += layers[kept - 1].layer->GetWeight();
    return kept;
}

/// The lowest layers of another index, as they stand there.
void LayeredIndex::TakeLayers(const LayeredIndex& previous, std::size_t count) {
    layers.reserve(count + 1);
    layers.assign(previous.layers.begin(), previous.layers.begin() + static_cast<std::ptrdiff_t>(count));
}

/// Walks and indexes the main entries at these places, which grow, as one layer on top.
std::vector<EntryGroup> LayeredIndex::AddLayer(std::vector<std::uint32_t> mainPlaces) {
    PathEntryVector entries;
    entries.reserve(mainPlaces.size());
    for (const std::uint32_t place : mainPlaces)
        entries.push_back(mainEntries[place]);
    std::vector<EntryGroup> groups = FlattenEntries(entries);
    auto layer = std::make_shared<const PathLayer>(groups);
    indexedNames += layer->GetNameCount();
    for (std::uint32_t group = 0; group < groups.size(); ++group) {
        groupUses[mainPlaces[group]] = {static_cast<std::uint32_t>(layers.size()), group};
        if (!groups[group].ownsEntries)
            keptEntries.emplace(mainPlaces[group], std::make_shared<const PathEntryVector>(groups[group].entries));
    }
    layers.push_back({std::move(layer), std::move(mainPlaces)});
    return groups;
}

/// Says for each group of each layer where it stands now. `unplaced`, which grow, are the places of no group yet.
void LayeredIndex::PlaceGroups(std::span<const std::uint32_t> unplaced) {
    for (LayerUse& use : layers)
        use.mainPlaces.assign(use.layer->GetGroupCount(), offPath);
    auto next = unplaced.begin();
    for (std::uint32_t place = 0; place < groupUses.size(); ++place)
        if (next != unplaced.end() && *next == place)
            ++next;
        else
            layers[groupUses[place].layer].mainPlaces[groupUses[place].group] = place;
    for (LayerUse& use : layers) {
        std::uint32_t last = 0;
        use.isInPathOrder = std::all_of(use.mainPlaces.begin(), use.mainPlaces.end(), [&](std::uint32_t place) {
            return place == offPath || std::exchange(last, place) <= place;
        });
    }
}

const PathEntryVector& LayeredIndex::GetAllEntries() const {
    return allEntries.Get([this] { return CollectAllEntries(); });
}

PathEntryVector LayeredIndex::CollectAllEntries() const {
    PathEntryVector all;
    for (std::uint32_t place = 0; place < groupUses.size(); ++place)
        for (const Slot& slot : layers[groupUses[place].layer].layer->GetGroup(groupUses[place].group))
            all.push_back(GetHandle(MakePlace(place, groupUses[place].layer, slot)));
    return all;
}

LayeredIndex::Place LayeredIndex::GetParent(const Place& place) const noexcept {
    const auto group = layers[place.layer].layer->GetGroup(place.slot->group);
    return MakePlace(place.GetMainPlace(), place.layer, group[place.slot->parentOrdinal]);
}

/// The places of what `find` gives for each layer, in path order.
template <class Find>
std::vector<LayeredIndex::Place> LayeredIndex::Collect(const Find& find) const {
    std::vector<Place> places;
    for (std::uint32_t layer = 0; layer < layers.size(); ++layer) {
        const LayerUse& use = layers[layer];
        for (const std::uint32_t slotNumber : find(*use.layer)) {
            const Slot& slot = use.layer->GetSlot(slotNumber);
            if (const std::uint32_t mainPlace = use.mainPlaces[slot.group]; mainPlace != offPath)
                places.push_back(MakePlace(mainPlace, layer, slot));
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

std::optional<LayeredIndex::Place> LayeredIndex::FindLocation(const Tolvex::AbsoluteIRI& location) const {
    const std::vector<Place> places = Collect([&](const PathLayer& layer) { return layer.FindLocation(location); });
    return places.empty() ? std::nullopt : std::optional(places.front());
}

std::vector<LayeredIndex::Place> LayeredIndex::FindFolderName(const ustring& foldedName) const {
    return Collect([&](const PathLayer& layer) { return layer.FindFolderName(foldedName); });
}

std::size_t LayeredIndex::CountName(std::uint32_t hash) const noexcept {
    std::size_t count = 0;
    for (const LayerUse& use : layers)
        count += use.layer->FindName(hash).size();
    return count;
}

std::size_t LayeredIndex::CountFolderName(const ustring& foldedName) const {
    std::size_t count = 0;
    for (const LayerUse& use : layers)
        count += use.layer->FindFolderName(foldedName).size();
    return count;
}

std::vector<LayeredIndex::Place> LayeredIndex::FindType(PathEntryType type) const {
    std::vector<Place> places;
    for (std::uint32_t place = 0; place < groupUses.size(); ++place)
        for (const Slot& slot : layers[groupUses[place].layer].layer->GetGroup(groupUses[place].group))
            if (slot.type == type)
                places.push_back(MakePlace(place, groupUses[place].layer, slot));
    return places;
}

} // namespace PathManagement
