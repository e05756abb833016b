#pragma once

#include "foundation/text/NameHash.h"

#include <boost/container/small_vector.hpp>

#include <span>
#include <utility>
#include <vector>

namespace PathManagement {

using Tolvex::ustring;
using Tolvex::ustring_view;

/// What a look-up asks for: a wanted stem (or partial pathname) and the accepted extensions, most wanted first. Folds
/// and hashes its name once, when it is made; names of ordinary length cost no allocation.
class SearchTarget {
public:
    /// Borrows `extensions`, which must outlive this target and its copies.
    SearchTarget(ustring_view name, std::span<const ustring> extensions) : borrowed(extensions) { SetName(name); }

    /// Owns the extensions.
    SearchTarget(ustring_view name, std::vector<ustring>&& extensions) : owned(std::move(extensions)) { SetName(name); }

    /// A target for another name with the extensions of this one (borrowed where this one borrows).
    [[nodiscard]] SearchTarget WithName(ustring_view name) const {
        return owned.empty() ? SearchTarget(name, borrowed) : SearchTarget(name, std::vector<ustring>(owned));
    }

    [[nodiscard]] ustring_view GetName() const noexcept { return {text.data(), nameLength}; }
    /// PathItem::Normalize of the name.
    [[nodiscard]] ustring_view GetNormalizedName() const noexcept {
        return {text.data() + (text.size() - nameLength), nameLength};
    }
    /// Tolvex::HashName of the normalised name.
    [[nodiscard]] std::uint32_t GetNameHash() const noexcept { return nameHash; }
    [[nodiscard]] std::span<const ustring> GetExtensions() const noexcept { return owned.empty() ? borrowed : owned; }

private:
    void SetName(ustring_view name) {
        nameLength = name.size();
        text.resize(2 * nameLength, boost::container::default_init);
        name.copy(text.data(), nameLength);
        nameHash = Tolvex::FoldAndHashName(name, text.data() + nameLength);
    }

    boost::container::small_vector<char16_t, 96> text; // the name, then its normal form
    std::size_t nameLength = 0;
    std::uint32_t nameHash = 0;
    std::vector<ustring> owned;
    std::span<const ustring> borrowed;
};

} // namespace PathManagement
