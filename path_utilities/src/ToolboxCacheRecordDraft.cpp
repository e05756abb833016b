#include "ToolboxCacheRecordDraft.h"

#include "path_interfaces/ToolboxCacheExceptions.h"

#include <algorithm>
#include <utility>

namespace PathManagement {

namespace {

std::uint32_t CheckSize(std::size_t size) {
    if (size >= ToolboxCacheRecord::Folder::none)
        throw ToolboxCacheWrongFormatException(
            "The path cache file holds a folder whose names need more than four thousand million characters.");
    return static_cast<std::uint32_t>(size);
}

} // namespace

void ToolboxCacheRecordDraft::Begin() noexcept {
    namesEnd = 0;
    folders.clear();
    files.clear();
    areFilesGrouped = true;
}

std::uint32_t ToolboxCacheRecordDraft::AddFolder(std::string_view name, std::uint32_t parent) {
    const auto [begin, length] = AppendName(name);
    folders.push_back({begin, length, parent, 0, 0});
    return static_cast<std::uint32_t>(folders.size() - 1);
}

void ToolboxCacheRecordDraft::AddFile(std::string_view name, std::uint32_t folder, char kind) {
    const auto [begin, length] = AppendName(name);
    Folder& owner = folders[folder];
    if (owner.fileCount == 0)
        owner.firstFile = static_cast<std::uint32_t>(files.size());
    areFilesGrouped = areFilesGrouped && owner.firstFile + owner.fileCount == files.size();
    ++owner.fileCount;
    files.push_back({begin, length, folder, kind});
}

/// A name has at most as many code units as it has bytes.
ToolboxCacheRecordDraft::TextRange ToolboxCacheRecordDraft::AppendName(std::string_view name) {
    const std::size_t begin = namesEnd;
    if (names.size() - begin < name.size())
        names.resize(2 * names.size() + name.size());
    namesEnd = begin + Tolvex::ConvertFromUtf8(name, names.data() + begin);
    static_cast<void>(CheckSize(namesEnd));
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(namesEnd - begin)};
}

std::shared_ptr<const ToolboxCacheRecord> ToolboxCacheRecordDraft::Finish() {
    static_cast<void>(CheckSize(std::max(folders.size(), files.size())));
    if (!areFilesGrouped)
        GroupFiles();
    const auto record = std::make_shared<ToolboxCacheRecord>();
    record->names.assign(names, 0, namesEnd);
    record->folders = folders;
    record->files = files;
    return record;
}

void ToolboxCacheRecordDraft::GroupFiles() {
    std::ranges::stable_sort(files, {}, &ToolboxCacheRecord::File::folder);
    std::uint32_t next = 0;
    for (Folder& folder : folders)
        folder.firstFile = std::exchange(next, next + folder.fileCount);
}

} // namespace PathManagement
