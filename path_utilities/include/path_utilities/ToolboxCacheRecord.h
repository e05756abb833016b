#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>
#include <span>
#include <vector>

namespace PathManagement {

using Tolvex::ustring;
using Tolvex::ustring_view;

/// One top-level folder of a path cache file with everything below it. The names of the whole record lie in one text
/// and its folders in one vector, so that reading and releasing it costs a few allocations however deep it is.
/// Immutable once it was read.
class ToolboxCacheRecord {
public:
    struct File {
        std::uint32_t nameBegin;
        std::uint32_t nameLength;
        std::uint32_t folder; ///< the index of its folder
        char kind;            ///< 'C', 'N' or 'U'
    };

    struct Folder {
        static constexpr std::uint32_t none = UINT32_MAX;

        std::uint32_t nameBegin = 0;
        std::uint32_t nameLength = 0;
        std::uint32_t parent = none;
        std::uint32_t firstFile = 0;
        std::uint32_t fileCount = 0;
    };

    /// The folders in the order in which their elements begin: the top-level folder first, each before those in it.
    [[nodiscard]] std::span<const Folder> GetFolders() const noexcept { return folders; }

    /// The files of a folder, in file order.
    [[nodiscard]] std::span<const File> GetFiles(const Folder& folder) const noexcept {
        return std::span(files).subspan(folder.firstFile, folder.fileCount);
    }

    /// As the file spells it: a folder's path relative to the cache root, a file's name.
    [[nodiscard]] ustring_view GetName(const Folder& folder) const noexcept {
        return ustring_view(names).substr(folder.nameBegin, folder.nameLength);
    }
    [[nodiscard]] ustring_view GetName(const File& file) const noexcept {
        return ustring_view(names).substr(file.nameBegin, file.nameLength);
    }

    /// The part of the record's text that holds the names of consecutive files of one folder, and, when the cache file
    /// has child folders between them, more. Empty when there are no files.
    [[nodiscard]] ustring_view GetText(std::span<const File> filesOfFolder) const noexcept {
        if (filesOfFolder.empty())
            return {};
        const File& last = filesOfFolder.back();
        const std::uint32_t begin = filesOfFolder.front().nameBegin;
        return ustring_view(names).substr(begin, last.nameBegin + last.nameLength - begin);
    }

private:
    friend class ToolboxCacheRecordDraft;

    ustring names;
    std::vector<Folder> folders;
    std::vector<File> files;
};

} // namespace PathManagement
