#include "path_model/ItemSearch.h"

namespace PathManagement {

namespace {

bool HasNameOfTarget(const PathItem& item, const SearchTarget& target) noexcept {
    return Tolvex::IsSameText(item.GetNormalizedStem(), target.GetNormalizedName());
}

/// The usual case, a name with one extension: an item whose properties the loop keeps at hand.
bool IsAccepted(const PathItem& item, const ItemQuestion& question) noexcept {
    const ustring_view itsExtension = item.GetExtension();
    for (const ustring& extension : question.target.GetExtensions())
        if (question.comparator(itsExtension, extension, question.modifier))
            return question.AcceptsStem(item);
    return false;
}

} // namespace

const PathItem* FindFirstItemOfName(std::span<const PathItem> items, const ItemQuestion& question) noexcept {
    const PathItem& first = items.front();
    if (!HasNameOfTarget(first, question.target))
        return nullptr;
    std::size_t length = 1;
    while (length < items.size() && items[length].GetNameHash() == first.GetNameHash() &&
           HasNameOfTarget(items[length], question.target))
        ++length;
    if (length == 1)
        return IsAccepted(first, question) ? &first : nullptr;
    return FindFirstItem(items.first(length), question);
}

} // namespace PathManagement
