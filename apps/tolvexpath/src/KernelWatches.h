#pragma once

#include <cstdint>
#include <string>

namespace TolvexPath {

/// How many of the kernel's folder watches are taken, and the limit that is met first.
struct KernelWatches {
    std::string setting;     ///< the limit's name as administrators know it
    std::uint64_t limit = 0; ///< for all processes of one user; 0 when the system does not tell
    std::uint64_t taken = 0; ///< by this user's processes, as far as they may be looked at
    std::uint64_t own = 0;   ///< by this process
};

[[nodiscard]] KernelWatches CountKernelWatches();

} // namespace TolvexPath
