#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace TolvexPath {

/// The folder of installed packages: `named` when it is not empty, else what the environment variable TOLVEX_PACKAGES
/// says, else "tolvex/packages" in the user's data folder (XDG_DATA_HOME, or ".local/share" in HOME). Need not exist.
/// Throws UsageError when none of these is known.
[[nodiscard]] std::filesystem::path GetPackagesFolder(const std::string& named);

/// The same without the user's data folder: no value when neither a person nor the environment names a folder.
[[nodiscard]] std::optional<std::filesystem::path> FindPackagesFolder(const std::string& named);

} // namespace TolvexPath
