#pragma once

#include "path_utilities/PathSequence.h"

namespace PathManagement {

/// The entries of one path and behind them those of another, repeated ones included.
class KX_EXPORT ConcatenatedPath final : public PathSequence {
public:
    /// REQUIRES: neither is null.
    ConcatenatedPath(const std::shared_ptr<const IPath>& first, const std::shared_ptr<const IPath>& second);
    ~ConcatenatedPath() override;
};

} // namespace PathManagement
