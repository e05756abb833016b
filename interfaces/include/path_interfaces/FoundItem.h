#pragma once

#include "path_interfaces/IPathEntry.h"

#include <utility>

namespace PathManagement {

/// A file together with the entry in which it was found. One counted handle where the entry owns its items (the
/// ordinary case); the item's own handle is made from it when asked for.
class FoundItem {
public:
    /// REQUIRES: `item` lives as long as `entry`.
    FoundItem(std::shared_ptr<const IPathEntry> entry, const PathItem& item) noexcept
        : entry(std::move(entry)), item(&item) {}

    /// For entries whose items may outlive them. REQUIRES: both are not null.
    FoundItem(std::shared_ptr<const IPathEntry> entry, std::shared_ptr<const PathItem> item) noexcept
        : entry(std::move(entry)), item(item.get()), owner(std::move(item)) {}

    /// Keeps the entry alive. A weak handle made from it may expire with the path that answered, though the entry lives
    /// on in others.
    [[nodiscard]] const std::shared_ptr<const IPathEntry>& GetEntry() const noexcept { return entry; }

    /// Valid as long as this object or a handle of the item lives.
    [[nodiscard]] const PathItem& GetItem() const noexcept { return *item; }

    [[nodiscard]] std::shared_ptr<const PathItem> GetItemHandle() const noexcept {
        return owner ? owner : std::shared_ptr<const PathItem>(entry, item);
    }

private:
    std::shared_ptr<const IPathEntry> entry;
    const PathItem* item;
    std::shared_ptr<const PathItem> owner; // null when the entry's handle keeps the item alive
};

} // namespace PathManagement
