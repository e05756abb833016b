#include "FolderOpening.h"

#include <climits>
#include <fcntl.h>
#include <linux/openat2.h>
#include <string_view>
#include <sys/syscall.h>

namespace Tolvex {
namespace {

constexpr int listingFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr int passingFlags = O_PATH | O_DIRECTORY | O_CLOEXEC; // asks for the right to pass, not to list

FileDescriptor OpenFollowing(int base, const char* path, int flags) {
    return FileDescriptor(RetryInterrupted([&] { return ::openat(base, path, flags); }));
}

FileDescriptor OpenWithoutLinks(int base, const char* path, int flags) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = RESOLVE_NO_SYMLINKS;
    const auto number = RetryInterrupted([&] { return ::syscall(SYS_openat2, base, path, &how, sizeof how); });
    return FileDescriptor(static_cast<int>(number));
}

/// False for failures that following links cannot mend. Others mean a link on the way, or a system (or a sandbox)
/// that does not know openat2.
bool MayHelpToFollow(int error) {
    return error != ENOENT && error != ENOTDIR && error != EACCES && error != ENAMETOOLONG && error != EMFILE &&
           error != ENFILE;
}

OpenedFolder OpenAt(int base, const char* path, int flags) {
    if (auto descriptor = OpenWithoutLinks(base, path, flags); descriptor.IsOpen())
        return {std::move(descriptor), true, 0};
    if (!MayHelpToFollow(errno))
        return {{}, false, errno};
    auto descriptor = OpenFollowing(base, path, flags);
    const int error = descriptor.IsOpen() ? 0 : errno;
    return {std::move(descriptor), false, error};
}

} // namespace

PathAnchor::PathAnchor(const std::string& path) : rest(path.c_str()) {
    // PATH_MAX counts the zero at the end. A stretch ends in front of a "/", which goes with neither.
    for (std::string_view left = path; left.size() >= PATH_MAX; left = rest) {
        const auto cut = left.substr(0, PATH_MAX - 1).rfind('/');
        if (cut == 0 || cut == std::string_view::npos) {
            reached = {{}, false, ENAMETOOLONG};
            return;
        }
        auto next = OpenAt(GetFolder(), std::string(left.substr(0, cut)).c_str(), passingFlags);
        next.linkFree = next.linkFree && reached.linkFree;
        reached = std::move(next);
        if (reached.error != 0)
            return;
        rest += cut + 1;
    }
}

int PathAnchor::GetFolder() const noexcept {
    return reached.descriptor.IsOpen() ? reached.descriptor.Get() : AT_FDCWD;
}

OpenedFolder OpenFolderByPath(const std::string& path) {
    const PathAnchor anchor(path);
    if (anchor.GetError() != 0)
        return {{}, false, anchor.GetError()};
    auto opened = OpenAt(anchor.GetFolder(), anchor.GetRest(), listingFlags);
    opened.linkFree = opened.linkFree && anchor.IsLinkFree();
    return opened;
}

OpenedFolder OpenChildFolder(int parent, const char* name) {
    if (auto descriptor = OpenFollowing(parent, name, listingFlags | O_NOFOLLOW); descriptor.IsOpen())
        return {std::move(descriptor), true, 0};
    // A link is refused with either of these, depending on the system's version.
    if (errno != ELOOP && errno != ENOTDIR)
        return {{}, true, errno};
    auto descriptor = OpenFollowing(parent, name, listingFlags);
    const int error = descriptor.IsOpen() ? 0 : errno;
    return {std::move(descriptor), false, error};
}

bool ExistsWithoutLinks(const std::string& path) {
    const PathAnchor anchor(path);
    return anchor.GetError() == 0 && anchor.IsLinkFree() &&
           OpenWithoutLinks(anchor.GetFolder(), anchor.GetRest(), O_PATH | O_CLOEXEC).IsOpen();
}

} // namespace Tolvex
