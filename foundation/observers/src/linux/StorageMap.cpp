#include "StorageMap.h"

#include <algorithm>
#include <filesystem>

namespace Tolvex {
namespace {

constexpr std::string_view diskScheme = "file";

bool IsAtOrBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// Puts the names of a path behind which others are still to go before those.
void PushNames(const std::filesystem::path& path, std::vector<std::string>& namesToGo) {
    const auto relative = path.relative_path();
    const auto before = namesToGo.size();
    for (const auto& name : relative)
        namesToGo.push_back(name.native());
    std::reverse(namesToGo.begin() + static_cast<std::ptrdiff_t>(before), namesToGo.end());
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

std::optional<IFolderWatches::Way> StorageMap::Follow(std::string_view path) const {
    if (!isAnyRemote)
        return std::nullopt;
    IFolderWatches::Way way{GetKind("/"), false};
    std::vector<std::string> namesToGo; // the next one last
    PushNames(path, namesToGo);
    std::filesystem::path reached = "/";
    int linksLeft = 40; // as the kernel
    while (!namesToGo.empty() && way.kind != StorageKind::remote) {
        const auto name = std::move(namesToGo.back());
        namesToGo.pop_back();
        if (name == "..")
            reached = reached.parent_path();
        if (name.empty() || name == "." || name == "..")
            continue;
        const auto next = reached / name;
        way.kind = GetKind(next.native());
        std::error_code isNone;
        const auto target =
            way.kind == StorageKind::remote ? std::filesystem::path() : std::filesystem::read_symlink(next, isNone);
        if (target.empty()) {
            reached = next;
            continue;
        }
        way.hasLinks = true;
        if (--linksLeft < 0)
            break;
        if (target.is_absolute())
            reached = "/";
        PushNames(target, namesToGo);
    }
    if (way.kind != StorageKind::remote)
        way.kind = GetKind(reached.native());
    return way;
}

std::vector<std::string> StorageMap::Update() {
    auto changed = mounts.Update();
    isAnyRemote = !remotePaths.empty() || mounts.HasRemote();
    return changed;
}

} // namespace Tolvex
