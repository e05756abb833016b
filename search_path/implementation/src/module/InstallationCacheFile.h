#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <filesystem>
#include <optional>

namespace PathManagement::detail {

/// Where the path cache of an installation lies unless its user says otherwise: in "tolvex" below the user's folder for
/// caches. The name holds a name-based UUID of the installation folder, which is the same in every process and build.
/// No value when the user has no such folder, or when it lies inside the installation, whose folders the cache records.
[[nodiscard]] std::optional<std::filesystem::path>
FindInstallationCacheFile(const Tolvex::CanonicalAbsoluteIRI& installation);

} // namespace PathManagement::detail
