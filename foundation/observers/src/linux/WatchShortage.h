#pragma once

#include <cstddef>
#include <string>

namespace Tolvex {

/// Which limit a refused watch has met, told to people: its name, its value and the cure. Nothing here changes a limit.
class WatchShortage {
public:
    /// `ownLimit` watches were allowed and are taken.
    [[nodiscard]] static std::string DescribeOwnLimit(std::size_t ownLimit);
    /// The system refuses one more watch.
    [[nodiscard]] static std::string DescribeWatchLimit();
    /// The system refused to make a queue, for the reason `error`.
    [[nodiscard]] static std::string DescribeQueueFailure(int error);
};

} // namespace Tolvex
