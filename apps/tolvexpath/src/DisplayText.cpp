#include "DisplayText.h"

#include <fmt/format.h>

#include <iterator>

namespace TolvexPath {

namespace {

bool IsControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

/// The number of code units from `position` on that are one character fit to be shown; 0 when an escape is needed.
std::size_t MeasureShownCharacter(Tolvex::ustring_view text, std::size_t position) {
    const char16_t unit = text[position];
    if (IsHighSurrogate(unit))
        return position + 1 < text.size() && IsLowSurrogate(text[position + 1]) ? 2 : 0;
    return IsLowSurrogate(unit) || IsControl(unit) ? 0 : 1;
}

void AppendEscape(std::string& out, char16_t unit) {
    const auto append = std::back_inserter(out);
    if (unit == u'\n')
        fmt::format_to(append, "\\n");
    else if (unit == u'\t')
        fmt::format_to(append, "\\t");
    else if (unit < 0xA0)
        fmt::format_to(append, "\\x{:02x}", static_cast<unsigned>(unit));
    else if (unit >= 0xDC80 && unit <= 0xDCFF) // stands for one byte of the name
        fmt::format_to(append, "\\x{:02x}", static_cast<unsigned>(unit - 0xDC00));
    else
        fmt::format_to(append, "\\u{:04x}", static_cast<unsigned>(unit));
}

} // namespace

std::string ToDisplayText(Tolvex::ustring_view text) {
    std::string shown;
    std::size_t pending = 0; // start of what is shown as it is
    for (std::size_t i = 0; i < text.size();) {
        if (const std::size_t length = MeasureShownCharacter(text, i); length > 0) {
            i += length;
            continue;
        }
        shown += Tolvex::ToUtf8(text.substr(pending, i - pending));
        AppendEscape(shown, text[i]);
        pending = ++i;
    }
    return shown += Tolvex::ToUtf8(text.substr(pending));
}

} // namespace TolvexPath
