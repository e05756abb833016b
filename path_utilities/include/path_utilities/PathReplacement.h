#pragma once

#include "path_interfaces/IPathFactory.h"

namespace PathManagement {

/// A path like `previous`, where each of `replacements` stands in the place of the main entry in the same place of
/// `replaced`. With a factory that is an IPathDerivation, too, and made `previous`, this costs what comes new.
/// REQUIRES: no null entry, lists of one length, each of `replaced` once.
[[nodiscard]] KX_EXPORT std::shared_ptr<const IPath>
CreatePathWithReplacements(const IPathFactory& factory, const std::shared_ptr<const IPath>& previous,
                           const PathEntryVector& replaced, const PathEntryVector& replacements);

} // namespace PathManagement
