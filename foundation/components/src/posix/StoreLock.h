#pragma once

#include <filesystem>

namespace TolvexPackages {

/// Held by the one process, and the one thread in it, that changes a folder of installed packages. The system takes it
/// from a process that ends, however it ends.
class StoreLock {
public:
    /// Waits until nobody else holds it. Makes the file when it is missing. Throws std::filesystem::filesystem_error.
    explicit StoreLock(const std::filesystem::path& file);
    ~StoreLock();
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

private:
    int descriptor;
};

} // namespace TolvexPackages
