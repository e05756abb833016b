#include "JsonWriter.h"

#include "Output.h"

#include <fmt/format.h>

#include <cmath>

namespace TolvexPath {

namespace {

bool IsSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

/// REQUIRES: text[position] is a surrogate.
bool StartsPair(Tolvex::ustring_view text, std::size_t position) {
    return text[position] <= 0xDBFF && position + 1 < text.size() && text[position + 1] >= 0xDC00 &&
           text[position + 1] <= 0xDFFF;
}

void WriteEscape(Output& output, char16_t unit) {
    if (unit == u'"')
        return output.Write("\\\"");
    if (unit == u'\\')
        return output.Write("\\\\");
    if (unit == u'\n')
        return output.Write("\\n");
    output.Write(fmt::format("\\u{:04x}", static_cast<unsigned>(unit)));
}

char32_t CombinePair(char16_t high, char16_t low) {
    return 0x10000 + ((static_cast<char32_t>(high) - 0xD800) << 10) + (static_cast<char32_t>(low) - 0xDC00);
}

void WriteCodePoint(Output& output, char32_t point) {
    const auto tail = [point](int shift) { return static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x800) {
        output.Write(static_cast<char>(0xC0 | (point >> 6)));
    } else if (point < 0x10000) {
        output.Write(static_cast<char>(0xE0 | (point >> 12)));
        output.Write(tail(6));
    } else {
        output.Write(static_cast<char>(0xF0 | (point >> 18)));
        output.Write(tail(12));
        output.Write(tail(6));
    }
    output.Write(tail(0));
}

bool NeedsEscape(char16_t unit) {
    return unit < 0x20 || unit == u'"' || unit == u'\\' || unit == 0x7F;
}

/// Returns the number of code units that the character takes.
std::size_t WriteCharacter(Output& output, Tolvex::ustring_view text, std::size_t position) {
    const char16_t unit = text[position];
    if (IsSurrogate(unit) && StartsPair(text, position)) {
        WriteCodePoint(output, CombinePair(unit, text[position + 1]));
        return 2;
    }
    if (IsSurrogate(unit) || NeedsEscape(unit))
        WriteEscape(output, unit);
    else if (unit < 0x80)
        output.Write(static_cast<char>(unit));
    else
        WriteCodePoint(output, unit);
    return 1;
}

} // namespace

void JsonWriter::Key(std::string_view asciiName) {
    Separate();
    output.Write('"');
    output.Write(asciiName);
    output.Write("\":");
    needsComma = false;
}

void JsonWriter::String(Tolvex::ustring_view text) {
    Separate();
    output.Write('"');
    for (std::size_t i = 0; i < text.size();)
        i += WriteCharacter(output, text, i);
    output.Write('"');
    needsComma = true;
}

void JsonWriter::Number(std::uint64_t number) {
    Separate();
    const fmt::format_int digits(number);
    output.Write(std::string_view(digits.data(), digits.size()));
    needsComma = true;
}

void JsonWriter::Real(double number) {
    if (!std::isfinite(number))
        return Null();
    Separate();
    output.Write(fmt::format("{}", number));
    needsComma = true;
}

void JsonWriter::Boolean(bool value) {
    Separate();
    output.Write(value ? "true" : "false");
    needsComma = true;
}

void JsonWriter::Null() {
    Separate();
    output.Write("null");
    needsComma = true;
}

void JsonWriter::Begin(char bracket) {
    Separate();
    output.Write(bracket);
    needsComma = false;
}

void JsonWriter::End(char bracket) {
    output.Write(bracket);
    needsComma = true;
}

void JsonWriter::Separate() {
    if (needsComma)
        output.Write(',');
}

} // namespace TolvexPath
