#pragma once

#include "path_interfaces/PathEntryType.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>

namespace PathManagement {

/// The entry types that a walk or a search is meant for: a list, in the order given, that is asked as a set. A type
/// listed twice counts once. Eight bytes; pass it by value.
class SearchScope {
public:
    constexpr SearchScope() noexcept = default;

    /// Throws std::invalid_argument for a value that is no PathEntryType.
    constexpr SearchScope(std::initializer_list<PathEntryType> wanted) {
        for (const PathEntryType type : wanted)
            Add(type);
    }

    /// All six types, in the order of their values.
    [[nodiscard]] static constexpr SearchScope All() {
        SearchScope scope;
        for (std::uint32_t value = 0; value < pathEntryTypeCount; ++value)
            scope.Add(static_cast<PathEntryType>(value));
        return scope;
    }

    /// Appends a type unless it is listed already. Throws as the constructor.
    constexpr void Add(PathEntryType type) {
        if (static_cast<std::uint32_t>(type) >= pathEntryTypeCount)
            throw std::invalid_argument("SearchScope: a value that is no PathEntryType");
        if (Contains(type))
            return;
        types[count++] = static_cast<std::uint8_t>(type);
        mask |= static_cast<std::uint8_t>(1u << static_cast<std::uint32_t>(type));
    }

    [[nodiscard]] constexpr bool Contains(PathEntryType type) const noexcept {
        const auto value = static_cast<std::uint32_t>(type);
        return value < pathEntryTypeCount && ((mask >> value) & 1u) != 0;
    }

    [[nodiscard]] constexpr std::size_t GetCount() const noexcept { return count; }
    /// REQUIRES: index < GetCount().
    [[nodiscard]] constexpr PathEntryType operator[](std::size_t index) const noexcept {
        return static_cast<PathEntryType>(types[index]);
    }

private:
    std::array<std::uint8_t, pathEntryTypeCount> types{};
    std::uint8_t count = 0;
    std::uint8_t mask = 0;
};

} // namespace PathManagement
