#include "foundation/storage/FolderListing.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace Tolvex {
namespace {

FolderListing::Item MakeItem(std::size_t offset, std::size_t length, FolderListing::Kind kind) {
    if (offset > std::numeric_limits<std::uint32_t>::max() || length > std::numeric_limits<std::uint16_t>::max())
        throw std::length_error("folder listing too long");
    return {static_cast<std::uint32_t>(offset), static_cast<std::uint16_t>(length), kind};
}

} // namespace

void FolderListing::Clear() noexcept {
    used = 0;
    items.clear();
}

void FolderListing::Add(ustring_view name, Kind kind) {
    items.push_back(MakeItem(used, name.size(), kind));
    used += name.copy(MakeRoom(name.size()), name.size());
}

void FolderListing::AddUtf8(std::string_view name, Kind kind) {
    const std::size_t length = ConvertFromUtf8(name, MakeRoom(name.size()));
    items.push_back(MakeItem(used, length, kind));
    used += length;
}

/// Where the next name goes, with room for so many code units.
char16_t* FolderListing::MakeRoom(std::size_t units) {
    if (names.size() - used < units)
        names.resize(std::max(2 * names.size(), used + units));
    return names.data() + used;
}

} // namespace Tolvex
