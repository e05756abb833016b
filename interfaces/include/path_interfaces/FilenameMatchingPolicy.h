#pragma once

#include <cstdint>

namespace PathManagement {

/// Which of an entry's file-name matchers decides whether a name is meant.
enum class FilenameMatchingPolicy : std::uint32_t {
    exact = 0,
    ignoreCase = 1,
    native = 2, ///< as the file system of the entry's folder does
};

} // namespace PathManagement
