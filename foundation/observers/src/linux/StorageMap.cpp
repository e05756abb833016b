#include "StorageMap.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace Tolvex {
namespace {

constexpr std::string_view diskScheme = "file";
constexpr int linkLimit = 40; // as the kernel

bool IsAtOrBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// Empty for what is no link.
std::filesystem::path ReadLink(const std::filesystem::path& path) {
    std::error_code isNone;
    return std::filesystem::read_symlink(path, isNone);
}

/// The path that a path becomes when the first link on its way is put by its target; none without a link.
std::optional<std::filesystem::path> FollowFirstLink(const std::filesystem::path& path) {
    std::filesystem::path reached = "/";
    for (auto name = std::next(path.begin()); name != path.end(); ++name) {
        if (*name == "..") { // of a folder, since links are followed first
            reached = reached.parent_path();
            continue;
        }
        auto target = ReadLink(reached / *name);
        if (target.empty()) {
            reached /= *name;
            continue;
        }
        auto followed = reached / target; // the target alone when it is absolute
        for (++name; name != path.end(); ++name)
            followed /= *name;
        return followed;
    }
    return std::nullopt;
}

} // namespace

StorageMap::StorageMap(const std::vector<AbsoluteIRI>& remoteFolders) {
    for (const auto& folder : remoteFolders)
        if (folder.getScheme() == diskScheme)
            remotePaths.push_back(ToUtf8(folder.getPath() == u"/" ? ustring_view() : folder.getPath()));
    isAnyRemote = !remotePaths.empty() || mounts.HasRemote();
}

StorageKind StorageMap::GetKind(std::string_view path) const {
    const bool isNamed =
        std::ranges::any_of(remotePaths, [&](const std::string& remote) { return IsAtOrBelow(path, remote); });
    return isNamed ? StorageKind::remote : mounts.GetKind(path);
}

std::optional<IFolderWatches::Way> StorageMap::Follow(const AbsoluteIRI& folder) const {
    if (!isAnyRemote)
        return std::nullopt;
    auto path = std::filesystem::path(ToUtf8(folder.getPath()));
    IFolderWatches::Way way{GetKind(path.native()), false};
    // Links that lead in circles lead nowhere.
    for (int linksLeft = linkLimit; way.kind != StorageKind::remote && linksLeft > 0; --linksLeft) {
        const auto next = FollowFirstLink(path);
        if (!next)
            break;
        path = *next;
        way = {GetKind(path.lexically_normal().native()), true};
    }
    return way;
}

std::vector<std::string> StorageMap::Update() {
    auto changed = mounts.Update();
    isAnyRemote = !remotePaths.empty() || mounts.HasRemote();
    return changed;
}

} // namespace Tolvex
