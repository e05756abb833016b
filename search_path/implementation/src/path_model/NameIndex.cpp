#include "path_model/NameIndex.h"

#include "path_model/SideBySide.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace PathManagement {

namespace {

/// Parts of about this many records fit a core's second-level cache together with their table.
constexpr std::size_t recordsAPart = 8192;

/// Slots are counted and sorted in chunks of about this many items, a chunk a task.
constexpr std::size_t itemsAChunk = 32768;

constexpr unsigned maximumPartBits = 10;

/// How full the tables are at most: so many names in so many buckets.
constexpr std::size_t namesInBuckets = 5;
constexpr std::size_t bucketsForNames = 6;

/// Calls `visit` with the hash and the index of the first item of each run of equal normalised stems.
template <class Visit>
void ForEachName(std::span<const PathItem> items, const Visit& visit) {
    for (std::size_t i = 0; i < items.size(); ++i)
        if (i == 0 || items[i].GetNameHash() != items[i - 1].GetNameHash() ||
            items[i].GetNormalizedStem() != items[i - 1].GetNormalizedStem())
            visit(items[i].GetNameHash(), static_cast<std::uint32_t>(i));
}

} // namespace

/// Sorts the records of all slots by part, keeping slot order inside a part: chunks of slots are counted side by side,
/// the counts give each chunk its places in every part, and the chunks are written side by side.
class NameIndex::Sorter {
public:
    Sorter(std::span<const std::span<const PathItem>> itemsBySlot, unsigned bits)
        : itemsBySlot(itemsBySlot), bits(bits), partCount(std::size_t{1} << bits) {
        CutIntoChunks();
        ForEachSideBySide(ChunkCount(), [this](std::size_t chunk) { Count(chunk); });
        AssignPlaces();
        sorted.resize(partBegin.back());
        ForEachSideBySide(ChunkCount(), [this](std::size_t chunk) { Write(chunk); });
    }

    [[nodiscard]] std::span<const Entry> GetPart(std::size_t part) const {
        return std::span(sorted).subspan(partBegin[part], partBegin[part + 1] - partBegin[part]);
    }
    [[nodiscard]] std::size_t GetCount() const { return sorted.size(); }

private:
    [[nodiscard]] std::size_t ChunkCount() const { return chunkBegin.size() - 1; }
    [[nodiscard]] std::size_t PartOf(std::uint32_t hash) const {
        return static_cast<std::size_t>(std::uint64_t{hash} << bits >> 32);
    }
    std::uint32_t& Cursor(std::size_t chunk, std::size_t part) { return cursors[chunk * partCount + part]; }

    void CutIntoChunks() {
        std::size_t items = 0;
        chunkBegin.push_back(0);
        for (std::size_t slot = 0; slot < itemsBySlot.size(); ++slot) {
            items += itemsBySlot[slot].size();
            if (items < itemsAChunk)
                continue;
            chunkBegin.push_back(slot + 1);
            items = 0;
        }
        if (chunkBegin.back() != itemsBySlot.size() || chunkBegin.size() == 1)
            chunkBegin.push_back(itemsBySlot.size());
        cursors.assign(ChunkCount() * partCount, 0);
    }

    void Count(std::size_t chunk) {
        for (std::size_t slot = chunkBegin[chunk]; slot < chunkBegin[chunk + 1]; ++slot)
            ForEachName(itemsBySlot[slot], [&](std::uint32_t hash, std::uint32_t) { ++Cursor(chunk, PartOf(hash)); });
    }

    void AssignPlaces() {
        std::uint32_t place = 0;
        partBegin.reserve(partCount + 1);
        for (std::size_t part = 0; part < partCount; ++part) {
            partBegin.push_back(place);
            for (std::size_t chunk = 0; chunk < ChunkCount(); ++chunk)
                place += std::exchange(Cursor(chunk, part), place);
        }
        partBegin.push_back(place);
    }

