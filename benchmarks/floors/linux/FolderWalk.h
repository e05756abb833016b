#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace KxBenchmarks {

/// Lists one folder by the bare system call: calls `onFile` with the name of every file, a view that is valid during
/// the call, and `onFolder` with every child folder's. Kinds come with the listing, links are not followed. Returns
/// false when the folder cannot be read.
template <class OnFile, class OnFolder>
bool ListFolder(int parent, const char* name, const OnFile& onFile, const OnFolder& onFolder) {
    struct Record { // linux_dirent64, whose name follows
        std::uint64_t inode;
        std::int64_t offset;
        std::uint16_t length;
        unsigned char kind;
    };
    constexpr std::size_t nameAt = offsetof(Record, kind) + 1;

    const int folder = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return false;
    alignas(Record) std::array<char, 32768> buffer;
    long size = 0;
    while ((size = syscall(SYS_getdents64, folder, buffer.data(), buffer.size())) > 0) {
        for (const char* at = buffer.data(); at < buffer.data() + size;) {
            Record record;
            std::memcpy(&record, at, sizeof(record));
            const char* const child = at + nameAt;
            at += record.length;
            if (record.kind == DT_REG)
                onFile(std::string_view(child));
            else if (record.kind == DT_DIR && std::strcmp(child, ".") != 0 && std::strcmp(child, "..") != 0)
                onFolder(folder, child);
        }
    }
    close(folder);
    return size == 0;
}

/// The least that knowing a tree costs: each folder is opened relative to its parent and listed; nothing is kept.
/// Returns false when a folder cannot be read.
template <class OnFile>
bool WalkFolder(int parent, const char* name, const OnFile& onFile) {
    bool isWhole = true;
    const bool isListed = ListFolder(parent, name, onFile, [&](int folder, const char* child) {
        isWhole = WalkFolder(folder, child, onFile) && isWhole;
    });
    return isListed && isWhole;
}

template <class OnFile>
bool WalkMainFolder(const char* name, const OnFile& onFile) {
    return WalkFolder(AT_FDCWD, name, onFile);
}

} // namespace KxBenchmarks
