#include "QueryReader.h"

#include "UsageError.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace TolvexPath {

using PathManagement::FilenameMatchingPolicy;
using PathManagement::PathEntryType;
using PathManagement::SearchScope;
namespace json = boost::json;

namespace {

/// The code unit of an escape "\uXXXX" that `text` starts with; 0 for anything else.
char16_t ReadUnicodeEscape(std::string_view text) {
    unsigned unit = 0;
    if (text.size() < 6 || text[1] != 'u')
        return 0;
    const auto end = std::from_chars(text.data() + 2, text.data() + 6, unit, 16).ptr;
    return end == text.data() + 6 ? static_cast<char16_t>(unit) : u'\0';
}

bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool StandsForByte(char16_t unit) {
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

/// Replaces each escape that stands for a byte by that byte: the parser refuses surrogates without a partner, but
/// takes any byte.
std::string ResolveByteEscapes(std::string_view line) {
    std::string resolved;
    resolved.reserve(line.size());
    while (!line.empty()) {
        std::size_t length = line.starts_with('\\') ? std::min<std::size_t>(2, line.size()) : 1;
        if (const char16_t unit = length == 2 ? ReadUnicodeEscape(line) : u'\0'; StandsForByte(unit)) {
            resolved += static_cast<char>(unit & 0xFF);
            line.remove_prefix(6);
            continue;
        } else if (IsHighSurrogate(unit) && line.size() > 6 && line[6] == '\\') {
            length = 12; // with its partner, which must not be taken for a byte
        }
        resolved += line.substr(0, length);
        line.remove_prefix(std::min(length, line.size()));
    }
    return resolved;
}

json::value Parse(std::string_view line, json::storage_ptr storage) {
    json::parse_options options;
    options.allow_invalid_utf8 = true;
    json::error_code error;
    json::value value = line.find('\\') == std::string_view::npos
                            ? json::parse(line, error, std::move(storage), options)
                            : json::parse(ResolveByteEscapes(line), error, std::move(storage), options);
    if (error)
        throw UsageError(fmt::format("not JSON: {}", error.message()));
    return value;
}

Tolvex::ustring ReadText(const json::value& value, const char* what) {
    const json::string* const text = value.if_string();
    if (text == nullptr)
        throw UsageError(fmt::format("{} has to be a text", what));
    return Tolvex::FromUtf8(std::string_view(text->data(), text->size()));
}

const json::array& ReadArray(const json::value& value, const char* what) {
    const json::array* const array = value.if_array();
    if (array == nullptr)
        throw UsageError(fmt::format("{} has to be an array", what));
    return *array;
}

template <typename Enumeration>
Enumeration ReadEnumeration(const json::value& value, std::uint32_t count, const char* what) {
    const std::int64_t* const number = value.if_int64();
    if (number == nullptr || *number < 0 || *number >= count)
        throw UsageError(fmt::format("{} has to be a number from 0 to {}", what, count - 1));
    return static_cast<Enumeration>(*number);
}

std::vector<Tolvex::ustring> ReadExtensions(const json::value& value) {
    std::vector<Tolvex::ustring> extensions;
    for (const json::value& extension : ReadArray(value, "\"extensions\"")) {
        extensions.push_back(ReadText(extension, "an extension"));
        if (!extensions.back().empty() && extensions.back().front() != u'.') // would fit no file
            throw UsageError(
                fmt::format("the extension \"{0}\" has no dot; write \".{0}\"", Tolvex::ToUtf8(extensions.back())));
    }
    return extensions;
}

SearchScope ReadScope(const json::value& value) {
    SearchScope scope;
    for (const json::value& type : ReadArray(value, "\"scope\""))
        scope.Add(ReadEnumeration<PathEntryType>(type, PathManagement::pathEntryTypeCount, "a kind in \"scope\""));
    return scope;
}

bool ReadFlag(const json::value& value) {
    if (!value.is_bool())
        throw UsageError("\"all\" has to be true or false");
    return value.get_bool();
}

void ReadMember(Question& question, std::string_view key, const json::value& value) {
    if (key == "name")
        question.name = ReadText(value, "\"name\"");
    else if (key == "extensions")
        question.extensions = ReadExtensions(value);
    else if (key == "policy")
        question.policy = ReadEnumeration<FilenameMatchingPolicy>(value, 3, "\"policy\"");
    else if (key == "scope")
        question.scope = ReadScope(value);
    else if (key == "all")
        question.all = ReadFlag(value);
    else
        throw UsageError(fmt::format("unknown member \"{}\"", key));
}

} // namespace

Question ReadQuestion(std::string_view line) {
    std::array<unsigned char, 4096> memory; // enough for ordinary questions; more is allocated
    json::monotonic_resource storage(memory.data(), memory.size());
    const json::value value = Parse(line, &storage);
    const json::object* const members = value.if_object();
    if (members == nullptr || !members->contains("name"))
        throw UsageError("not an object with a \"name\"");
    Question question;
    for (const auto& [key, member] : *members)
        ReadMember(question, std::string_view(key.data(), key.size()), member);
    return question;
}

} // namespace TolvexPath
