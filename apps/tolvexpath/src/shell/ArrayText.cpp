#include "shell/ArrayText.h"

#include "DisplayText.h"
#include "JsonWriter.h"
#include "Output.h"

#include <fmt/format.h>

#include <vector>

namespace TolvexPath {

using Tolvex::ustring;
using Tolvex::ustring_view;
using TolvexArrays::ArrayKind;
using TolvexArrays::ArrayOwner;

namespace {

/// The rows of a matrix of characters or the elements of a string array.
std::vector<std::optional<ustring>> GetTexts(const vxArray& array) {
    if (TolvexArrays::GetKind(array) == ArrayKind::string) {
        const auto texts = TolvexArrays::GetStrings(array);
        return {texts.begin(), texts.end()};
    }
    std::vector<std::optional<ustring>> rows;
    const std::size_t width = TolvexArrays::GetColumnCount(array);
    for (std::size_t row = 0; row < TolvexArrays::GetRowCount(array); ++row)
        rows.emplace_back(TolvexArrays::GetCharacters(array).substr(row * width, width));
    return rows;
}

void AppendLines(std::vector<std::string>& lines, ustring_view text) {
    for (std::size_t end = text.find(u'\n'); end != text.npos; end = text.find(u'\n')) {
        lines.push_back(ToDisplayText(text.substr(0, end)));
        text.remove_prefix(end + 1);
    }
    if (!text.empty())
        lines.push_back(ToDisplayText(text));
}

std::vector<std::string> GetLines(const vxArray& array) {
    if (const auto number = TolvexArrays::GetNumber(array))
        return {fmt::format("{}", *number)};
    if (const auto truth = TolvexArrays::GetTruth(array))
        return {*truth ? "true" : "false"};
    std::vector<std::string> lines;
    for (const auto& text : GetTexts(array)) {
        if (text)
            AppendLines(lines, *text);
        else
            lines.emplace_back("<missing>");
    }
    return lines;
}

void WriteTexts(JsonWriter& json, const vxArray& array) {
    const auto write = [&json](const std::optional<ustring>& text) { return text ? json.String(*text) : json.Null(); };
    const auto texts = GetTexts(array);
    const bool isEmptyText = TolvexArrays::GetKind(array) == ArrayKind::character && texts.empty();
    // A list of one text is that text, in the language, too.
    if (texts.size() == 1 || isEmptyText)
        return isEmptyText ? json.String(u"") : write(texts.front());
    json.BeginArray();
    for (const auto& text : texts)
        write(text);
    json.EndArray();
}

void WriteValue(JsonWriter& json, const vxArray* array) {
    if (array == nullptr)
        json.Null();
    else if (const auto number = TolvexArrays::GetNumber(*array))
        json.Real(*number);
    else if (const auto truth = TolvexArrays::GetTruth(*array))
        json.Boolean(*truth);
    else
        WriteTexts(json, *array);
}

} // namespace

void ShowArrays(Output& output, std::span<const std::string> names, std::span<const ArrayOwner> arrays) {
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        if (arrays[i] == nullptr)
            continue;
        if (!names.empty())
            output.Write(names[i] + ":\n");
        for (const std::string& line : GetLines(*arrays[i]))
            output.Write(fmt::format("{}{}\n", names.empty() ? "" : "  ", line));
    }
}

void WriteArraysJson(Output& output, std::span<const std::string> names, std::span<const ArrayOwner> arrays) {
    JsonWriter json(output);
    if (names.empty()) {
        WriteValue(json, arrays.front().get());
    } else {
        json.BeginObject();
        for (std::size_t i = 0; i < names.size(); ++i) {
            json.Key(names[i]);
            WriteValue(json, arrays[i].get());
        }
        json.EndObject();
    }
    output.Write('\n');
}

} // namespace TolvexPath
