#include "foundation/arrays/vxArray.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <variant>

namespace {

using Strings = std::vector<std::optional<Tolvex::ustring>>;
using Contents = std::variant<Tolvex::ustring, Strings, double, bool>; // in the order of ArrayKind

} // namespace

struct vxArray {
    std::size_t rowCount;
    std::size_t columnCount;
    Contents contents;
};

namespace TolvexArrays {

namespace {

ArrayOwner Make(std::size_t rowCount, std::size_t columnCount, Contents contents) {
    return ArrayOwner(std::make_unique<vxArray>(vxArray{rowCount, columnCount, std::move(contents)}).release());
}

template <class Value>
std::optional<Value> GetValue(const vxArray& array) noexcept {
    const Value* const value = std::get_if<Value>(&array.contents);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

} // namespace

void DestroyArray(vxArray* array) noexcept {
    const std::unique_ptr<vxArray> last(array);
}

ArrayOwner MakeCharacterVector(ustring_view text) {
    return Make(1, text.size(), ustring(text));
}

ArrayOwner MakeCharacterMatrix(std::span<const ustring> rows) {
    const std::size_t columnCount = rows.empty() ? 0 : rows.front().size();
    ustring characters;
    characters.reserve(rows.size() * columnCount);
    for (const ustring& row : rows) {
        if (row.size() != columnCount)
            throw std::invalid_argument("the rows of a character array have one length");
        characters += row;
    }
    return Make(rows.size(), columnCount, std::move(characters));
}

ArrayOwner MakeStringScalar(std::optional<ustring> text) {
    return Make(1, 1, Strings{std::move(text)});
}

ArrayOwner MakeStringColumn(std::vector<std::optional<ustring>> texts) {
    const std::size_t rowCount = texts.size();
    return Make(rowCount, 1, std::move(texts));
}

ArrayOwner MakeNumericScalar(double number) {
    return Make(1, 1, number);
}

ArrayOwner MakeLogicalScalar(bool truth) {
    return Make(1, 1, truth);
}

ArrayKind GetKind(const vxArray& array) noexcept {
    return static_cast<ArrayKind>(array.contents.index());
}

std::size_t GetRowCount(const vxArray& array) noexcept {
    return array.rowCount;
}

std::size_t GetColumnCount(const vxArray& array) noexcept {
    return array.columnCount;
}

ustring_view GetCharacters(const vxArray& array) noexcept {
    const auto* const characters = std::get_if<ustring>(&array.contents);
    return characters == nullptr ? ustring_view() : ustring_view(*characters);
}

std::span<const std::optional<ustring>> GetStrings(const vxArray& array) noexcept {
    const auto* const strings = std::get_if<Strings>(&array.contents);
    return strings == nullptr ? std::span<const std::optional<ustring>>() : std::span(*strings);
}

std::optional<ustring_view> GetScalarText(const vxArray& array) noexcept {
    if (!String::isNonMissingScalarText(array))
        return std::nullopt;
    return GetKind(array) == ArrayKind::character ? GetCharacters(array) : ustring_view(*GetStrings(array).front());
}

std::optional<double> GetNumber(const vxArray& array) noexcept {
    return GetValue<double>(array);
}

std::optional<bool> GetTruth(const vxArray& array) noexcept {
    return GetValue<bool>(array);
}

namespace String {

bool isNonMissingScalarText(const vxArray& array) noexcept {
    if (GetKind(array) == ArrayKind::character)
        return array.rowCount == 1 || (array.rowCount == 0 && array.columnCount == 0);
    const auto strings = GetStrings(array);
    return strings.size() == 1 && strings.front().has_value();
}

} // namespace String

} // namespace TolvexArrays
