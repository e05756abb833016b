#include "IRIEscapes.h"

namespace Tolvex {
namespace {

constexpr bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr bool IsByteEscape(char16_t unit) {
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

/// "pchar" of RFC 3986 without the percent sign, and "/".
constexpr bool IsPlainAscii(char16_t unit) {
    const bool alphanumeric =
        (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
    return alphanumeric || ustring_view(u"-._~!$&'()*+,;=:@/").find(unit) != ustring_view::npos;
}

/// "ucschar" of RFC 3987: no controls, no private use, no noncharacters.
constexpr bool IsIRICharacter(char32_t c) {
    if (c < 0x80)
        return IsPlainAscii(static_cast<char16_t>(c));
    if (c < 0x10000)
        return (c >= 0xA0 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFEF);
    return (c & 0xFFFF) <= 0xFFFD && c <= 0xEFFFD && (c < 0xE0000 || c >= 0xE1000);
}

struct CodePoint {
    char32_t value;
    std::size_t length;
};

CodePoint ReadCodePoint(ustring_view text) {
    if (text.size() > 1 && IsHighSurrogate(text[0]) && IsLowSurrogate(text[1])) {
        const auto high = static_cast<char32_t>(text[0] - 0xD800);
        const auto low = static_cast<char32_t>(text[1] - 0xDC00);
        return {0x10000 + (high << 10U) + low, 2};
    }
    return {text[0], 1};
}

void AppendEscaped(ustring& out, ustring_view text) {
    constexpr ustring_view digits = u"0123456789ABCDEF";
    for (const char c : ToUtf8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        out += u'%';
        out += digits[byte >> 4U];
        out += digits[byte & 0xFU];
    }
}

/// A run of escaped bytes is percent-encoded when reading it back gives the same run; else it stays as it is. (Bytes
/// that together would be well-formed text never come from a disk in this form.)
std::size_t AppendByteEscapes(ustring& out, ustring_view text) {
    std::size_t length = 0;
    while (length < text.size() && IsByteEscape(text[length]))
        ++length;
    const auto run = text.substr(0, length);
    if (FromUtf8(ToUtf8(run)) == run)
        AppendEscaped(out, run);
    else
        out += run;
    return length;
}

std::optional<unsigned> ReadHexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    const auto lower = static_cast<char16_t>(unit | 0x20);
    if (lower >= u'a' && lower <= u'f')
        return lower - u'a' + 10U;
    return std::nullopt;
}

/// The byte of the "%XX" that `text` starts with.
std::optional<char> ReadEscape(ustring_view text) {
    if (text.size() < 3)
        return std::nullopt;
    const auto high = ReadHexDigit(text[1]);
    const auto low = ReadHexDigit(text[2]);
    if (!high || !low)
        return std::nullopt;
    const auto byte = static_cast<char>((*high << 4U) | *low);
    return byte == '\0' || byte == '/' ? std::nullopt : std::optional(byte);
}

/// Appends what the run of escapes that `text` starts with stands for; returns the run's length, 0 for a broken one.
std::size_t AppendUnescaped(ustring& out, ustring_view text) {
    std::string bytes;
    std::size_t length = 0;
    while (length < text.size() && text[length] == u'%') {
        const auto byte = ReadEscape(text.substr(length));
        if (!byte)
            return 0;
        bytes += *byte;
        length += 3;
    }
    AppendFromUtf8(out, bytes);
    return length;
}

} // namespace

ustring EscapePath(ustring_view path) {
    ustring out;
    out.reserve(path.size());
    while (!path.empty()) {
        const auto [value, length] = ReadCodePoint(path);
        auto taken = length;
        if (IsIRICharacter(value))
            out += path.substr(0, length);
        else if (length == 1 && IsByteEscape(path[0]))
            taken = AppendByteEscapes(out, path);
        else if (length == 1 && (IsHighSurrogate(path[0]) || IsLowSurrogate(path[0])))
            out += path[0]; // has no UTF-8 form that reads back
        else
            AppendEscaped(out, path.substr(0, length));
        path.remove_prefix(taken);
    }
    return out;
}

std::optional<ustring> UnescapePath(ustring_view text) {
    ustring out;
    out.reserve(text.size());
    while (!text.empty()) {
        const auto [value, length] = ReadCodePoint(text);
        auto taken = length;
        if (value == U'%') {
            taken = AppendUnescaped(out, text);
            if (taken == 0)
                return std::nullopt;
        } else if (IsIRICharacter(value) || (value >= 0xD800 && value <= 0xDFFF)) {
            out += text.substr(0, length);
        } else {
            return std::nullopt;
        }
        text.remove_prefix(taken);
    }
    return out;
}

} // namespace Tolvex
