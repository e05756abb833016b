#include "PackagesFolder.h"

#include "UsageError.h"

#include <cstdlib>

namespace TolvexPath {

namespace fs = std::filesystem;

namespace {

std::string GetVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

/// Relative values count as none, as the desktops' agreement on such folders has it.
fs::path GetUserDataFolder() {
    if (fs::path data = GetVariable("XDG_DATA_HOME"); data.is_absolute())
        return data;
    if (const fs::path home = GetVariable("HOME"); home.is_absolute())
        return home / ".local" / "share";
    throw UsageError(
        "where packages are installed is not known: name the folder with --packages, or in the environment "
        "variable TOLVEX_PACKAGES");
}

} // namespace

fs::path GetPackagesFolder(const std::string& named) {
    const auto folder = FindPackagesFolder(named);
    return folder ? *folder : GetUserDataFolder() / "tolvex" / "packages";
}

std::optional<fs::path> FindPackagesFolder(const std::string& named) {
    if (!named.empty())
        return fs::absolute(named);
    if (const std::string variable = GetVariable("TOLVEX_PACKAGES"); !variable.empty())
        return fs::absolute(variable);
    return std::nullopt;
}

} // namespace TolvexPath
