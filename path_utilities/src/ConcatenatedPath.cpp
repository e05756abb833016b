#include "path_utilities/ConcatenatedPath.h"

namespace PathManagement {

ConcatenatedPath::ConcatenatedPath(const std::shared_ptr<const IPath>& first,
                                   const std::shared_ptr<const IPath>& second)
    : PathSequence({first, second}, Repeats::kept) {}

ConcatenatedPath::~ConcatenatedPath() = default;

} // namespace PathManagement
