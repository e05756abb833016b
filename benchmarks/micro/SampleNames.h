#pragma once

#include "foundation/text/ustring.h"

#include <string>
#include <vector>

namespace KxBenchmarks {

/// File names of ordinary length, no two alike, in an order that is not theirs.
inline std::vector<Tolvex::ustring> MakeSampleNames(std::size_t count) {
    std::vector<Tolvex::ustring> names;
    for (std::size_t i = 0; i != count; ++i)
        names.push_back(Tolvex::FromUtf8("sample" + std::to_string(i * 7919 % 100'003) + "Name.kx"));
    return names;
}

} // namespace KxBenchmarks
