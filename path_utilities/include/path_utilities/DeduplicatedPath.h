#pragma once

#include "path_utilities/PathSequence.h"

namespace PathManagement {

/// Several paths in their order, each folder only where it stands first: a later entry of the same location is not
/// there for any question, also when it is another object or another kind of entry.
///
/// Costs a look-up nothing beyond those in the paths, unless a folder stands on two of them as different objects.
class KX_EXPORT DeduplicatedPath final : public PathSequence {
public:
    /// REQUIRES: no null path, and none that holds one folder twice by itself.
    explicit DeduplicatedPath(std::vector<std::shared_ptr<const IPath>>&& paths);
    ~DeduplicatedPath() override;
};

} // namespace PathManagement
