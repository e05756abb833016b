#include "ChangeMarkReader.h"

#include "FolderOpening.h"

#include <algorithm>
#include <climits>
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
    ChangeMark mark{look.device, look.inode, look.changed};
    mark.settled = rules.IsSettled(look.changed, now);
    mark.present = true;
    return mark;
}

FileSystemRules GetRules(const Look& look, int descriptor) {
    auto& table = GetFileSystemTable();
    const auto known = table.Find(look.device);
    return known ? *known : table.Learn(look.device, descriptor);
}

bool IsListable(const Look& look, int base, const char* path) {
    constexpr mode_t everybody = S_IRUSR | S_IRGRP | S_IROTH;
    if (!S_ISDIR(look.mode))
        return false;
    return (look.mode & everybody) == everybody || ::faccessat(base, path, R_OK, AT_EACCESS) == 0;
}

ChangeMark ReadMarkAt(int base, const char* path, const IClock& clock) {
    const auto now = clock.Now();
    const auto look = LookAt(base, path, 0);
    if (!look || !IsListable(*look, base, path))
        return {};
    if (const auto rules = GetFileSystemTable().Find(look->device))
        return MakeMark(*look, now, *rules);
    const FileDescriptor folder(::openat(base, path, O_PATH | O_DIRECTORY | O_CLOEXEC));
    return folder.IsOpen() ? ReadMarkOfDescriptor(folder.Get(), clock).mark : ChangeMark();
}

/// The folder that all of these lie below; empty when that is the root.
ustring_view FindFolderAbove(std::span<const AbsoluteIRI* const> locations) {
    auto above = locations.front()->getPath();
    for (const auto* const location : locations) {
        const auto path = location->getPath();
        const auto shorter = std::min(above.size(), path.size());
        const auto* const end = std::mismatch(above.data(), above.data() + shorter, path.data()).first;
        above = above.substr(0, static_cast<std::size_t>(end - above.data()));
    }
    return above.substr(0, above.rfind(u'/'));
}

void ReadMarksBelow(ustring_view above, std::span<const AbsoluteIRI* const> locations, std::span<ChangeMark> marks,
                    const IClock& clock) {
    const FileDescriptor folder(
        above.empty() ? -1 : ::openat(AT_FDCWD, ToUtf8(above).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (std::size_t i = 0; i < locations.size(); ++i) {
        const auto path = locations[i]->getPath();
        const bool isNear = folder.IsOpen() && path.size() - above.size() < PATH_MAX / 3; // three bytes a unit at most
        marks[i] = isNear ? ReadMarkAt(folder.Get(), ToUtf8(path.substr(above.size() + 1)).c_str(), clock)
                          : ReadMarkOfPath(ToUtf8(path), clock);
    }
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
    return anchor.GetError() == 0 ? ReadMarkAt(anchor.GetFolder(), anchor.GetRest(), clock) : ChangeMark();
}

void ReadMarksOfPaths(std::span<const AbsoluteIRI* const> locations, std::span<ChangeMark> marks, const IClock& clock) {
    // Long enough to pay for opening the folder above, short enough that this is not far above.
    constexpr std::size_t stretch = 32;
    while (!locations.empty()) {
        const auto size = std::min(stretch, locations.size());
        const auto next = locations.first(size);
        ReadMarksBelow(size == 1 ? ustring_view() : FindFolderAbove(next), next, marks.first(size), clock);
        locations = locations.subspan(size);
        marks = marks.subspan(size);
    }
}

} // namespace Tolvex
