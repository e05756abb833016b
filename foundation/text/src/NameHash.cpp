#include "foundation/text/NameHash.h"

#include "TextBlock.h"
#include "foundation/text/CaseFolding.h"

namespace Tolvex {
namespace {

constexpr std::uint64_t seed = 0x51ED'270B'1A6C'9F35U;
constexpr std::uint64_t multiplier = 0x9E37'79B9'7F4A'7C15U; // odd, from the golden ratio

std::uint64_t Mix(std::uint64_t hash, TextBlock block) noexcept {
    __extension__ using Product = unsigned __int128;
    const Product product = Product{hash ^ block} * multiplier;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

TextBlock LoadShort(ustring_view text) noexcept {
    TextBlock block = 0;
    for (const char16_t unit : text)
        block = block << 16 | unit;
    return block;
}

/// Calls `take` with the places of blocks that cover a text of at least one block; the last overlaps the one before.
template <class Take>
void ForEachBlock(std::size_t size, const Take& take) noexcept {
    for (std::size_t at = 0; at + blockSize < size; at += blockSize)
        take(at);
    take(size - blockSize);
}

} // namespace

std::uint32_t HashName(ustring_view foldedName) noexcept {
    std::uint64_t hash = seed ^ foldedName.size();
    if (foldedName.size() < blockSize)
        return static_cast<std::uint32_t>(Mix(hash, LoadShort(foldedName)));
    ForEachBlock(foldedName.size(),
                 [&hash, foldedName](std::size_t at) { hash = Mix(hash, LoadBlock(foldedName.data() + at)); });
    return static_cast<std::uint32_t>(hash);
}

std::uint32_t FoldAndHashName(ustring_view name, char16_t* out) noexcept {
    std::uint64_t hash = seed ^ name.size();
    TextBlock seen = name.size() < blockSize ? ~TextBlock{0} : 0;
    if (seen == 0)
        ForEachBlock(name.size(), [&hash, &seen, name, out](std::size_t at) {
            const TextBlock block = LoadBlock(name.data() + at);
            const TextBlock folded = block | GetCapitals(block);
            std::memcpy(out + at, &folded, sizeof(folded));
            hash = Mix(hash, folded);
            seen |= block;
        });
    if (IsAscii(seen))
        return static_cast<std::uint32_t>(hash);
    // Short, or with other letters, whose blocks came out wrong above.
    FoldCaseTo(name, out);
    return HashName({out, name.size()});
}

} // namespace Tolvex
