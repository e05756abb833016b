#include "LocatedJson.h"

#include <boost/json/basic_parser_impl.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

namespace TolvexPackages {

namespace json = boost::json;
using ErrorCode = json::error_code;

namespace {

std::string Quote(std::string_view name) {
    return '\'' + std::string(name) + '\'';
}

/// Builds the value from what the parser meets. It is fed line by line, and so knows where everything stands.
class ValueBuilder {
public:
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = max_object_size;
    static constexpr std::size_t max_key_size = max_object_size;
    static constexpr std::size_t max_string_size = max_object_size;

    void SetLine(std::size_t number) noexcept { line = number; }
    [[nodiscard]] const std::string& GetRefusal() const noexcept { return refusal; }
    [[nodiscard]] LocatedValue TakeValue() { return std::move(root); }

    // The names are the parser's.
    bool on_document_begin(ErrorCode&) { return true; }
    bool on_document_end(ErrorCode&) { return true; }
    bool on_array_begin(ErrorCode&) { return Open(LocatedValue::Array()); }
    bool on_array_end(std::size_t, ErrorCode&) { return Close(); }
    bool on_object_begin(ErrorCode&) { return Open(LocatedValue::Object()); }
    bool on_object_end(std::size_t, ErrorCode&) { return Close(); }
    bool on_string_part(json::string_view part, std::size_t, ErrorCode&) { return Collect(part); }
    bool on_string(json::string_view part, std::size_t, ErrorCode&) {
        Collect(part);
        Put(std::exchange(text, {}));
        return true;
    }
    bool on_key_part(json::string_view part, std::size_t, ErrorCode&) { return Collect(part); }
    bool on_key(json::string_view part, std::size_t, ErrorCode& error) {
        Collect(part);
        auto& members = std::get<LocatedValue::Object>(open.back()->value);
        if (std::any_of(members.begin(), members.end(), [this](const auto& member) { return member.name == text; })) {
            refusal = Quote(text) + " stands there twice";
            error = json::error::syntax;
            return false;
        }
        members.push_back({.name = std::exchange(text, {}), .line = line});
        return true;
    }
    bool on_number_part(json::string_view part, ErrorCode&) { return Collect(part); }
    bool on_int64(std::int64_t number, json::string_view, ErrorCode&) {
        text.clear();
        return Put(number) != nullptr;
    }
    bool on_uint64(std::uint64_t, json::string_view part, ErrorCode& error) { return PutReal(part, error); }
    bool on_double(double, json::string_view part, ErrorCode& error) { return PutReal(part, error); }
    bool on_bool(bool truth, ErrorCode&) { return Put(truth) != nullptr; }
    bool on_null(ErrorCode&) { return Put(nullptr) != nullptr; }
    bool on_comment_part(json::string_view, ErrorCode&) { return true; }
    bool on_comment(json::string_view, ErrorCode&) { return true; }

private:
    template <class Type>
    LocatedValue* Put(Type value) {
        LocatedValue& place = FindPlace();
        place.line = line;
        place.value = std::move(value);
        return &place;
    }

    LocatedValue& FindPlace() {
        if (open.empty())
            return root;
        if (auto* const array = std::get_if<LocatedValue::Array>(&open.back()->value))
            return array->emplace_back();
        return std::get<LocatedValue::Object>(open.back()->value).back().value;
    }

    /// From the text: the parser's own value is a little off for every tenth number, and endless for a large one.
    bool PutReal(json::string_view part, ErrorCode& error) {
        Collect(part);
        const std::string digits = std::exchange(text, {});
        double number = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) {
            refusal = Quote(digits) + " is too large or too small a number";
            error = json::error::syntax;
            return false;
        }
        return Put(number) != nullptr;
    }

    /// What is open does not move: nothing is added beside it until it is closed.
    template <class Container>
    bool Open(Container empty) {
        open.push_back(Put(std::move(empty)));
        return true;
    }
    bool Close() {
        open.pop_back();
        return true;
    }
    bool Collect(json::string_view part) {
        text.append(part.data(), part.size());
        return true;
    }

