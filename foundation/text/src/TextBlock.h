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

} // namespace Tolvex
