#include "path_model/ItemSearch.h"

namespace PathManagement {

const PathItem* FindFirstItem(std::span<const PathItem> candidates, const ItemQuestion& question) noexcept {
    for (const ustring& extension : question.target.GetExtensions())
        for (const PathItem& item : candidates)
            if (question.AcceptsStem(item) && question.AcceptsExtension(item, extension))
                return &item;
    return nullptr;
}

std::span<const PathItem> TakeItemsOfTarget(std::span<const PathItem> items, const SearchTarget& target) noexcept {
    std::size_t length = 0;
    while (length < items.size() && items[length].GetNameHash() == target.GetNameHash() &&
           items[length].GetNormalizedStem() == target.GetNormalizedName())
        ++length;
    return items.first(length);
}

} // namespace PathManagement
