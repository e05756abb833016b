#include "ChangeMarkReader.h"

#include "FolderOpening.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace Tolvex {
namespace {

struct Look {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileTime changed{};
    mode_t mode = 0;
};

std::optional<Look> LookAt(int base, const char* path, int flags) {
    struct statx state {};
    if (::statx(base, path, flags, STATX_TYPE | STATX_MODE | STATX_INO | STATX_CTIME, &state) != 0)
        return std::nullopt;
    const auto stamp = std::chrono::seconds(state.stx_ctime.tv_sec) + std::chrono::nanoseconds(state.stx_ctime.tv_nsec);
    return Look{makedev(state.stx_dev_major, state.stx_dev_minor), state.stx_ino, FileTime(stamp), state.stx_mode};
}

ChangeMark MakeMark(const Look& look, FileTime now, const FileSystemRules& rules) {
    using namespace std::chrono_literals;
    // A stamp of whole seconds is most likely one of a file system that keeps no more.
    const bool wholeSeconds = look.changed.time_since_epoch() % 1s == 0ns;
    const auto grain = wholeSeconds ? std::max<std::chrono::nanoseconds>(rules.stampGrain, 2s) : rules.stampGrain;
    ChangeMark mark{look.device, look.inode, look.changed};
    mark.settled = now - look.changed >= grain; // false for a stamp of the future, too
    mark.present = true;
    return mark;
}

FileSystemRules GetRules(const Look& look, int descriptor) {
    auto& table = GetFileSystemTable();
    const auto known = table.Find(look.device);
    return known ? *known : table.Learn(look.device, descriptor);
}

bool IsListable(const Look& look, const PathAnchor& anchor) {
    constexpr mode_t everybody = S_IRUSR | S_IRGRP | S_IROTH;
    if (!S_ISDIR(look.mode))
        return false;
    return (look.mode & everybody) == everybody ||
           ::faccessat(anchor.GetFolder(), anchor.GetRest(), R_OK, AT_EACCESS) == 0;
}

} // namespace

ReadMark ReadMarkOfDescriptor(int descriptor, const IClock& clock) {
    const auto now = clock.Now(); // before the look: a change behind it is stamped with this time or a later one
    const auto look = LookAt(descriptor, "", AT_EMPTY_PATH);
    if (!look)
        return {};
    const auto rules = GetRules(*look, descriptor);
    return {MakeMark(*look, now, rules), rules};
}

ChangeMark ReadMarkOfPath(const std::string& path, const IClock& clock) {
    const PathAnchor anchor(path);
    if (anchor.GetError() != 0)
        return {};
    const auto now = clock.Now();
    const auto look = LookAt(anchor.GetFolder(), anchor.GetRest(), 0);
    if (!look || !IsListable(*look, anchor))
        return {};
    if (const auto rules = GetFileSystemTable().Find(look->device))
        return MakeMark(*look, now, *rules);
    const FileDescriptor folder(::openat(anchor.GetFolder(), anchor.GetRest(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return folder.IsOpen() ? ReadMarkOfDescriptor(folder.Get(), clock).mark : ChangeMark();
}

} // namespace Tolvex
