#pragma once

#include "path_model/EntryLeases.h"
#include "path_model/MainEntryList.h"
#include "path_model/PathLayer.h"
#include "path_utilities/PublishOnce.h"

#include <boost/container/flat_map.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace PathManagement {

/// The ordered main entries of one path, and where everything on it is found. Immutable, safe from any thread.
///
/// What it looks up lies in layers: the lowest holds the bulk of the entries, those above it what came later. An index
/// that is derived from another shares its layers; entries that left the path stay in the layers and are passed over,
/// since the index knows for each group of each layer where on the path it stands, if at all. Layers that have grown
/// are made again together, so that there are few of them (the logarithmic method of Bentley and Saxe, "Decomposable
/// searching problems", 1980).
class LayeredIndex {
    static constexpr std::uint32_t offPath = UINT32_MAX;

    /// A layer, and where its groups stand on this path.
    struct LayerUse {
        std::shared_ptr<const PathLayer> layer;
        std::vector<std::uint32_t> mainPlaces; // by group; `offPath` for one that is not on this path
        bool isInPathOrder = true;             // places grow with group numbers
    };

public:
    using Slot = PathLayer::Slot;

    /// An entry of the path: where it stands, to be compared, and where it is kept.
    struct Place {
        std::uint64_t order; ///< the main entry's place in the upper half, the place below it in the lower
        std::uint32_t layer;
        const Slot* slot;

        [[nodiscard]] bool operator<(const Place& other) const noexcept { return order < other.order; }
        [[nodiscard]] std::uint32_t GetMainPlace() const noexcept { return static_cast<std::uint32_t>(order >> 32); }
    };

    /// Walks and indexes all entries, in parallel.
    explicit LayeredIndex(std::shared_ptr<const PathEntryVector> mainEntries);

    /// Walks and indexes only the main entries that `previous` does not hold. An object that stands on the path twice
    /// counts twice.
    LayeredIndex(std::shared_ptr<const PathEntryVector> mainEntries, const LayeredIndex& previous);

    /// `previous` with other main entries at some places. Costs what comes new; of the rest only numbers are copied.
    /// REQUIRES: the replacements are in the order of their places, each place once.
    LayeredIndex(const LayeredIndex& previous, std::span<const EntryReplacement> replacements);

    LayeredIndex(const LayeredIndex&) = delete;
    LayeredIndex& operator=(const LayeredIndex&) = delete;

    [[nodiscard]] const MainEntryList& GetMainEntries() const noexcept { return mainEntries; }

    /// Every entry in path order; made when the index was, or, for a derived one, when first asked for.
    [[nodiscard]] const PathEntryVector& GetAllEntries() const;

    /// How many names were indexed to make this; what a derived index costs.
    [[nodiscard]] std::size_t GetIndexedNameCount() const noexcept { return indexedNames; }
    [[nodiscard]] std::size_t GetLayerCount() const noexcept { return layers.size(); }

    /// The entries of one layer that may hold files of a name.
    class NamedEntries {
    public:
        /// Calls `visit(place, item)` for the entries that are on the path, where `item` is the first of that name
        /// among the entry's. `visit` returns the order behind which no further place matters, `limit` at first; most
        /// places behind it are passed over.
        template <class Visit>
        void ForEach(std::uint64_t limit, const Visit& visit) const {
            for (const NameRecord& record : records) {
                const Slot& slot = use->layer->GetSlot(record.slot);
                const std::uint32_t mainPlace = use->mainPlaces[slot.group];
                if (mainPlace == offPath)
                    continue;
                const Place place = MakePlace(mainPlace, layer, slot);
                if (place.order < limit)
                    limit = visit(place, record.item);
                else if (use->isInPathOrder)
                    break;
            }
        }

    private:
        friend class LayeredIndex;
        const LayerUse* use;
        std::uint32_t layer;
        std::span<const NameRecord> records;
    };

