#include "foundation/text/CaseFolding.h"

#include "TextBlock.h"

#include <utf8proc.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

namespace Tolvex {

namespace {

constexpr char32_t capitalIWithDot = 0x0130; // the one character with a full and a Turkic folding but no simple one

/// Asks the Unicode tables.
char32_t LookUpFolding(char32_t codePoint) {
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint == capitalIWithDot)
        return codePoint;
    const auto asked = static_cast<utf8proc_int32_t>(codePoint);
    std::array<utf8proc_int32_t, 8> folded{};
    int boundClass = UTF8PROC_BOUNDCLASS_START;
    const auto count = utf8proc_decompose_char(asked, folded.data(), static_cast<utf8proc_ssize_t>(folded.size()),
                                               UTF8PROC_CASEFOLD, &boundClass);
    // A folding to several code points is the full one; the simple one of the same character is its lower case.
    const auto result = static_cast<char32_t>(count == 1 ? folded[0] : utf8proc_tolower(asked));
    // Our callers rely on the number of code units, whatever Unicode version the library knows.
    return (result > 0xFFFF) == (codePoint > 0xFFFF) ? result : codePoint;
}

/// Foldings of the basic plane that were asked for before; 0 stands for "not yet" (U+0000 is ASCII and never gets
/// here). Every thread writes the same value, so neither order nor lock is needed, and no page of it exists until used.
constinit std::array<std::atomic<char16_t>, 0x10000> knownFoldings{};

char16_t FoldBasicPlane(char16_t unit) {
    auto& known = knownFoldings[unit];
    if (const char16_t folded = known.load(std::memory_order_relaxed); folded != 0)
        return folded;
    const auto folded = static_cast<char16_t>(LookUpFolding(unit));
    known.store(folded, std::memory_order_relaxed);
    return folded;
}

constexpr char16_t FoldAscii(char16_t unit) {
    return static_cast<char16_t>(unit + (static_cast<char16_t>(unit - u'A') < 26 ? u'a' - u'A' : 0));
}

constexpr bool IsSurrogatePair(char16_t first, char16_t second) {
    return (first & 0xFC00) == 0xD800 && (second & 0xFC00) == 0xDC00;
}

constexpr char32_t JoinSurrogates(char16_t high, char16_t low) {
    return (char32_t{high} << 10) + low - ((0xD800U << 10) + 0xDC00U - 0x10000U);
}

/// Folds the code point at the start of `text` to `out`; returns its length in code units.
std::size_t FoldFirst(ustring_view text, char16_t* out) {
    if (text.size() == 1 || !IsSurrogatePair(text[0], text[1])) {
        out[0] = text[0] < 0x80 ? FoldAscii(text[0]) : FoldBasicPlane(text[0]);
        return 1;
    }
    const char32_t folded = LookUpFolding(JoinSurrogates(text[0], text[1]));
    out[0] = static_cast<char16_t>(0xD7C0 + (folded >> 10));
    out[1] = static_cast<char16_t>(0xDC00 + (folded & 0x3FF));
    return 2;
}

/// Folds one block when all of it is ASCII; else does nothing and returns false.
bool FoldAsciiBlock(const char16_t* text, char16_t* out, TextBlock& difference) {
    const TextBlock block = LoadBlock(text);
    if (!IsAscii(block))
        return false;
    const TextBlock capitals = GetCapitals(block);
    const TextBlock folded = block | capitals;
    difference |= capitals;
    std::memcpy(out, &folded, sizeof(folded));
    return true;
}

/// Folds from the start as long as whole blocks are ASCII; returns how many units that were.
std::size_t FoldAsciiBlocks(const char16_t* text, std::size_t size, char16_t* out, TextBlock& difference) {
    if (size < blockSize)
        return 0;
    std::size_t done = 0;
    for (; done + blockSize <= size; done += blockSize) {
        if (!FoldAsciiBlock(text + done, out + done, difference))
            return done;
    }
    // The last block overlaps the one before: what is folded already does not change again.
    const std::size_t last = size - blockSize;
    return done == size || FoldAsciiBlock(text + last, out + last, difference) ? size : done;
}

} // namespace

char32_t FoldCase(char32_t codePoint) noexcept {
    if (codePoint < 0x80)
        return FoldAscii(static_cast<char16_t>(codePoint));
    return codePoint <= 0xFFFF ? FoldBasicPlane(static_cast<char16_t>(codePoint)) : LookUpFolding(codePoint);
}

ustring FoldCase(ustring_view text) {
    ustring folded(text.size(), u'\0');
    FoldCaseTo(text, folded.data());
    return folded;
}

bool FoldCaseTo(ustring_view text, char16_t* out) noexcept {
    TextBlock difference = 0;
    std::size_t i = FoldAsciiBlocks(text.data(), text.size(), out, difference);
    while (i != text.size()) {
        std::array<char16_t, 2> folded{};
        const std::size_t length = FoldFirst(text.substr(i), folded.data());
        for (std::size_t k = 0; k != length; ++k, ++i) {
            difference |= static_cast<TextBlock>(text[i] ^ folded[k]);
            out[i] = folded[k];
        }
        i += FoldAsciiBlocks(text.data() + i, text.size() - i, out + i, difference);
    }
    return difference != 0;
}

bool EqualIgnoringCase(ustring_view a, ustring_view b) noexcept {
    if (a.size() != b.size()) // folding keeps the number of code units
        return false;
    for (std::size_t i = 0; i != a.size();) {
        if (a.size() - i >= blockSize) {
            const TextBlock blockA = LoadBlock(a.data() + i);
            const TextBlock blockB = LoadBlock(b.data() + i);
            if (IsAscii(blockA | blockB)) {
                if ((blockA | GetCapitals(blockA)) != (blockB | GetCapitals(blockB)))
                    return false;
                i += blockSize;
                continue;
            }
        }
        std::array<char16_t, 2> foldedA{};
        std::array<char16_t, 2> foldedB{};
        const std::size_t length = FoldFirst(a.substr(i), foldedA.data());
        if (length != FoldFirst(b.substr(i), foldedB.data()) || foldedA != foldedB)
            return false;
        i += length;
    }
    return true;
}

} // namespace Tolvex
