#include "foundation/components/ComponentVersion.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace TolvexComponents {

using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

std::optional<std::uint32_t> ReadNumber(std::string_view digits) {
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<ComponentVersion::Numbers> ReadNumbers(std::string_view text) {
    ComponentVersion::Numbers numbers{};
    for (auto& number : numbers) {
        const std::size_t dot = text.find('.');
        const auto read = ReadNumber(text.substr(0, dot));
        if (!read)
            return std::nullopt;
        number = *read;
        if (dot == std::string_view::npos)
            return numbers;
        text.remove_prefix(dot + 1);
    }
    return std::nullopt; // more than three
}

bool IsPreReleaseMark(std::string_view text) {
    constexpr std::string_view allowed = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-";
    return !text.empty() && text.find_first_not_of(allowed) == std::string_view::npos;
}

} // namespace

ComponentVersion::ComponentVersion(Numbers numbers, ustring preRelease) noexcept
    : numbers(numbers), preRelease(std::move(preRelease)) {}

std::optional<ComponentVersion> ComponentVersion::fromString(ustring_view text) {
    const std::string bytes = Tolvex::ToUtf8(text);
    const std::string_view whole = bytes;
    const std::size_t dash = whole.find('-');
    const auto numbers = ReadNumbers(whole.substr(0, dash));
    if (!numbers)
        return std::nullopt;
    if (dash == std::string_view::npos)
        return ComponentVersion(*numbers);
    const std::string_view mark = whole.substr(dash + 1);
    return IsPreReleaseMark(mark) ? std::optional(ComponentVersion(*numbers, Tolvex::FromUtf8(mark))) : std::nullopt;
}

ustring ComponentVersion::toString() const {
    const auto [major, minor, patch] = numbers;
    ustring version =
        Tolvex::FromUtf8(std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch));
    return preRelease.empty() ? version : version.append(u"-").append(preRelease);
}

std::size_t ComponentVersion::hashValue() const noexcept {
    std::size_t hash = std::hash<ustring_view>()(preRelease);
    for (const auto number : numbers)
        hash = 31 * hash + number;
    return hash;
}

} // namespace TolvexComponents
