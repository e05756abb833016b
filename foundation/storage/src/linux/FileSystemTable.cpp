#include "FileSystemTable.h"

#include <algorithm>
#include <linux/magic.h>
#include <sys/vfs.h>

namespace Tolvex {
namespace {

using namespace std::chrono_literals;

/// Local file systems stamp with the kernel's coarse clock, which moves on every 1 to 10 ms.
constexpr std::chrono::nanoseconds fineGrain = 20ms;
/// FAT stamps in steps of two seconds, older systems in whole seconds; over a network the clock is someone else's.
constexpr std::chrono::nanoseconds coarseGrain = 2s;

struct Type {
    std::uint32_t magic;
    bool ignoresCase;
};

/// The types that are not plain: all of them stamp coarsely or far away. Those without a name in the system's headers
/// are given by number.
constexpr std::array specialTypes{
    Type{MSDOS_SUPER_MAGIC, true}, Type{EXFAT_SUPER_MAGIC, true}, Type{0x5346544E, true}, // NTFS
    Type{0x7366746E, true},                                                               // NTFS, the later driver
    Type{CIFS_SUPER_MAGIC, true},  Type{SMB2_SUPER_MAGIC, true},  Type{SMB_SUPER_MAGIC, true},
    Type{NFS_SUPER_MAGIC, false},  Type{FUSE_SUPER_MAGIC, false}, Type{V9FS_MAGIC, false},
    Type{CEPH_SUPER_MAGIC, false}, Type{CODA_SUPER_MAGIC, false}, Type{AFS_SUPER_MAGIC, false},
    Type{0x47504653, false}, // GPFS
    Type{0x0BD00BD0, false}, // Lustre
    Type{0x4244, false},     // HFS
    Type{0x482B, false},     // HFS+
};

FileSystemRules GetRulesOfType(std::uint32_t magic) {
    const auto* const special =
        std::find_if(specialTypes.begin(), specialTypes.end(), [magic](const Type& t) { return t.magic == magic; });
    return special == specialTypes.end() ? FileSystemRules{false, fineGrain}
                                         : FileSystemRules{special->ignoresCase, coarseGrain};
}

} // namespace

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
        return {false, coarseGrain};
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
