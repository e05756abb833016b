#pragma once

#include "FileSystemRules.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>

namespace Tolvex {

/// The rules of the file systems met so far, by device: one system call a device. Reading takes no lock. A device
/// number that is given to another file system while the process runs keeps its first rules.
class FileSystemTable {
public:
    [[nodiscard]] std::optional<FileSystemRules> Find(std::uint64_t device) const noexcept;

    /// Asks the system about the file system of an open file and keeps the answer for its device. A system that
    /// does not tell is taken for one that nothing is known of, and asked again the next time.
    FileSystemRules Learn(std::uint64_t device, int descriptor) noexcept;

private:
    struct Entry {
        std::uint64_t device = 0;
        FileSystemRules rules;
    };
    static constexpr std::size_t capacity = 256; // what does not fit is asked each time

    void Keep(const Entry& entry) noexcept;

    std::mutex mutex; // for appending
    std::array<Entry, capacity> entries;
    std::atomic<std::size_t> count = 0; // entries below it never change
};

/// The table of this process.
[[nodiscard]] FileSystemTable& GetFileSystemTable() noexcept;

} // namespace Tolvex
