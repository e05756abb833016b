#pragma once

#include <cstdint>
#include <cstring>

namespace Tolvex {

/// Four code units in one register, the first in the lowest bits.
using TextBlock = std::uint64_t;

constexpr std::size_t blockSize = sizeof(TextBlock) / sizeof(char16_t);
constexpr TextBlock inEveryUnit = 0x0001'0001'0001'0001U;

inline TextBlock LoadBlock(const char16_t* text) noexcept {
    TextBlock block = 0;
    std::memcpy(&block, text, sizeof(block));
    return block;
}

constexpr bool IsAscii(TextBlock block) noexcept {
    return (block & ~(0x7F * inEveryUnit)) == 0;
}

/// The bit that makes a capital small, in each unit that is a capital. REQUIRES: IsAscii(block).
constexpr TextBlock GetCapitals(TextBlock block) noexcept {
    const TextBlock fromA = block + (0x80 - u'A') * inEveryUnit; // bit 7 is set in units from "A" on
    const TextBlock pastZ = block + (0x7F - u'Z') * inEveryUnit; // bit 7 is set in units behind "Z"
    return ((fromA ^ pastZ) & (0x80 * inEveryUnit)) >> 2;
}

} // namespace Tolvex
