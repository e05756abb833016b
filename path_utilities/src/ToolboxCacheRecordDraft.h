#pragma once

#include "path_utilities/ToolboxCacheRecord.h"

#include <memory>
#include <string_view>

namespace PathManagement {

/// A record while it is being read. Serves one record after the other, so that each costs no more memory and no more
/// allocations than what it holds in the end.
class ToolboxCacheRecordDraft {
public:
    using Folder = ToolboxCacheRecord::Folder;

    /// Forgets what was added.
    void Begin() noexcept;

    /// Each takes a name as the file spells it and throws ToolboxCacheWrongFormatException when the record becomes too
    /// large. `parent` and `folder` are what AddFolder returned, or Folder::none for a top-level folder.
    std::uint32_t AddFolder(std::string_view name, std::uint32_t parent);
    void AddFile(std::string_view name, std::uint32_t folder, char kind);

    [[nodiscard]] std::uint32_t GetParent(std::uint32_t folder) const noexcept { return folders[folder].parent; }

    /// The record of all that was added.
    [[nodiscard]] std::shared_ptr<const ToolboxCacheRecord> Finish();

private:
    struct TextRange {
        std::uint32_t begin;
        std::uint32_t length;
    };

    TextRange AppendName(std::string_view name);
    void GroupFiles();

    ustring names; // longer than what is used of it, so that names are converted in place
    std::size_t namesEnd = 0;
    std::vector<Folder> folders;
    std::vector<ToolboxCacheRecord::File> files;
    bool areFilesGrouped = true;
};

} // namespace PathManagement
