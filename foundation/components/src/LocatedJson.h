#pragma once

#include "foundation/components/PackageError.h"

#include <cstdint>
#include <string_view>
#include <variant>
#include <vector>

namespace TolvexPackages {

struct LocatedMember;

/// A JSON value that knows the line on which it ends, an array or object the one on which it begins.
struct LocatedValue {
    using Array = std::vector<LocatedValue>;
    using Object = std::vector<LocatedMember>; // in the order of the file, each name once

    std::size_t line = 0;
    // Not initialised here: that would need LocatedMember whole.
    std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object> value;
};

struct LocatedMember {
    std::string name;
    std::size_t line = 0;
    LocatedValue value{};
};

/// Reads a whole file as one JSON value. Throws PackageError with the file's name and, where the text is no JSON or has
/// one name twice in an object, the line.
[[nodiscard]] LocatedValue ReadLocatedJson(const std::string& fileName);

/// Reads `text` as the contents of a file that is called `fileName` in messages.
[[nodiscard]] LocatedValue ParseLocatedJson(std::string_view text, const std::string& fileName);

/// Takes a JSON object apart; every way in which it is not as expected is a PackageError with file and line.
class LocatedObject {
public:
    /// `value` and `fileName` outlive this object. Refuses what is no object; `name` is what the message calls it.
    LocatedObject(const LocatedValue& value, const std::string& fileName, std::string_view name);

    /// Null when there is none of that name.
    [[nodiscard]] const LocatedValue* Find(std::string_view name) const;
    [[nodiscard]] const LocatedValue& Get(std::string_view name) const;
    [[nodiscard]] const std::string& GetText(std::string_view name) const;
    [[nodiscard]] std::uint64_t GetCount(std::string_view name) const;
    [[nodiscard]] bool GetTruth(std::string_view name) const;
    [[nodiscard]] const LocatedValue::Array& GetArray(std::string_view name) const;

    /// Refuses a member whose name is none of `known`: a name spelled wrongly would be passed over in silence.
    void RefuseOthers(std::initializer_list<std::string_view> known) const;

    [[nodiscard]] const LocatedValue::Object& GetMembers() const noexcept { return *members; }
    [[noreturn]] void Refuse(std::size_t line, std::string reason) const;

private:
    template <class Type>
    const Type& GetAs(std::string_view name, std::string_view typeName) const;

    const LocatedValue* whole;
    const LocatedValue::Object* members;
    const std::string* fileName;
};

} // namespace TolvexPackages
