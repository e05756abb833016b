#pragma once

#include "foundation/storage/PathComparator.h"
#include "path_interfaces/PathItem.h"
#include "path_interfaces/SearchTarget.h"

#include <span>

namespace PathManagement {

/// The question that one folder is asked: target, and how to compare names there.
struct ItemQuestion {
    const SearchTarget& target;
    Tolvex::PathComparator comparator;
    Tolvex::CaseModifier modifier;

    [[nodiscard]] bool Accepts(const PathItem& item, ustring_view extension) const noexcept {
        return comparator(item.GetExtension(), extension, modifier) && AcceptsStem(item);
    }
    [[nodiscard]] bool AcceptsStem(const PathItem& item) const noexcept {
        // Items reach a question by their normalised stem, so ignoring case the stems are equal already.
        return modifier == Tolvex::CaseModifier::ignoreCase || comparator(item.GetStem(), target.GetName(), modifier);
    }
};

/// The first of `candidates`, items whose normalised stem is the target's, that answers with the most wanted
/// extension; null when none does.
[[nodiscard]] inline const PathItem* FindFirstItem(std::span<const PathItem> candidates,
                                                   const ItemQuestion& question) noexcept {
    for (const ustring& extension : question.target.GetExtensions())
        for (const PathItem& item : candidates)
            if (question.Accepts(item, extension))
                return &item;
    return nullptr;
}

/// Calls `found` with every candidate that answers: by the target's order of extensions, then in item order. An item
/// that answers to two extensions of the target is found twice.
template <class Found>
void FindAllItems(std::span<const PathItem> candidates, const ItemQuestion& question, const Found& found) {
    for (const ustring& extension : question.target.GetExtensions())
        for (const PathItem& item : candidates)
            if (question.Accepts(item, extension))
                found(item);
}

/// As FindFirstItem, asked of an entry's items from the first of a name on; null also when the name, whose hash is the
/// target's, is another. REQUIRES: at least one item.
[[nodiscard]] const PathItem* FindFirstItemOfName(std::span<const PathItem> items,
                                                  const ItemQuestion& question) noexcept;

} // namespace PathManagement
