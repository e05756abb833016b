#include "path_utilities/DeduplicatedPath.h"

#include <utility>

namespace PathManagement {

DeduplicatedPath::DeduplicatedPath(std::vector<std::shared_ptr<const IPath>>&& paths)
    : PathSequence(std::move(paths), Repeats::dropped) {}

DeduplicatedPath::~DeduplicatedPath() = default;

} // namespace PathManagement
