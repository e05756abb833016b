#pragma once

#include "path_interfaces/PathItem.h"

#include <memory>
#include <span>

namespace PathManagement {

/// All items of one folder and their names in one allocation, sorted by (normalised stem, stem, extension). The only
/// place in which items exist; handles of items alias a handle of the block (or of an entry that owns it). Stems
/// shared by files that differ only in extension are stored once.
class KX_EXPORT PathItemBlock {
public:
    /// In code units; no file system comes near it.
    static constexpr std::size_t maximumNameLength = 0xFFFF;

    /// Makes the items of `folder` from file names in any order. A name listed twice gives two items. Throws
    /// std::length_error for a name of more than 65,535 code units.
    [[nodiscard]] static std::shared_ptr<const PathItemBlock> Create(const Tolvex::CanonicalAbsoluteIRI& folder,
                                                                     std::span<const ustring_view> fileNames);

    PathItemBlock(const PathItemBlock&) = delete;
    PathItemBlock& operator=(const PathItemBlock&) = delete;

    [[nodiscard]] std::span<const PathItem> GetItems() const noexcept { return {FirstItem(), count}; }

    /// The items whose normalised stem is `normalizedName`; a binary search.
    [[nodiscard]] std::span<const PathItem> FindByNormalizedStem(ustring_view normalizedName) const noexcept;

private:
    class Builder;
    struct Release;
    PathItemBlock(const Tolvex::CanonicalAbsoluteIRI& folder, std::size_t count) noexcept
        : folder(folder), count(count) {}
    ~PathItemBlock() = default;

    [[nodiscard]] const PathItem* FirstItem() const noexcept { return reinterpret_cast<const PathItem*>(this + 1); }

    Tolvex::CanonicalAbsoluteIRI folder;
    std::size_t count;
    // behind it, in the same allocation: `count` items, then their texts
};

/// A file name taken apart at its last dot; the extension holds the dot. A name without a dot, or with only a leading
/// one, is all stem.
struct FileNameParts {
    ustring_view stem;
    ustring_view extension;
};

[[nodiscard]] KX_EXPORT FileNameParts SplitFileName(ustring_view fileName) noexcept;

} // namespace PathManagement
