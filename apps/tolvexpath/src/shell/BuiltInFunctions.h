#pragma once

#include <span>
#include <string>
#include <string_view>

namespace TolvexPath {

class ShellContext;

/// What people are told about a built-in function. The texts live as long as the program.
struct BuiltInFunction {
    std::string_view name;
    std::string_view usage; ///< its inputs, and names for its outputs where there are several
    std::string_view summary;
    std::string_view details;
    std::string_view options; ///< what its first input may be, with blanks between them; may be empty
};

/// All that the search path's library has, in its order.
[[nodiscard]] std::span<const BuiltInFunction> GetBuiltInFunctions();

/// Null when there is none of that name; case counts.
[[nodiscard]] const BuiltInFunction* FindBuiltInFunction(std::string_view name);

/// Makes the call that a line is, and shows what it gives. Reports an error of the function with its identifier; false
/// then. Throws UsageError for a line that is no call, or calls what there is not.
[[nodiscard]] bool CallBuiltInFunction(ShellContext& context, std::string_view line);

} // namespace TolvexPath
