#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <filesystem>
#include <vector>

namespace KxBenchmarks {

/// Folders of a few code files each, in memory where the system has a file system there; they go with this object.
class FolderForest {
public:
    /// Throws std::filesystem::filesystem_error when they cannot be made.
    explicit FolderForest(std::size_t count);
    ~FolderForest();
    FolderForest(const FolderForest&) = delete;
    FolderForest& operator=(const FolderForest&) = delete;

    [[nodiscard]] const std::vector<Tolvex::CanonicalAbsoluteIRI>& GetFolders() const noexcept { return folders; }

    /// Adds a file to the folder of this number, or removes the one that it added.
    void Change(std::size_t number) const;

private:
    [[nodiscard]] std::filesystem::path GetFolder(std::size_t number) const;

    std::filesystem::path root;
    std::vector<Tolvex::CanonicalAbsoluteIRI> folders;
};

} // namespace KxBenchmarks