    void Write(std::size_t chunk) {
        for (std::size_t slot = chunkBegin[chunk]; slot < chunkBegin[chunk + 1]; ++slot)
            ForEachName(itemsBySlot[slot], [&](std::uint32_t hash, std::uint32_t item) {
                sorted[Cursor(chunk, PartOf(hash))++] = {hash, {static_cast<std::uint32_t>(slot), item}};
            });
    }

    std::span<const std::span<const PathItem>> itemsBySlot;
    unsigned bits;
    std::size_t partCount;
    std::vector<std::size_t> chunkBegin;
    std::vector<std::uint32_t> cursors; // counts, then places to write to, by chunk and part
    std::vector<std::uint32_t> partBegin;
    std::vector<Entry> sorted;
};

NameIndex::NameIndex(std::span<const std::span<const PathItem>> itemsBySlot) {
    std::size_t items = 0;
    for (const auto& ofSlot : itemsBySlot)
        items += ofSlot.size();
    partBits = std::min(static_cast<unsigned>(std::bit_width(items / recordsAPart)), maximumPartBits);
    const Sorter sorter(itemsBySlot, partBits);
    count = sorter.GetCount();
    parts.resize(std::size_t{1} << partBits);
    ForEachSideBySide(parts.size(), [&](std::size_t part) { parts[part].Build(sorter.GetPart(part), partBits); });
}

/// The bucket of the entry's hash, or the empty one where it belongs.
std::size_t NameIndex::Part::BucketFor(const Entry& entry, unsigned bits) noexcept {
    for (std::size_t group = Home(entry.hash << bits);; group = NextGroup(group)) {
        const TagGroup tagGroup(tags.data() + group);
        for (std::uint32_t match = tagGroup.Match(TagGroup::TagOf(entry.hash)); match != 0; match &= match - 1) {
            const std::size_t bucket = group + static_cast<std::size_t>(std::countr_zero(match));
            if (buckets[bucket].hash == entry.hash)
                return bucket;
        }
        if (tagGroup.HasEmpty())
            return group + static_cast<std::size_t>(std::countr_zero(tagGroup.Match(TagGroup::empty)));
    }
}

void NameIndex::Part::Build(std::span<const Entry> entries, unsigned bits) {
    // At least one bucket stays empty, which is what ends a search.
    groupCount = entries.size() * bucketsForNames / namesInBuckets / TagGroup::size + 1;
    tags.assign(static_cast<std::size_t>(groupCount) * TagGroup::size, TagGroup::empty);
    buckets.resize(tags.size());
    std::uint32_t inRuns = 0;
    for (const Entry& entry : entries) {
        const std::size_t bucket = BucketFor(entry, bits);
        NameRecord& record = buckets[bucket].record;
        if (tags[bucket] == TagGroup::empty) {
            tags[bucket] = TagGroup::TagOf(entry.hash);
            buckets[bucket] = entry;
        } else if ((record.slot & runMark) == 0) {
            record = {runMark, 2}; // how many there are; where they begin follows
            inRuns += 2;
        } else {
            ++record.item;
            ++inRuns;
        }
    }
    if (inRuns != 0)
        FillRuns(entries, bits, inRuns);
}

void NameIndex::Part::FillRuns(std::span<const Entry> entries, unsigned bits, std::uint32_t inRuns) {
    std::uint32_t begin = 0;
    for (std::size_t bucket = 0; bucket < buckets.size(); ++bucket)
        if (NameRecord& record = buckets[bucket].record;
            tags[bucket] != TagGroup::empty && (record.slot & runMark) != 0) {
            record.slot |= begin;
            begin += std::exchange(record.item, 0);
        }
    runs.resize(inRuns);
    for (const Entry& entry : entries) {
        NameRecord& record = buckets[BucketFor(entry, bits)].record;
        if ((record.slot & runMark) != 0)
            runs[(record.slot & ~runMark) + record.item++] = entry.record;
    }
}

} // namespace PathManagement
