#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace KxBenchmarks {

/// The least that checking folders one by one costs when nothing of them is open: each is asked for its status-change
/// time by its absolute name, and the time compared with the one seen first.
class FolderStamps {
public:
    explicit FolderStamps(std::vector<std::string> folders) : folders(std::move(folders)) {
        for (const std::string& folder : this->folders)
            stamps.push_back(Look(folder));
    }

    [[nodiscard]] std::size_t CountChanged() const {
        std::size_t changed = 0;
        for (std::size_t i = 0; i != folders.size(); ++i)
            changed += Look(folders[i]) == stamps[i] ? 0 : 1;
        return changed;
    }

private:
    struct Stamp {
        std::int64_t seconds = 0;
        std::uint32_t nanoseconds = 0;
        bool operator==(const Stamp&) const = default;
    };

    static Stamp Look(const std::string& folder) {
        struct statx status {};
        if (statx(AT_FDCWD, folder.c_str(), 0, STATX_CTIME, &status) != 0)
            return {};
        return {status.stx_ctime.tv_sec, status.stx_ctime.tv_nsec};
    }

    std::vector<std::string> folders;
    std::vector<Stamp> stamps;
};

} // namespace KxBenchmarks
