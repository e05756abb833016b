#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/inotify.h>
#include <unistd.h>

namespace KxBenchmarks {

/// The least that being told of changes costs: the kernel watches the folders, and its queue is read.
class FolderEvents {
public:
    /// Throws std::runtime_error when a folder cannot be watched.
    explicit FolderEvents(const std::vector<std::string>& folders) : queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        for (const std::string& folder : folders)
            Watch(folder);
    }
    ~FolderEvents() { close(queue); }
    FolderEvents(const FolderEvents&) = delete;
    FolderEvents& operator=(const FolderEvents&) = delete;

    /// The number of the folder that changed since the last call; none when nothing did. When several did, the last.
    [[nodiscard]] std::optional<std::size_t> TakeChanged() {
        std::optional<std::size_t> changed;
        long size = 0;
        while ((size = read(queue, buffer.data(), buffer.size())) > 0) {
            inotify_event event{};
            for (const char* at = buffer.data(); at < buffer.data() + size; at += sizeof(event) + event.len) {
                std::memcpy(&event, at, sizeof(event));
                changed = numbers.at(static_cast<std::size_t>(event.wd));
            }
        }
        return changed;
    }

private:
    void Watch(const std::string& folder) {
        constexpr auto changes = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;
        const int watch = inotify_add_watch(queue, folder.c_str(), changes);
        if (watch < 0)
            throw std::runtime_error("the kernel does not watch " + folder);
        numbers.resize(static_cast<std::size_t>(watch) + 1); // the kernel counts them up
        numbers.back() = watched++;
    }

    int queue;
    std::size_t watched = 0;
    std::vector<std::size_t> numbers; // by watch
    std::array<char, 8192> buffer{};
};

} // namespace KxBenchmarks
