#pragma once

#include "foundation/text/NameHash.h"

#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <vector>

namespace KxBenchmarks {

/// The least that an answer from memory costs: one open-addressing table from folded names to numbers, half empty at
/// least, probed in line; names of up to 255 code units. It folds and hashes with the product's own
/// function and knows neither policies nor extensions nor owners. A byte of
/// each hash lies apart, so that an absent name mostly costs one cache line of a small array.
class FlatNameTable {
public:
    explicit FlatNameTable(std::size_t expectedNames)
        : slots(std::bit_ceil(2 * expectedNames + 1)), tags(slots.size()) {}

    /// REQUIRES: `foldedName` is not empty, is folded, and was not added before; no more names than expected.
    void Add(Tolvex::ustring_view foldedName, std::uint32_t number) {
        std::array<char16_t, maxLength> again;
        const std::uint32_t hash = Tolvex::FoldAndHashName(foldedName, again.data());
        std::size_t at = hash & Mask();
        while (tags[at] != free)
            at = (at + 1) & Mask();
        tags[at] = MakeTag(hash);
        slots[at] = {number, static_cast<std::uint32_t>(texts.size()), static_cast<std::uint32_t>(foldedName.size())};
        texts.append(foldedName);
    }

    [[nodiscard]] std::optional<std::uint32_t> Find(Tolvex::ustring_view name) const noexcept {
        if (name.size() > maxLength)
            return std::nullopt;
        std::array<char16_t, maxLength> folded;
        const std::uint32_t hash = Tolvex::FoldAndHashName(name, folded.data());
        const Tolvex::ustring_view wanted(folded.data(), name.size());
        const std::uint8_t tag = MakeTag(hash);
        for (std::size_t at = hash & Mask(); tags[at] != free; at = (at + 1) & Mask()) {
            if (tags[at] == tag && Tolvex::IsSameText(GetText(slots[at]), wanted))
                return slots[at].number;
        }
        return std::nullopt;
    }

private:
    static constexpr std::size_t maxLength = 255;
    static constexpr std::uint8_t free = 0;

    struct Slot {
        std::uint32_t number = 0;
        std::uint32_t text = 0;
        std::uint32_t length = 0;
    };

    static std::uint8_t MakeTag(std::uint32_t hash) noexcept { return static_cast<std::uint8_t>(hash >> 24 | 1); }
    [[nodiscard]] std::size_t Mask() const noexcept { return slots.size() - 1; }
    [[nodiscard]] Tolvex::ustring_view GetText(const Slot& slot) const noexcept {
        return {texts.data() + slot.text, slot.length};
    }

    std::vector<Slot> slots;
    std::vector<std::uint8_t> tags;
    Tolvex::ustring texts;
};

} // namespace KxBenchmarks
