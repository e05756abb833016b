#pragma once

#include "foundation/components/PackageError.h"
#include "foundation/components/PackageRecord.h"

#include <filesystem>

namespace TolvexPackages {

/// What a package says of itself in the file `package.json` in its root folder:
///
///     {
///         "name": "signals",
///         "version": "1.4.0",
///         "id": "6f1c9a52-0c7e-4b5e-9d0a-3f6f2a1f8b11",
///         "folders": [".", "filters"],
///         "properties": {"PathPosition": "begin"}
///     }
///
/// "folders" and "properties" may be missing. A value; safe from any thread.
struct PackageManifest {
    static constexpr std::string_view fileName = "package.json";

    ComponentIdentifier identifier;

    /// UTF-8, relative to the root folder, which comes first as ".". None leads out of it.
    std::vector<std::string> folders{"."};

    /// The author's. Not among them is `manualInstallProperty`, which is set by installing.
    std::map<std::string, PropertyValue, std::less<>> properties{};

    /// The same in everything, the name included.
    KX_EXPORT friend bool operator==(const PackageManifest& a, const PackageManifest& b);
};

/// Reads the manifest of the package in `root` and looks at the folders it names. Throws PackageError, with file, line
/// and reason, for a manifest that is missing, broken, or names a folder that is not there or not inside `root`, links
/// followed.
[[nodiscard]] KX_EXPORT PackageManifest ReadPackageManifest(const std::filesystem::path& root);

} // namespace TolvexPackages
