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
std::optional<std::size_t> ReadSetting(const std::string& name) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(("/proc/sys/fs/inotify/" + name).c_str(), "re"));
    std::size_t value = 0;
    if (file && std::fscanf(file.get(), "%zu", &value) == 1)
        return value;
    return std::nullopt;
}

constexpr const char* watchSetting = "max_user_watches";

std::string DescribeValue(const std::string& name) {
    const auto value = ReadSetting(name);
    return "fs.inotify." + name + " is " + (value ? std::to_string(*value) : "not known");
}

std::string DescribeCure(const std::string& name) {
    return " To raise the limit, the administrator runs: sysctl fs.inotify." + name + "=<a higher number>";
}

std::string DescribeOwnLimit(std::size_t limit) {
    return "All " + std::to_string(limit) + " folder watches that this process was allowed are taken." + consequence +
           " To raise the limit, allow it more.";
}

std::string DescribeShare(std::size_t share) {
    return "All " + std::to_string(share) +
           " folder watches that this process takes at most are taken, half of what the system gives to one user: " +
           DescribeValue(watchSetting) + "." + consequence + DescribeCure(watchSetting) +
           " (this process takes its half of it when it is started again)";
}

std::string DescribeRefusal(int error) {
    if (error != ENOSPC)
        return "The system gives no more folder watches (" + std::string(std::strerror(error)) + ")." + consequence +
               " It is asked again the next time.";
    return "The system gives no more folder watches to this user, whose programs share one limit: " +
           DescribeValue(watchSetting) + "." + consequence + DescribeCure(watchSetting);
}

std::string DescribeMissingQueue(int error) {
    const std::string name = "max_user_instances";
    if (error == EMFILE && ReadSetting(name))
        return "The system gives no more queues for folder watches to this user: the limit " + DescribeValue(name) +
               "." + consequence + DescribeCure(name);
    return "The system gives no queue for folder watches (" + std::string(std::strerror(error)) + ")." + consequence +
           " This process, or the system, has too many open files; to raise the limit: ulimit -n";
}

} // namespace

std::optional<std::size_t> WatchShortage::GetShare() {
    const auto all = ReadSetting(watchSetting);
    return all ? std::optional(*all / 2) : std::nullopt;
}

std::string WatchShortage::Describe() const {
    switch (cause) {
    case Cause::ownLimit:
        return DescribeOwnLimit(limit);
    case Cause::share:
        return DescribeShare(limit);
    case Cause::refusal:
        return DescribeRefusal(error);
    case Cause::noQueue:
        return DescribeMissingQueue(error);
    case Cause::none:
        break;
    }
    return {};
}

} // namespace Tolvex
