#include "FileSystemTable.h"

#include <sys/vfs.h>

namespace Tolvex {
std::optional<FileSystemRules> FileSystemTable::Find(std::uint64_t device) const noexcept {
    const auto known = count.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < known; ++i)
        if (entries[i].device == device)
            return entries[i].rules;
    return std::nullopt;
}

FileSystemRules FileSystemTable::Learn(std::uint64_t device, int descriptor) noexcept {
    struct statfs state {};
    if (::fstatfs(descriptor, &state) != 0)
        return {false, FileSystemRules::farGrain};
    const auto rules = GetRulesOfType(static_cast<std::uint32_t>(state.f_type));
    Keep({device, rules});
    return rules;
}

void FileSystemTable::Keep(const Entry& entry) noexcept {
    const std::scoped_lock lock(mutex);
    const auto known = count.load(std::memory_order_relaxed);
    if (known == capacity || Find(entry.device))
        return;
    entries[known] = entry;
    count.store(known + 1, std::memory_order_release);
}

FileSystemTable& GetFileSystemTable() noexcept {
    static FileSystemTable table;
    return table;
}

} // namespace Tolvex
