#include "foundation/storage/FolderListing.h"

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
    names.clear();
    items.clear();
}

void FolderListing::Add(ustring_view name, Kind kind) {
    const auto item = MakeItem(names.size(), name.size(), kind);
    names += name;
    items.push_back(item);
}

void FolderListing::AddUtf8(std::string_view name, Kind kind) {
    const auto offset = names.size();
    AppendFromUtf8(names, name);
    items.push_back(MakeItem(offset, names.size() - offset, kind));
}

} // namespace Tolvex
