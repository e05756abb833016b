#pragma once

#include "../ObservedFolder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Tolvex {

/// What is to be expected of a type of storage, by the name that the system lists it under. In front of a "." a subtype
/// is left out, but for "fuse", which stands for all of its subtypes. A type that is in neither list is looked at: that
/// is right for each.
[[nodiscard]] inline StorageKind GetKindOfType(std::string_view type) noexcept {
    /// Types that keep case apart, whose every change comes about by this machine's kernel. (Where case is ignored, the
    /// kernel tells names as they were spelled by whoever made the change.)
    static constexpr std::array<std::string_view, 21> notifyingTypes{
        "bcachefs", "btrfs",   "ecryptfs", "erofs", "ext2",   "ext3",    "ext4",
        "f2fs",     "iso9660", "jffs2",    "jfs",   "nilfs2", "overlay", "ramfs",
        "reiserfs", "rootfs",  "squashfs", "tmpfs", "ubifs",  "xfs",     "zfs"};
    /// Types of storage that other machines change, or that somebody's program serves.
    static constexpr std::array<std::string_view, 27> remoteTypes{
        "9p",    "acfs",     "afs",   "auristorfs", "autofs", "beegfs", "ceph",   "cifs",     "coda",
        "davfs", "fuse",     "gfs2",  "glusterfs",  "gpfs",   "lustre", "ncpfs",  "nfs",      "nfs4",
        "ocfs2", "orangefs", "panfs", "pvfs2",      "smb3",   "smbfs",  "vboxsf", "virtiofs", "vmhgfs"};
    const auto family = type.substr(0, type.find('.'));
    if (std::ranges::find(remoteTypes, family) != remoteTypes.end())
        return StorageKind::remote;
    const bool isTold = std::ranges::find(notifyingTypes, family) != notifyingTypes.end();
    return isTold ? StorageKind::notifying : StorageKind::silent;
}

} // namespace Tolvex
