#pragma once

#include "path_interfaces/IPathEntry.h"
#include "path_utilities/PublishOnce.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace PathManagement {

/// Another entry at one place of a list.
struct EntryReplacement {
    std::uint32_t place;
    std::shared_ptr<const IPathEntry> entry;
};

/// The ordered main entries of a path. Immutable, safe from any thread.
///
/// Copying a handle touches the counter of its entry, so that a copy of a long list waits for one cache line after the
/// other. A list that differs from another in few places therefore shares that one's blocks and copies only those it
/// changes; the first list that is derived from a whole one takes all of it apart.
class MainEntryList {
public:
    using Handle = std::shared_ptr<const IPathEntry>;

    explicit MainEntryList(std::shared_ptr<const PathEntryVector> entries);

    /// `previous` with these replacements. REQUIRES: they are in the order of their places, each place once.
    MainEntryList(const MainEntryList& previous, std::span<const EntryReplacement> replacements);

    [[nodiscard]] std::size_t GetSize() const noexcept { return size; }
    [[nodiscard]] const Handle& operator[](std::size_t place) const noexcept {
        return blocks[place / blockSize][place % blockSize];
    }

    /// All of them; the list this was made from, or one that is made when first asked for.
    [[nodiscard]] const std::shared_ptr<const PathEntryVector>& GetVector() const;

private:
    static constexpr std::size_t blockSize = 64;
    using Block = std::shared_ptr<const Handle[]>;

    [[nodiscard]] std::span<const Handle> GetBlock(std::size_t block) const noexcept;
    [[nodiscard]] Block CopyBlock(std::size_t block, std::span<const EntryReplacement> replacements) const;

    std::size_t size;
    std::vector<const Handle*> blocks;
    std::vector<Block> owners; // of the blocks; none when they lie in `vector`
    PublishOnce<std::shared_ptr<const PathEntryVector>> vector;
};

} // namespace PathManagement
