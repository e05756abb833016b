#include "DiskPaths.h"

#include "../PathResolver.h"
#include "../PathText.h"
#include "FolderOpening.h"

#include <array>
#include <climits>
#include <sys/stat.h>

namespace Tolvex {
namespace {

struct LinkText {
    std::optional<std::string> target;
    int error = 0;
};

LinkText ReadLink(const std::string& path) {
    const PathAnchor anchor(path);
    if (anchor.GetError() != 0)
        return {std::nullopt, anchor.GetError()};
    std::array<char, PATH_MAX> buffer; // the system makes no longer links
    const auto length = ::readlinkat(anchor.GetFolder(), anchor.GetRest(), buffer.data(), buffer.size());
    if (length < 0)
        return {std::nullopt, errno};
    return {std::string(buffer.data(), static_cast<std::size_t>(length))};
}

PathResolver::Step ProbeDisk(ustring_view folder, ustring_view name) {
    const auto [target, error] = ReadLink(ToUtf8(folder) + '/' + ToUtf8(name));
    if (target)
        return {PathResolver::Kind::link, FromUtf8(*target)};
    if (error == EINVAL) // there, and no link
        return {PathResolver::Kind::other, ustring(name)};
    return {};
}

bool IsSameFolder(const std::string& path, const ChangeMark& mark) {
    const PathAnchor anchor(path);
    struct stat state {};
    return anchor.GetError() == 0 && ::fstatat(anchor.GetFolder(), anchor.GetRest(), &state, 0) == 0 &&
           state.st_dev == mark.device && state.st_ino == mark.inode;
}

} // namespace

ustring ResolveDiskPath(ustring_view path) {
    if (ExistsWithoutLinks(ToUtf8(path)))
        return CleanPath(path);
    return PathResolver(ProbeDisk).Resolve(path);
}

std::optional<ustring> FindPathOfOpenFolder(int descriptor, ustring_view spelled, const ChangeMark& mark) {
    // The system's own answer may be missing (no /proc), too long for it, or marked as deleted or out of reach; hence
    // the check, and the second way.
    const auto told = ReadLink("/proc/self/fd/" + std::to_string(descriptor)).target;
    if (told && told->starts_with('/') && IsSameFolder(*told, mark))
        return FromUtf8(*told);
    auto resolved = ResolveDiskPath(spelled);
    if (IsSameFolder(ToUtf8(resolved), mark))
        return resolved;
    return std::nullopt;
}

} // namespace Tolvex
