#pragma once

#include <cstdint>

namespace PathManagement {

/// Whether the current folder stands in front of the path. Any value but the first means that it does not.
enum class CurrentFolderPolicy : std::uint32_t {
    trackWorkingFolder = 0,
    noCurrentFolder = 1,
};

} // namespace PathManagement
