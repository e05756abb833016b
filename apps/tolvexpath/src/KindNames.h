#pragma once

#include "path_interfaces/PathEntryType.h"

#include <array>
#include <string_view>
#include <utility>

namespace TolvexPath {

/// The words by which command lines and results name the kinds of folders.
inline constexpr std::array<std::pair<std::string_view, PathManagement::PathEntryType>,
                            PathManagement::pathEntryTypeCount>
    kindNames = {{
        {"main", PathManagement::PathEntryType::mainFolder},
        {"package", PathManagement::PathEntryType::packageFolder},
        {"method", PathManagement::PathEntryType::methodFolder},
        {"private", PathManagement::PathEntryType::privateFolder},
        {"udd", PathManagement::PathEntryType::uddClassFolder},
        {"resources", PathManagement::PathEntryType::resourcesFolder},
    }};

[[nodiscard]] constexpr std::string_view GetKindName(PathManagement::PathEntryType kind) {
    for (const auto& [name, named] : kindNames)
        if (named == kind)
            return name;
    return "unknown";
}

} // namespace TolvexPath
