#pragma once

#include "foundation/text/Export.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Tolvex {

/// The environment's string of 16-bit code units; used for every name and path.
using ustring = std::u16string;
using ustring_view = std::u16string_view;

/// What `a == b` says, made for names: inline and several code units at a time, where the standard library compares
/// 16-bit code units one by one.
[[nodiscard]] inline bool IsSameText(ustring_view a, ustring_view b) noexcept {
    const auto areSame = [&a, &b]<class Block>(std::size_t at, Block) {
        Block inA = 0;
        Block inB = 0;
        std::memcpy(&inA, a.data() + at, sizeof(Block));
        std::memcpy(&inB, b.data() + at, sizeof(Block));
        return inA == inB;
    };
    const std::size_t size = a.size();
    if (size != b.size())
        return false;
    if (size < 2)
        return size == 0 || a[0] == b[0];
    if (size < 4)
        return areSame(0, std::uint32_t{}) && areSame(size - 2, std::uint32_t{});
    // The last block overlaps the one before.
    for (std::size_t at = 0; at + 4 < size; at += 4)
        if (!areSame(at, std::uint64_t{}))
            return false;
    return areSame(size - 4, std::uint64_t{});
}

/// Whether `unit` stands anywhere in `text`; made for short texts that mostly do not hold it.
[[nodiscard]] KX_EXPORT bool ContainsUnit(ustring_view text, char16_t unit) noexcept;

/// Converts bytes to 16-bit text. A byte that is not part of well-formed UTF-8 (a surrogate encoded in three bytes is
/// not well formed either) becomes one lone surrogate U+DC80..U+DCFF, so that FromUtf8 followed by ToUtf8 gives the
/// same bytes for any input. The escape is the one Python calls "surrogateescape" (PEP 383).
[[nodiscard]] KX_EXPORT ustring FromUtf8(std::string_view bytes);

/// As FromUtf8, appended to `out`. Appends at most one code unit a byte.
KX_EXPORT void AppendFromUtf8(ustring& out, std::string_view bytes);

/// As FromUtf8, written to `out`, which has room for `bytes.size()` code units. Returns how many were written.
KX_EXPORT std::size_t ConvertFromUtf8(std::string_view bytes, char16_t* out) noexcept;

/// Converts 16-bit text to bytes. Lone surrogates U+DC80..U+DCFF become the byte they stand for; any other lone
/// surrogate (no file name read from a disk holds one) becomes its three-byte generalised UTF-8 form.
[[nodiscard]] KX_EXPORT std::string ToUtf8(ustring_view text);

} // namespace Tolvex