    /// Calls `visit` with the NamedEntries of each layer that has some for the name's hash.
    template <class Visit>
    void ForEachLayerWithName(std::uint32_t hash, const Visit& visit) const {
        NamedEntries entries;
        for (entries.layer = 0; entries.layer < layers.size(); ++entries.layer) {
            entries.use = &layers[entries.layer];
            entries.records = entries.use->layer->FindName(hash);
            if (!entries.records.empty())
                visit(entries);
        }
    }

    /// Whether the file system of one of the folders, or of one that has left the path, ignores case.
    [[nodiscard]] bool HasFoldersThatIgnoreCase() const noexcept {
        return std::ranges::any_of(layers, [](const LayerUse& use) { return use.layer->HasFoldersThatIgnoreCase(); });
    }

    /// The first entry in path order at a location.
    [[nodiscard]] std::optional<Place> FindLocation(const Tolvex::AbsoluteIRI& location) const;

    /// The entries whose folder's normalised name is `foldedName`, in path order.
    [[nodiscard]] std::vector<Place> FindFolderName(const ustring& foldedName) const;

    /// How many entries at most may hold files of a name, or have a folder of that normalised name. Found without
    /// looking at them.
    [[nodiscard]] std::size_t CountName(std::uint32_t hash) const noexcept;
    [[nodiscard]] std::size_t CountFolderName(const ustring& foldedName) const;

    /// All entries of one type, in path order.
    [[nodiscard]] std::vector<Place> FindType(PathEntryType type) const;

    /// A handle that keeps the entry alive.
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetHandle(const Place& place) const {
        return GetHandle(place.GetMainPlace(), *place.slot);
    }
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetHandle(std::uint32_t mainPlace, const Slot& slot) const {
        if (!slot.isOwnedByMain)
            return GetKeptHandle(mainPlace, slot);
        return leases.Take(mainPlace, mainEntries[mainPlace], *slot.entry);
    }

    /// Has the counter of a main entry, which stands in front of it, brought near while its files are compared; most
    /// answers are found at the first place that is looked at.
    void PrepareHandle(std::uint32_t mainPlace) const noexcept {
#if defined(__GNUC__)
        __builtin_prefetch(mainEntries[mainPlace].get(), 1);
#endif
    }

    /// The entry above; the main entry is its own.
    [[nodiscard]] Place GetParent(const Place& place) const noexcept;

private:
    /// Where the group of a main entry is kept.
    struct GroupUse {
        std::uint32_t layer = 0;
        std::uint32_t group = 0;
    };

    [[nodiscard]] static Place MakePlace(std::uint32_t mainPlace, std::uint32_t layer, const Slot& slot) noexcept {
        return {std::uint64_t{mainPlace} << 32 | slot.ordinal, layer, &slot};
    }

    /// Kept apart so that the road of most answers stays short.
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetKeptHandle(std::uint32_t mainPlace, const Slot& slot) const;
    [[nodiscard]] std::size_t CountKeptLayers(std::size_t addedWeight) const;
    void TakeLayers(const LayeredIndex& previous, std::size_t count);
    std::vector<EntryGroup> AddLayer(std::vector<std::uint32_t> mainPlaces);
    void PlaceGroups(std::span<const std::uint32_t> unplaced);
    [[nodiscard]] PathEntryVector CollectAllEntries() const;
    template <class Find>
    [[nodiscard]] std::vector<Place> Collect(const Find& find) const;

    MainEntryList mainEntries;
    std::vector<LayerUse> layers;
    std::vector<GroupUse> groupUses; // by place of the main entry
    /// By place of the main entry: the entries of a group that its main entry does not keep alive; rare.
    boost::container::flat_map<std::uint32_t, std::shared_ptr<const PathEntryVector>> keptEntries;
    EntryLeases leases;
    PublishOnce<PathEntryVector> allEntries;
    std::size_t indexedNames = 0;
};

} // namespace PathManagement
