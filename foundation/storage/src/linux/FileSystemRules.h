#pragma once

#include "foundation/storage/Clock.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <linux/magic.h>

namespace Tolvex {

/// What matters here about the file system that holds a folder.
struct FileSystemRules {
    bool ignoresCase = false;
    /// A stamp this young, by this machine's clock, may be given again.
    std::chrono::nanoseconds stampGrain{};

    /// False for a stamp that a later change may carry, too; also for one of the future.
    [[nodiscard]] constexpr bool IsSettled(FileTime stamp, FileTime now) const noexcept {
        using namespace std::chrono_literals;
        // A stamp of whole seconds is most likely one of a file system that keeps no more.
        const auto leastAge = stamp.time_since_epoch() % 1s == 0ns ? std::max(stampGrain, coarseGrain) : stampGrain;
        return now - stamp >= leastAge;
    }

    /// Local file systems stamp with the kernel's coarse clock, which moves on every 1 to 10 ms.
    static constexpr std::chrono::nanoseconds fineGrain = std::chrono::milliseconds(20);
    /// FAT stamps in steps of two seconds, older systems in whole seconds.
    static constexpr std::chrono::nanoseconds coarseGrain = std::chrono::seconds(2);
    /// Where another machine stamps, by a clock of its own. Two clocks that are kept at all are much nearer to each
    /// other than this; a folder that was changed later is listed again each time.
    static constexpr std::chrono::nanoseconds farGrain = std::chrono::hours(1);
};

/// The rules of a type of file system, by the number that the system gives it.
[[nodiscard]] inline FileSystemRules GetRulesOfType(std::uint32_t magic) noexcept {
    struct Type {
        std::uint32_t magic;
        FileSystemRules rules;
    };
    constexpr FileSystemRules plain{false, FileSystemRules::fineGrain};
    constexpr FileSystemRules coarse{false, FileSystemRules::coarseGrain};
    constexpr FileSystemRules coarseIgnoringCase{true, FileSystemRules::coarseGrain};
    constexpr FileSystemRules farIgnoringCase{true, FileSystemRules::farGrain};
    // Types without a name in the system's headers are given by number.
    static constexpr std::array types{
        Type{EXT4_SUPER_MAGIC, plain}, // and those before it
        Type{XFS_SUPER_MAGIC, plain},
        Type{BTRFS_SUPER_MAGIC, plain},
        Type{F2FS_SUPER_MAGIC, plain},
        Type{TMPFS_MAGIC, plain},
        Type{RAMFS_MAGIC, plain},
        Type{OVERLAYFS_SUPER_MAGIC, plain},
        Type{SQUASHFS_MAGIC, plain},
        Type{EROFS_SUPER_MAGIC_V1, plain},
        Type{ISOFS_SUPER_MAGIC, plain},
        Type{0x15013346, plain}, // UDF
        Type{NILFS_SUPER_MAGIC, plain},
        Type{ECRYPTFS_SUPER_MAGIC, plain},
        Type{0x2FC12FC1, plain}, // ZFS
        Type{0xCA451A4E, plain}, // bcachefs
        Type{0x3153464A, plain}, // JFS
        Type{0x24051905, plain}, // UBIFS
        Type{REISERFS_SUPER_MAGIC, coarse},
        Type{JFFS2_SUPER_MAGIC, coarse},
        Type{0x4244, coarse}, // HFS
        Type{0x482B, coarse}, // HFS+
        Type{MSDOS_SUPER_MAGIC, coarseIgnoringCase},
        Type{EXFAT_SUPER_MAGIC, coarseIgnoringCase},
        Type{0x5346544E, coarseIgnoringCase}, // NTFS
        Type{0x7366746E, coarseIgnoringCase}, // NTFS, the later driver
        Type{CIFS_SUPER_MAGIC, farIgnoringCase},
        Type{SMB2_SUPER_MAGIC, farIgnoringCase},
        Type{SMB_SUPER_MAGIC, farIgnoringCase},
    };
    const auto* const known = std::ranges::find(types, magic, &Type::magic);
    // Another type may well be one of the many that lead to other machines.
    return known == types.end() ? FileSystemRules{false, FileSystemRules::farGrain} : known->rules;
}

} // namespace Tolvex
