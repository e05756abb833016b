#pragma once

#include "foundation/storage/StorageSystem.h"

#include <filesystem>
#include <set>
#include <string>

namespace Tolvex {

/// A new folder on the disk, removed with all it holds at the end.
class TemporaryTree {
public:
    TemporaryTree() {
        std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()) / "storage-XXXXXX";
        root = ::mkdtemp(pattern.data());
    }
    TemporaryTree(const TemporaryTree&) = delete;
    TemporaryTree& operator=(const TemporaryTree&) = delete;
    ~TemporaryTree() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }

    [[nodiscard]] const std::filesystem::path& GetRoot() const { return root; }
    [[nodiscard]] AbsoluteIRI GetIRI(const std::string& relative = {}) const {
        return AbsoluteIRI("file", FromUtf8((root / relative).native()));
    }

private:
    std::filesystem::path root;
};

/// The names in a folder as UTF-8, those of folders with "/" behind.
inline std::multiset<std::string> ListNames(const Folder& folder) {
    FolderListing listing;
    folder.list(listing);
    std::multiset<std::string> names;
    for (const auto& item : listing.GetItems())
        names.insert(ToUtf8(listing.GetName(item)) + (item.kind == FolderListing::Kind::folder ? "/" : ""));
    return names;
}

/// Why opening fails; no value when it does not.
template <class Open>
std::optional<StorageFailure> GetFailure(Open&& open) {
    try {
        open();
    } catch (const StorageError& error) {
        return error.GetFailure();
    }
    return std::nullopt;
}

} // namespace Tolvex
