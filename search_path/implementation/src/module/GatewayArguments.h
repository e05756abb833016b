#pragma once

#include "foundation/arrays/HostError.h"
#include "foundation/arrays/vxArray.h"
#include "foundation/text/CaseFolding.h"

#include <optional>
#include <span>

/// What the gateways of built-in functions share.
namespace PathManagement::detail {

using Tolvex::ustring;
using Tolvex::ustring_view;

struct ArgumentLimits {
    int maxOutputs;
    int minInputs;
    int maxInputs;
};

inline void CheckArgumentCounts(int outputCount, int inputCount, const ArgumentLimits& limits) {
    if (outputCount > limits.maxOutputs)
        TolvexArrays::error_maxlhs();
    if (inputCount > limits.maxInputs)
        TolvexArrays::error_maxrhs();
    if (inputCount < limits.minInputs)
        TolvexArrays::error_minrhs();
}

/// The place of the word that the option is, whatever its case; no value for another word and for what is no text.
[[nodiscard]] inline std::optional<std::size_t> FindOption(std::span<const ustring_view> words, const vxArray& option) {
    const auto text = TolvexArrays::GetScalarText(option);
    for (std::size_t i = 0; text && i != words.size(); ++i)
        if (Tolvex::EqualIgnoringCase(*text, words[i]))
            return i;
    return std::nullopt;
}

} // namespace PathManagement::detail
