#include "path_model/MainEntryList.h"

#include <algorithm>
#include <utility>

namespace PathManagement {

MainEntryList::MainEntryList(std::shared_ptr<const PathEntryVector> entries) : size(entries->size()) {
    for (std::size_t place = 0; place < size; place += blockSize)
        blocks.push_back(entries->data() + place);
    static_cast<void>(vector.Get([&entries] { return std::move(entries); }));
}

MainEntryList::MainEntryList(const MainEntryList& previous, std::span<const EntryReplacement> replacements)
    : size(previous.size), blocks(previous.blocks), owners(previous.owners) {
    const bool takesApart = owners.size() < blocks.size();
    owners.resize(blocks.size());
    auto next = replacements.begin();
    for (std::size_t block = 0; block < blocks.size(); ++block) {
        const auto end = std::find_if(next, replacements.end(), [block](const EntryReplacement& replacement) {
            return replacement.place / blockSize != block;
        });
        if (takesApart || next != end) {
            owners[block] = previous.CopyBlock(block, {next, end});
            blocks[block] = owners[block].get();
        }
        next = end;
    }
}

std::span<const MainEntryList::Handle> MainEntryList::GetBlock(std::size_t block) const noexcept {
    return {blocks[block], std::min(blockSize, size - block * blockSize)};
}

/// With the replacements, which are all within it.
MainEntryList::Block MainEntryList::CopyBlock(std::size_t block, std::span<const EntryReplacement> replacements) const {
    const std::span<const Handle> entries = GetBlock(block);
    auto copy = std::make_shared<Handle[]>(entries.size());
    auto next = replacements.begin();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const bool isReplaced = next != replacements.end() && next->place % blockSize == i;
        copy[static_cast<std::ptrdiff_t>(i)] = isReplaced ? next++->entry : entries[i];
    }
    return copy;
}

const std::shared_ptr<const PathEntryVector>& MainEntryList::GetVector() const {
    return vector.Get([this] {
        PathEntryVector entries;
        entries.reserve(size);
        for (std::size_t block = 0; block < blocks.size(); ++block) {
            const std::span<const Handle> some = GetBlock(block);
            entries.insert(entries.end(), some.begin(), some.end());
        }
        return std::make_shared<const PathEntryVector>(std::move(entries));
    });
}

} // namespace PathManagement
