#include "WatchShortage.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

namespace Tolvex {
namespace {

constexpr const char* consequence = " Changes of the remaining folders are still found, by looking at each folder "
                                    "whenever it is asked for, which takes "
                                    "longer.";

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// No value when the system does not tell, or no file can be opened at all.
std::optional<std::string> ReadSetting(const std::string& name) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(("/proc/sys/fs/inotify/" + name).c_str(), "re"));
    unsigned long value = 0;
    if (file && std::fscanf(file.get(), "%lu", &value) == 1)
        return std::to_string(value);
    return std::nullopt;
}

std::string DescribeSetting(const std::string& what, const std::string& name, const std::optional<std::string>& value) {
    return "The system gives no more " + what + " to this user: the limit fs.inotify." + name + " is " +
           value.value_or("not known") + "." + consequence +
           " To raise the limit, the administrator runs: sysctl fs.inotify." + name + "=<a higher number>";
}

} // namespace

std::string WatchShortage::DescribeOwnLimit(std::size_t ownLimit) {
    return "All " + std::to_string(ownLimit) + " folder watches that this process allows itself are taken." +
           consequence;
}

std::string WatchShortage::DescribeWatchLimit() {
    return DescribeSetting("folder watches", "max_user_watches", ReadSetting("max_user_watches"));
}

std::string WatchShortage::DescribeQueueFailure(int error) {
    const auto limit = ReadSetting("max_user_instances");
    if (error == EMFILE && limit)
        return DescribeSetting("queues for folder watches", "max_user_instances", limit);
    return "The system gives no queue for folder watches (" + std::string(std::strerror(error)) + ")." + consequence +
           " This process, or the system, has too many open files; to raise the limit: ulimit -n";
}

} // namespace Tolvex
