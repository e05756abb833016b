#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace PathManagement {

/// Sixteen neighbouring buckets of a hash table, a byte each: a few bits of the hash in it, or that it is empty. All
/// are compared at once, so that a table can be filled well without long walks. The layout is that of the "Swiss
/// tables" (M. Kulukundis, "Designing a fast, efficient, cache-friendly hash table", CppCon 2017).
class TagGroup {
public:
    static constexpr std::size_t size = 16;
    static constexpr std::uint8_t empty = 0x80;

    /// Seven bits that say little about where in a table a hash belongs.
    [[nodiscard]] static constexpr std::uint8_t TagOf(std::uint32_t hash) noexcept {
        return static_cast<std::uint8_t>(hash & 0x7F);
    }

    /// Reads `size` tags; no alignment is asked for.
    explicit TagGroup(const std::uint8_t* tags) noexcept;

    /// Bit i is set when bucket i has the tag.
    [[nodiscard]] std::uint32_t Match(std::uint8_t tag) const noexcept;
    [[nodiscard]] bool HasEmpty() const noexcept;

private:
#if defined(__SSE2__)
    __m128i tags;
#else
    const std::uint8_t* tags;
#endif
};

#if defined(__SSE2__)

inline TagGroup::TagGroup(const std::uint8_t* first) noexcept
    : tags(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first))) {}

inline std::uint32_t TagGroup::Match(std::uint8_t tag) const noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(tags, _mm_set1_epi8(static_cast<char>(tag)))));
}

inline bool TagGroup::HasEmpty() const noexcept {
    return _mm_movemask_epi8(tags) != 0; // only the mark of an empty bucket has its top bit set
}

#else

inline TagGroup::TagGroup(const std::uint8_t* first) noexcept : tags(first) {}

inline std::uint32_t TagGroup::Match(std::uint8_t tag) const noexcept {
    std::uint32_t matches = 0;
    for (std::uint32_t i = 0; i < size; ++i)
        matches |= static_cast<std::uint32_t>(tags[i] == tag) << i;
    return matches;
}

inline bool TagGroup::HasEmpty() const noexcept {
    return Match(empty) != 0;
}

#endif

} // namespace PathManagement
