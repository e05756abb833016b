#include "KernelWatches.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace TolvexPath {

namespace {

namespace files = std::filesystem;

std::uint64_t ReadNumber(const char* fileName) {
    std::uint64_t number = 0;
    std::ifstream(fileName) >> number; // stays 0 when it cannot be read
    return number;
}

/// The entries of a folder; none of one that may not be read or is gone, as processes go.
files::directory_iterator List(const files::path& folder) {
    std::error_code ignored;
    return files::directory_iterator(folder, ignored);
}

std::uint64_t CountIn(const files::path& process) {
    std::uint64_t count = 0;
    std::error_code failure;
    for (auto descriptor = List(process / "fdinfo"); descriptor != files::directory_iterator();
         descriptor.increment(failure)) {
        std::ifstream lines(descriptor->path());
        for (std::string line; std::getline(lines, line);)
            count += line.starts_with("inotify ") ? 1 : 0;
    }
    return count;
}

bool IsProcessOfUser(const files::path& folder, uid_t user) {
    struct stat status {};
    return std::ranges::all_of(folder.filename().native(), [](char c) { return c >= '0' && c <= '9'; }) &&
           ::stat(folder.c_str(), &status) == 0 && status.st_uid == user;
}

} // namespace

KernelWatches CountKernelWatches() {
    KernelWatches watches{"fs.inotify.max_user_watches", ReadNumber("/proc/sys/fs/inotify/max_user_watches"), 0, 0};
    const std::uint64_t ofNamespace = ReadNumber("/proc/sys/user/max_inotify_watches");
    if (ofNamespace != 0 && ofNamespace < watches.limit) {
        watches.setting = "user.max_inotify_watches";
        watches.limit = ofNamespace;
    }
    watches.own = CountIn("/proc/self");
    std::error_code failure;
    for (auto process = List("/proc"); process != files::directory_iterator(); process.increment(failure))
        if (IsProcessOfUser(process->path(), ::geteuid()))
            watches.taken += CountIn(process->path());
    return watches;
}

} // namespace TolvexPath
