#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace Tolvex {

/// The names of one folder, in no particular order, in one buffer. Made to be filled again and again: clearing keeps
/// the room.
class KX_EXPORT FolderListing {
public:
    enum class Kind : std::uint8_t { file, folder };

    struct Item {
        std::uint32_t offset;
        std::uint16_t length;
        Kind kind;
    };

    void Clear() noexcept;
    void Add(ustring_view name, Kind kind);
    /// Converts as FromUtf8 does.
    void AddUtf8(std::string_view name, Kind kind);

    [[nodiscard]] const std::vector<Item>& GetItems() const noexcept { return items; }
    /// Valid until the listing is next changed.
    [[nodiscard]] ustring_view GetName(const Item& item) const noexcept {
        return {names.data() + item.offset, item.length};
    }

private:
    [[nodiscard]] char16_t* MakeRoom(std::size_t units);

    ustring names; // as long as it has ever been, so that its room is cleared once
    std::size_t used = 0;
    std::vector<Item> items;
};

} // namespace Tolvex
