#pragma once

#include <cstdint>

namespace PathManagement {

/// Which alterations of the path a manager allows. Any other value is a programming error.
enum class PathManagerMutabilityPolicy : std::uint32_t {
    allAlterations = 0,
    noAddingOrRemoving = 1, ///< another order and fresh contents only
};

} // namespace PathManagement
