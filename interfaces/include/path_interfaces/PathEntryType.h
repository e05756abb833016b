#pragma once

#include <cstddef>
#include <cstdint>

namespace PathManagement {

/// What kind of folder an entry stands for. The values cross module borders and never change.
enum class PathEntryType : std::uint32_t {
    mainFolder = 0,      ///< a folder named on the path
    packageFolder = 1,   ///< "+name"
    methodFolder = 2,    ///< "@name"
    privateFolder = 3,   ///< "private"
    uddClassFolder = 4,  ///< "@name" below a method folder
    resourcesFolder = 5, ///< "resources"
};

inline constexpr std::size_t pathEntryTypeCount = 6;

} // namespace PathManagement
