#include "linux/ProcessLinks.h"

#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace Tolvex {

namespace {

/// What a link of the process file system leads to; empty when it cannot be read.
std::string ReadLink(const char* link) {
    std::string target(256, '\0');
    while (true) {
        const ssize_t length = ::readlink(link, target.data(), target.size());
        if (length < 0)
            return {};
        if (static_cast<std::size_t>(length) < target.size()) {
            target.resize(static_cast<std::size_t>(length));
            return target;
        }
        target.resize(2 * target.size());
    }
}

/// The kernel marks what was deleted behind its former name.
std::string WithoutDeletedMark(std::string path) {
    constexpr std::string_view mark = " (deleted)";
    if (path.ends_with(mark))
        path.resize(path.size() - mark.size());
    return path;
}

} // namespace

std::optional<std::string> GetProgramPath() {
    std::string path = ReadLink("/proc/self/exe");
    return path.starts_with('/') ? std::optional(std::move(path)) : std::nullopt;
}

std::string GetWorkingFolderPath(std::error_code& error) {
    error.clear();
    std::string path(256, '\0');
    while (::getcwd(path.data(), path.size()) == nullptr) {
        if (errno != ERANGE) {
            error.assign(errno, std::generic_category());
            return WithoutDeletedMark(ReadLink("/proc/self/cwd"));
        }
        path.resize(2 * path.size());
    }
    path.resize(path.find('\0'));
    return path;
}

std::error_code SetWorkingFolderPath(const std::string& path) {
    return ::chdir(path.c_str()) == 0 ? std::error_code() : std::error_code(errno, std::generic_category());
}

} // namespace Tolvex
