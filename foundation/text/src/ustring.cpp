#include "foundation/text/ustring.h"

#include "TextBlock.h"

#include <utf8proc.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace Tolvex {

namespace {

constexpr char16_t escapeBase = 0xDC00; // a bad byte b, always 0x80 or more, becomes escapeBase + b

constexpr bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool IsEscape(char16_t unit) {
    return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xFF;
}

/// Widens a block of bytes when all are ASCII.
template <class Block>
bool WidenBlock(const char* bytes, char16_t* out) {
    Block block = 0;
    std::memcpy(&block, bytes, sizeof(block));
    if ((block & static_cast<Block>(0x8080808080808080U)) != 0)
        return false;
    for (std::size_t i = 0; i != sizeof(block); ++i)
        out[i] = static_cast<unsigned char>(bytes[i]);
    return true;
}

/// Widens ASCII bytes at the start of `bytes`, a block at a time, the last overlapping the one before; returns how
/// many.
std::size_t WidenAscii(std::string_view bytes, char16_t* out) {
    constexpr std::size_t block = sizeof(std::uint64_t);
    std::size_t done = 0;
    if (bytes.size() >= block) {
        for (; done + block < bytes.size(); done += block)
            if (!WidenBlock<std::uint64_t>(bytes.data() + done, out + done))
                break;
        const std::size_t last = bytes.size() - block;
        if (done >= last && WidenBlock<std::uint64_t>(bytes.data() + last, out + last))
            return bytes.size();
    }
    for (; done != bytes.size() && static_cast<unsigned char>(bytes[done]) < 0x80; ++done)
        out[done] = static_cast<unsigned char>(bytes[done]);
    return done;
}

char16_t* AppendCodePoint(char32_t codePoint, char16_t* out) {
    if (codePoint < 0x10000) {
        *out++ = static_cast<char16_t>(codePoint);
        return out;
    }
    *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
    return out;
}

void AppendUtf8(std::string& out, char32_t codePoint) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(codePoint), bytes.data());
    for (utf8proc_ssize_t i = 0; i < length; ++i)
        out += static_cast<char>(bytes[static_cast<std::size_t>(i)]);
}

} // namespace

bool ContainsUnit(ustring_view text, char16_t unit) noexcept {
    if (text.size() < blockSize)
        return text.find(unit) != ustring_view::npos;
    const TextBlock wanted = unit * inEveryUnit;
    // Subtracting one borrows into the top bit of a unit exactly when it, or one below it in the block, is zero.
    const auto isIn = [wanted](TextBlock block) {
        block ^= wanted;
        return ((block - inEveryUnit) & ~block & (0x8000 * inEveryUnit)) != 0;
    };
    for (std::size_t i = 0; i + blockSize <= text.size(); i += blockSize)
        if (isIn(LoadBlock(text.data() + i)))
            return true;
    return isIn(LoadBlock(text.data() + (text.size() - blockSize)));
}

std::size_t ConvertFromUtf8(std::string_view bytes, char16_t* out) noexcept {
    char16_t* const start = out;
    while (true) {
        const std::size_t ascii = WidenAscii(bytes, out);
        out += ascii;
        bytes.remove_prefix(ascii);
        if (bytes.empty())
            return static_cast<std::size_t>(out - start);

        utf8proc_int32_t codePoint = 0;
        const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                                           static_cast<utf8proc_ssize_t>(bytes.size()), &codePoint);
        if (used <= 0) {
            *out++ = static_cast<char16_t>(escapeBase + static_cast<unsigned char>(bytes.front()));
            bytes.remove_prefix(1);
            continue;
        }
        out = AppendCodePoint(static_cast<char32_t>(codePoint), out);
        bytes.remove_prefix(static_cast<std::size_t>(used));
    }
}

void AppendFromUtf8(ustring& out, std::string_view bytes) {
    const std::size_t before = out.size();
    out.resize(before + bytes.size());
    out.resize(before + ConvertFromUtf8(bytes, out.data() + before));
}

ustring FromUtf8(std::string_view bytes) {
    ustring text;
    AppendFromUtf8(text, bytes);
    return text;
}

std::string ToUtf8(ustring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i != text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (IsHighSurrogate(unit) && i + 1 != text.size() && IsLowSurrogate(text[i + 1])) {
            AppendUtf8(bytes, (char32_t{unit} << 10) + text[++i] - ((0xD800U << 10) + 0xDC00U - 0x10000U));
        } else if (IsEscape(unit)) {
            bytes += static_cast<char>(unit - escapeBase);
        } else {
            AppendUtf8(bytes, unit);
        }
    }
    return bytes;
}

} // namespace Tolvex
