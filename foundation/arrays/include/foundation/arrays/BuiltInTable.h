#pragma once

#include "foundation/arrays/vxArray.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace TolvexArrays {

/// A built-in function as the interpreter calls it.
///
/// `outputs` has room for `outputCount` arrays, but for one at least, since a call that requests none still may leave
/// an answer; all of them are null at first. What the function puts there belongs to the caller, also when it
/// throws afterwards. `inputs` holds `inputCount` arrays, none of them null, which stay the caller's and are not
/// changed. Errors are thrown: HostError and other exceptions that carry a message identifier. For the interpreter's
/// thread.
using Gateway = void(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// A built-in function and its name in the language.
struct BuiltIn {
    std::string_view name;
    Gateway* gateway;
};

/// By what name a host's interpreter calls which built-in function. Names are told apart by case. For one thread at a
/// time.
class KX_EXPORT BuiltInTable {
public:
    /// Takes in all of them, or none: throws std::invalid_argument for a name that is taken already, an empty one, and
    /// a null gateway.
    void Add(std::span<const BuiltIn> builtIns);

    /// Null when there is no function of that name.
    [[nodiscard]] Gateway* Find(std::string_view name) const;

    /// Calls a function as an interpreter does. The result has a place for each requested output, but for one at least;
    /// null where the function set none. What the function throws passes through, and what it had put out is freed.
    /// Throws HostError ("TOLVEX:arguments", `unknownFunction`) for a name that is not in the table.
    std::vector<ArrayOwner> Call(std::string_view name, std::size_t outputCount,
                                 std::span<const ArrayOwner> inputs) const;

private:
    std::map<std::string, Gateway*, std::less<>> gateways;
};

} // namespace TolvexArrays
