#pragma once

#include "path_interfaces/PathItem.h"
#include "path_model/TagGroup.h"

#include <bit>
#include <cstdint>
#include <span>
#include <vector>

namespace PathManagement {

/// Says that the files of one entry that have one normalised name begin at an item.
struct NameRecord {
    std::uint32_t slot; ///< the entry's slot in its layer
    std::uint32_t item; ///< the first of them among the entry's items
};

/// From the hash of a normalised name to the entries that hold files of that name, in slot order. Flat tables without
/// pointers: an absent name costs one probe, a present one gives its records without a comparison of texts. Two names
/// with equal hashes share their records, so each record has to be checked against its item. Immutable, safe from any
/// thread.
///
/// The table is cut by the leading bits of the hash into parts that each fit a core's cache while they are built, one
/// thread a part.
class NameIndex {
public:
    static constexpr std::uint32_t maximumSlots = 1u << 31;

    NameIndex() = default;

    /// Indexes the items of each slot, which are sorted as in PathItemBlock. REQUIRES: fewer than maximumSlots slots.
    explicit NameIndex(std::span<const std::span<const PathItem>> itemsBySlot);

    /// Empty when no file of such a name is there. Valid as long as the index.
    [[nodiscard]] std::span<const NameRecord> Find(std::uint32_t hash) const noexcept {
        if (parts.empty())
            return {};
        const Part& part = parts[static_cast<std::size_t>(std::uint64_t{hash} << partBits >> 32)];
        return part.Find(hash << partBits, hash);
    }

    /// The number of records: distinct names, added up over the slots.
    [[nodiscard]] std::size_t GetCount() const noexcept { return count; }

private:
    struct Entry {
        std::uint32_t hash;
        NameRecord record;
    };

    /// An open-addressed table, probed by groups of buckets. A bucket holds the only record of its hash, or says where
    /// a run of records begins and how long it is.
    class Part {
    public:
        void Build(std::span<const Entry> entries, unsigned bits);
        [[nodiscard]] std::span<const NameRecord> Find(std::uint32_t position, std::uint32_t hash) const noexcept {
            for (std::size_t group = Home(position);; group = NextGroup(group)) {
                const TagGroup tagGroup(tags.data() + group);
                for (std::uint32_t match = tagGroup.Match(TagGroup::TagOf(hash)); match != 0; match &= match - 1) {
                    const Entry& bucket = buckets[group + static_cast<std::size_t>(std::countr_zero(match))];
                    if (bucket.hash == hash)
                        return GetRecords(bucket);
                }
                if (tagGroup.HasEmpty())
                    return {};
            }
        }

    private:
        static constexpr std::uint32_t runMark = maximumSlots;

        /// Spreads the hash's bits behind the part's over the groups; gives the first bucket of one.
        [[nodiscard]] std::size_t Home(std::uint32_t position) const noexcept {
            return static_cast<std::size_t>((std::uint64_t{position} * groupCount) >> 32) * TagGroup::size;
        }
        [[nodiscard]] std::size_t NextGroup(std::size_t group) const noexcept {
            return group + TagGroup::size == tags.size() ? 0 : group + TagGroup::size;
        }
        [[nodiscard]] std::span<const NameRecord> GetRecords(const Entry& bucket) const noexcept {
            if ((bucket.record.slot & runMark) == 0)
                return {&bucket.record, 1};
            return {runs.data() + (bucket.record.slot & ~runMark), bucket.record.item};
        }
        [[nodiscard]] std::size_t BucketFor(const Entry& entry, unsigned bits) noexcept;
        void FillRuns(std::span<const Entry> entries, unsigned bits, std::uint32_t inRuns);

        std::uint64_t groupCount = 0;
        std::vector<std::uint8_t> tags; // by bucket
        std::vector<Entry> buckets;
        std::vector<NameRecord> runs;
    };

    class Sorter;

    std::vector<Part> parts;
    unsigned partBits = 0;
    std::size_t count = 0;
};

} // namespace PathManagement
