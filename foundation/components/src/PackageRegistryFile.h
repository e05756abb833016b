#pragma once

#include "foundation/components/PackageManifest.h"

namespace TolvexPackages {

/// What is recorded of one installed package.
struct RecordedPackage {
    PackageManifest manifest; ///< as it was when the package was installed or looked at last
    std::string folder;       ///< of a managed package the name in the store's folder, else an absolute path
    std::uint64_t order = 0;
    bool isManaged = true;
    bool isAskedFor = true;

    bool operator==(const RecordedPackage&) const = default;
};

/// All that the registry file holds.
struct RecordedPackages {
    std::uint64_t nextNumber = 1; ///< given to each installation, never twice
    std::vector<RecordedPackage> packages;

    /// Names in the store's folder that belong to no package: what is being copied, and what is left to be removed.
    std::vector<std::string> leftovers;

    bool operator==(const RecordedPackages&) const = default;
};

/// Reads the registry file; nothing is recorded where there is none. Throws PackageError for one that is broken.
[[nodiscard]] RecordedPackages ReadRegistryFile(const std::filesystem::path& file);

/// Replaces the registry file whole or not at all. Throws std::filesystem::filesystem_error.
void WriteRegistryFile(const std::filesystem::path& file, const RecordedPackages& recorded);

} // namespace TolvexPackages