    LocatedValue root;
    std::vector<LocatedValue*> open; // from the root to the innermost
    std::string text;                // of a string or name that has not ended
    std::string refusal;
    std::size_t line = 0;
};

} // namespace

LocatedValue ParseLocatedJson(std::string_view text, const std::string& fileName) {
    json::basic_parser<ValueBuilder> parser{json::parse_options()};
    std::size_t line = 0;
    constexpr std::string_view mark = "\xEF\xBB\xBF"; // that some editors put in front of UTF-8
    text.remove_prefix(text.starts_with(mark) ? mark.size() : 0);
    for (bool more = true; more;) {
        const std::size_t end =
            std::min(text.find('\n'), text.size() - (text.empty() ? 0 : 1)) + (text.empty() ? 0 : 1);
        more = end < text.size();
        parser.handler().SetLine(++line);
        ErrorCode error;
        const std::size_t read = parser.write_some(more, text.data(), end, error);
        if (!error && read < end)
            error = json::error::extra_data;
        if (error) {
            const std::string& refusal = parser.handler().GetRefusal();
            throw PackageError({fileName, line, refusal.empty() ? "this is no JSON: " + error.message() : refusal});
        }
        text.remove_prefix(end);
    }
    return parser.handler().TakeValue();
}

LocatedValue ReadLocatedJson(const std::string& fileName) {
    errno = 0;
    std::ifstream file(fileName, std::ios::binary);
    std::string text;
    try {
        if (file.is_open())
            text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    } catch (const std::ios_base::failure&) { // the buffer throws whatever the stream is told
        file.setstate(std::ios::badbit);
    }
    if (!file.is_open() || file.bad())
        throw PackageError({fileName, 0, "cannot be read: " + std::generic_category().message(errno)});
    return ParseLocatedJson(text, fileName);
}

LocatedObject::LocatedObject(const LocatedValue& value, const std::string& fileName, std::string_view name)
    : whole(&value), members(std::get_if<LocatedValue::Object>(&value.value)), fileName(&fileName) {
    if (members == nullptr)
        Refuse(value.line, std::string(name) + " has to be an object, { ... }");
}

const LocatedValue* LocatedObject::Find(std::string_view name) const {
    const auto found =
        std::find_if(members->begin(), members->end(), [name](const auto& member) { return member.name == name; });
    return found == members->end() ? nullptr : &found->value;
}

const LocatedValue& LocatedObject::Get(std::string_view name) const {
    if (const LocatedValue* const found = Find(name))
        return *found;
    Refuse(whole->line, Quote(name) + " is missing");
}

template <class Type>
const Type& LocatedObject::GetAs(std::string_view name, std::string_view typeName) const {
    const LocatedValue& found = Get(name);
    if (const Type* const value = std::get_if<Type>(&found.value))
        return *value;
    Refuse(found.line, Quote(name) + " has to be " + std::string(typeName));
}

const std::string& LocatedObject::GetText(std::string_view name) const {
    return GetAs<std::string>(name, "text");
}

std::uint64_t LocatedObject::GetCount(std::string_view name) const {
    const auto number = GetAs<std::int64_t>(name, "a whole number");
    if (number < 0)
        Refuse(Get(name).line, Quote(name) + " has to be a whole number from 0 on");
    return static_cast<std::uint64_t>(number);
}

bool LocatedObject::GetTruth(std::string_view name) const {
    return GetAs<bool>(name, "true or false");
}

const LocatedValue::Array& LocatedObject::GetArray(std::string_view name) const {
    return GetAs<LocatedValue::Array>(name, "a list, [ ... ]");
}

void LocatedObject::RefuseOthers(std::initializer_list<std::string_view> known) const {
    for (const auto& member : *members) {
        if (std::find(known.begin(), known.end(), member.name) == known.end())
            Refuse(member.line, Quote(member.name) + " is not known here");
    }
}

void LocatedObject::Refuse(std::size_t line, std::string reason) const {
    throw PackageError({*fileName, line, std::move(reason)});
}

} // namespace TolvexPackages
