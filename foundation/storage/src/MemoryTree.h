#pragma once

#include "foundation/storage/ChangeMark.h"
#include "foundation/storage/FolderListing.h"
#include "foundation/storage/StorageError.h"

#include <map>
#include <memory>
#include <optional>

namespace Tolvex {

/// The files, folders and links of a MemoryStorage, without locks, faults and clock. Paths are absolute texts.
class MemoryTree {
public:
    enum class Kind { file, folder, link };

    struct Node {
        Kind kind = Kind::folder;
        ustring name;                                        ///< as spelled when it was made
        std::uint64_t inode = 0;                             ///< never given twice
        FileTime changed{};                                  ///< a disk's status-change time
        ustring target;                                      ///< of a link
        std::map<ustring, std::shared_ptr<Node>> children{}; ///< of a folder; by name, folded where case is ignored
        std::weak_ptr<Node> parent{};                        ///< none for the root and for what was removed
    };
    using NodeReference = std::shared_ptr<Node>;

    /// What a path leads to, or why it leads nowhere.
    struct Found {
        NodeReference node;
        StorageFailure failure = StorageFailure::missing;
    };

    MemoryTree(bool ignoresCase, FileTime now);

    [[nodiscard]] bool IgnoresCase() const noexcept { return ignoresCase; }

    /// Follows links as a disk does, from `start` or, for a path that begins with "/", from the root.
    [[nodiscard]] Found Find(ustring_view path, const NodeReference& start = {}) const;

    [[nodiscard]] ustring Canonicalise(ustring_view path) const;

    /// The path of a node; none when it was removed, by itself or with a folder above it.
    [[nodiscard]] std::optional<ustring> GetPath(const Node& node) const;

    /// The name as the key of a child.
    [[nodiscard]] ustring MakeKey(ustring_view name) const;

    void List(const NodeReference& folder, FolderListing& listing) const;

    // Changes, stamped with `now`; see MemoryStorage. Throw std::invalid_argument.
    void AddFolder(ustring_view path, FileTime now);
    void AddFile(ustring_view path, FileTime now);
    void AddLink(ustring_view path, ustring_view target, FileTime now);
    void Remove(ustring_view path, FileTime now);
    void Rename(ustring_view from, ustring_view to, FileTime now);

private:
    struct Walk;
    struct Place;
    [[nodiscard]] NodeReference FindChild(const Node& folder, ustring_view name) const;
    [[nodiscard]] bool Step(Walk& walk, ustring_view name) const;
    [[nodiscard]] bool Follow(Walk& walk, ustring_view path) const;
    [[nodiscard]] Place FindPlace(ustring_view path) const;
    void Attach(const NodeReference& folder, const NodeReference& node, FileTime now);
    void Detach(const NodeReference& node, FileTime now);
    NodeReference Make(const NodeReference& folder, Kind kind, ustring_view name, FileTime now);
    NodeReference MakeLeaf(ustring_view path, Kind kind, FileTime now);
    NodeReference MakeFolders(ustring_view path, FileTime now);

    bool ignoresCase;
    std::uint64_t lastInode = 1;
    NodeReference root;
};

} // namespace Tolvex
