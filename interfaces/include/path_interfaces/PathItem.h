#pragma once

#include "foundation/environment/CodeFiles.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"
#include "foundation/text/CaseFolding.h"

#include <cstdint>

namespace PathManagement {

using Tolvex::ustring;
using Tolvex::ustring_view;

/// One file of a folder. The names are views into the block that holds all items of the folder, in which alone items
/// exist (see PathItemBlock); they live as long as any handle of the folder's items. Immutable, safe from any thread.
class PathItem {
public:
    PathItem(const PathItem&) = delete;
    PathItem& operator=(const PathItem&) = delete;

    /// The file name up to its last dot; the whole name when it has no dot or only a leading one.
    [[nodiscard]] ustring_view GetStem() const noexcept { return {TextAt(stem), stemLength}; }

    /// The rest of the file name, the dot included; may be empty. Stem followed by extension is the file name.
    [[nodiscard]] ustring_view GetExtension() const noexcept { return {TextAt(extension), extensionLength}; }

    /// What Normalize makes of the stem.
    [[nodiscard]] ustring_view GetNormalizedStem() const noexcept {
        return {TextAt(stem) + (normalizedFollows ? stemLength : 0), stemLength};
    }

    /// Hash of the normalised stem (Tolvex::HashName), made once when the folder was read.
    [[nodiscard]] std::uint32_t GetNameHash() const noexcept { return nameHash; }

    [[nodiscard]] Tolvex::ItemKind GetKind() const noexcept { return static_cast<Tolvex::ItemKind>(kind); }

    /// The folder's IRI and the file name, put together on each call.
    [[nodiscard]] Tolvex::AbsoluteIRI GetIRI() const {
        return GetFolder().getChild(ustring(GetStem()).append(GetExtension()));
    }

    [[nodiscard]] const Tolvex::CanonicalAbsoluteIRI& GetFolder() const noexcept {
        return *reinterpret_cast<const Tolvex::CanonicalAbsoluteIRI*>(reinterpret_cast<const char*>(this) - folder);
    }

    /// The form in which stems are compared and indexed: Unicode simple case folding, no change of normal form. Two
    /// names that any matcher calls equal have one normal form.
    [[nodiscard]] static ustring Normalize(ustring_view stem) { return Tolvex::FoldCase(stem); }

private:
    friend class PathItemBlock;
    PathItem() noexcept = default;

    [[nodiscard]] const char16_t* TextAt(std::uint32_t distance) const noexcept {
        return reinterpret_cast<const char16_t*>(reinterpret_cast<const char*>(this) + distance);
    }

    // Distances in bytes from this object: an item is 24 bytes instead of four strings, and a block of items is one
    // allocation that can be read without following a pointer.
    std::uint32_t stem = 0;
    std::uint32_t extension = 0;
    std::uint32_t folder = 0; // backwards, to the block's folder IRI
    std::uint32_t nameHash = 0;
    std::uint16_t stemLength = 0;
    std::uint16_t extensionLength = 0;
    std::uint8_t kind = 0;
    bool normalizedFollows = false; // else the stem is its own normal form
};

} // namespace PathManagement
