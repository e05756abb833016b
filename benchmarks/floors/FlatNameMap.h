#pragma once

#include "foundation/text/CaseFolding.h"
#include "foundation/text/NameHash.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <array>
#include <cstdint>
#include <optional>

namespace KxBenchmarks {

/// What an answer from memory costs with a flat hash map as one takes it from a library: Boost's, from folded names to
/// numbers. The wanted name is folded first, by the product's own function; names of up to 255 code units. It knows
/// neither policies nor extensions nor owners.
class FlatNameMap {
public:
    void Add(Tolvex::ustring_view foldedName, std::uint32_t number) { numbers.emplace(foldedName, number); }

    [[nodiscard]] std::optional<std::uint32_t> Find(Tolvex::ustring_view name) const {
        if (name.size() > maxLength)
            return std::nullopt;
        std::array<char16_t, maxLength> folded;
        Tolvex::FoldCaseTo(name, folded.data());
        const auto found = numbers.find(Tolvex::ustring_view(folded.data(), name.size()));
        return found == numbers.end() ? std::nullopt : std::optional(found->second);
    }

private:
    static constexpr std::size_t maxLength = 255;

    struct Hash {
        using is_transparent = void;
        using is_avalanching = void;
        std::size_t operator()(Tolvex::ustring_view name) const noexcept {
            return std::size_t{Tolvex::HashName(name)} * 0x1'0000'0001U; // the map takes bits from both halves
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(Tolvex::ustring_view a, Tolvex::ustring_view b) const noexcept {
            return Tolvex::IsSameText(a, b);
        }
    };
    boost::unordered_flat_map<Tolvex::ustring, std::uint32_t, Hash, Equal> numbers;
};

} // namespace KxBenchmarks
