#pragma once

#include "foundation/arrays/vxArray.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TolvexPath {

/// A line of the shell that calls a built-in function, as the environment's language writes it:
///
///     Name('text', "text", 2.5, true)
///     [first, second] = Name(...)
///
/// '...' is a row of characters, "..." a string scalar; a quote inside is written twice. Behind the bracket may stand
/// --json, then a comment.
struct BuiltInCall {
    std::vector<std::string> outputs; ///< as they are named; without names one output is asked for
    std::string name;
    std::vector<TolvexArrays::ArrayOwner> inputs;
    bool wantsJson = false;
};

/// Whether a line is meant as such a call.
[[nodiscard]] bool IsBuiltInCall(std::string_view line);

/// REQUIRES: IsBuiltInCall. Throws UsageError that says where the line is none.
[[nodiscard]] BuiltInCall ReadBuiltInCall(std::string_view line);

/// A call that is being typed in, up to its first input.
struct OpenCall {
    std::string_view name;
    std::size_t inputStart = 0; ///< where the first input begins on the line, with its quote
    char quote = 0;             ///< which one it begins with; 0 for none so far
    std::string_view text;      ///< of the input, so far
};

/// No value when the line's end is not in the first input of a call, or that is no text.
[[nodiscard]] std::optional<OpenCall> ReadOpenCall(std::string_view line);

} // namespace TolvexPath
