#pragma once

#include "path_interfaces/IPath.h"

namespace PathManagement {

/// What a path factory may offer beside IPathFactory. Safe from any thread.
class IPathDerivation {
public:
    virtual ~IPathDerivation() = default;

    /// A path like `previous`, where each of `replacements` stands in the place of the main entry in the same place of
    /// `replaced`. Costs what comes new, however long the path is; the list of main entries is made when it is first
    /// asked for. Null when `previous` is not of this factory, or when one of `replaced` is not the first main entry of
    /// its folder. REQUIRES: no null entry, lists of one length, each of `replaced` once.
    [[nodiscard]] virtual std::shared_ptr<const IPath> DerivePath(const std::shared_ptr<const IPath>& previous,
                                                                  const PathEntryVector& replaced,
                                                                  const PathEntryVector& replacements) const = 0;
};

} // namespace PathManagement
