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

    [[nodiscard]] bool AcceptsStem(const PathItem& item) const noexcept {
        // Items reach a question by their normalised stem, so ignoring case the stems are equal already.
        return modifier == Tolvex::CaseModifier::ignoreCase || comparator(item.GetStem(), target.GetName(), modifier);
    }
    [[nodiscard]] bool AcceptsExtension(const PathItem& item, ustring_view wanted) const noexcept {
        return comparator(item.GetExtension(), wanted, modifier);
    }
};

/// The first of `candidates`, items whose normalised stem is the target's, that answers with the most wanted
/// extension; null when none does.
[[nodiscard]] const PathItem* FindFirstItem(std::span<const PathItem> candidates,
                                            const ItemQuestion& question) noexcept;

/// Calls `found` with every candidate that answers: by the target's order of extensions, then in item order. An item
/// that answers to two extensions of the target is found twice.
template <class Found>
void FindAllItems(std::span<const PathItem> candidates, const ItemQuestion& question, const Found& found) {
    for (const ustring& extension : question.target.GetExtensions())
        for (const PathItem& item : candidates)
            if (question.AcceptsStem(item) && question.AcceptsExtension(item, extension))
                found(item);
}

/// The leading run of `items` whose normalised stem is the target's; empty when the first item's is another.
[[nodiscard]] std::span<const PathItem> TakeItemsOfTarget(std::span<const PathItem> items,
                                                          const SearchTarget& target) noexcept;

} // namespace PathManagement
