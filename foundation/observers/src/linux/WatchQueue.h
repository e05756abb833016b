#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tolvex {

/// The kernel's queue of what happened in watched folders: one inotify instance, made when it is first needed.
class WatchQueue {
public:
    struct Event {
        int descriptor;
        std::uint32_t mask;
        std::string_view name; ///< empty for what happened to the folder itself
    };

    WatchQueue() = default;
    WatchQueue(const WatchQueue&) = delete;
    WatchQueue& operator=(const WatchQueue&) = delete;
    ~WatchQueue();

    /// False when the system gives none.
    [[nodiscard]] bool Open() noexcept;
    /// Why the last Open failed, the system's number; 0 when it did not.
    [[nodiscard]] int GetError() const noexcept { return error; }
    /// -1 as long as it is not open.
    [[nodiscard]] int GetNumber() const noexcept { return number; }

    /// Adds `mask` to what the folder at `path` tells; a folder has one descriptor, whatever it is called. -1 on
    /// failure; errno says why. REQUIRES: it is open.
    [[nodiscard]] int Add(const char* path, std::uint32_t mask) const noexcept;
    void Remove(int descriptor) const noexcept;

    /// Hands what is in the queue to `handle(const Event&)`, in order. Does not wait. What is read is gone: `handle`
    /// must not throw.
    template <class Handle>
    void ReadAll(Handle&& handle) noexcept {
        while (const std::size_t size = ReadSome())
            for (std::size_t at = 0; at < size;)
                handle(Parse(at));
    }

private:
    [[nodiscard]] std::size_t ReadSome() noexcept;
    [[nodiscard]] Event Parse(std::size_t& at) const noexcept;

    int number = -1;
    int error = 0;
    alignas(8) std::array<char, 16384> buffer;
};

} // namespace Tolvex
