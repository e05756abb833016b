#include "shell/HistoryFile.h"

#include "Messages.h"

#include <cstdlib>
#include <filesystem>

namespace TolvexPath {

namespace fs = std::filesystem;

namespace {

/// A relative path there means nothing.
fs::path GetFolder(const char* variable) {
    const char* const value = std::getenv(variable);
    const fs::path folder = value == nullptr ? "" : value;
    return folder.is_absolute() ? folder : fs::path();
}

} // namespace

std::optional<std::string> PrepareHistoryFile() {
    fs::path folder = GetFolder("XDG_STATE_HOME");
    if (folder.empty()) {
        const fs::path home = GetFolder("HOME");
        if (home.empty())
            return std::nullopt;
        folder = home / ".local" / "state";
    }
    folder /= programName;
    std::error_code error;
    if (fs::create_directories(folder, error))
        fs::permissions(folder, fs::perms::owner_all, error);
    return error ? std::nullopt : std::optional<std::string>(folder / "history");
}

} // namespace TolvexPath
