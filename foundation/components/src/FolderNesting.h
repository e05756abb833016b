#pragma once

#include <algorithm>
#include <filesystem>

namespace TolvexPackages {

/// By their names alone; for canonical ones that is where they lie.
inline bool IsSameOrBelow(const std::filesystem::path& place, const std::filesystem::path& above) {
    return std::mismatch(above.begin(), above.end(), place.begin(), place.end()).first == above.end();
}

} // namespace TolvexPackages
