#include "path_utilities/PathItemBlock.h"

#include "foundation/text/NameHash.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace PathManagement {

namespace {

/// The first four code units as one number that compares like them; most names are told apart by it.
std::uint64_t PrefixOf(ustring_view text) noexcept {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < 4; ++i)
        prefix = prefix << 16 | (i < text.size() ? text[i] : 0u);
    return prefix;
}

/// A file name on its way to becoming an item.
struct Draft {
    ustring_view name;
    ustring_view normalized;
    std::uint32_t hash;
    bool isItsOwnNormalForm;
    bool sharesStemWithPrevious; // in sorted order; set once the drafts are

    [[nodiscard]] ustring_view Stem() const noexcept { return name.substr(0, normalized.size()); }
    [[nodiscard]] ustring_view Extension() const noexcept { return name.substr(normalized.size()); }
};

/// What is sorted in place of the drafts, which are larger.
struct SortKey {
    std::uint64_t prefix;
    std::uint32_t draft;
};

class IsBefore {
public:
    explicit IsBefore(const std::vector<Draft>& drafts) noexcept : drafts(drafts.data()) {}

    bool operator()(const SortKey& a, const SortKey& b) const noexcept {
        return a.prefix != b.prefix ? a.prefix < b.prefix : IsTextBefore(drafts[a.draft], drafts[b.draft]);
    }

private:
    static bool IsTextBefore(const Draft& a, const Draft& b) noexcept {
        if (const int order = a.normalized.compare(b.normalized))
            return order < 0;
        if (const int order = a.Stem().compare(b.Stem()))
            return order < 0;
        return a.Extension() < b.Extension();
    }

    const Draft* drafts;
};

} // namespace

struct PathItemBlock::Release {
    void operator()(const PathItemBlock* block) const noexcept {
        block->~PathItemBlock();
        ::operator delete(const_cast<PathItemBlock*>(block));
    }
};

class PathItemBlock::Builder {
public:
    explicit Builder(std::span<const ustring_view> fileNames) {
        TakeApart(fileNames);
        if (!std::is_sorted(keys.begin(), keys.end(), IsBefore(drafts))) // names from a cache file are
            std::sort(keys.begin(), keys.end(), IsBefore(drafts));
        textLength = LayOutTexts();
    }

    std::shared_ptr<const PathItemBlock> Build(const Tolvex::CanonicalAbsoluteIRI& location) const {
        static_assert(std::is_trivially_destructible_v<PathItem> && alignof(PathItem) <= alignof(PathItemBlock));
        const std::size_t itemsEnd = sizeof(PathItemBlock) + drafts.size() * sizeof(PathItem);
        const std::size_t size = itemsEnd + textLength * sizeof(char16_t);
        if (size > UINT32_MAX)
            throw std::length_error("PathItemBlock: a folder whose names need more than 4 GB");
        void* memory = ::operator new(size);
        std::shared_ptr<const PathItemBlock> block(new (memory) PathItemBlock(location, drafts.size()), Release());
        Fill(static_cast<char*>(memory), itemsEnd);
        return block;
    }

private:
    void TakeApart(std::span<const ustring_view> fileNames) {
        std::size_t total = 0;
        for (const ustring_view name : fileNames)
            total += name.size();
        folded.resize(total);
        drafts.reserve(fileNames.size());
        keys.reserve(fileNames.size());
        char16_t* out = folded.data();
        for (const ustring_view name : fileNames) {
            if (name.size() > maximumNameLength)
                throw std::length_error("PathItemBlock: a file name of more than 65,535 code units");
            const FileNameParts parts = SplitFileName(name);
            const std::uint32_t hash = Tolvex::FoldAndHashName(parts.stem, out);
            const ustring_view normalized(out, parts.stem.size());
            keys.push_back({PrefixOf(normalized), static_cast<std::uint32_t>(drafts.size())});
            drafts.push_back({name, normalized, hash, Tolvex::IsSameText(normalized, parts.stem), false});
            out += parts.stem.size();
        }
    }

    /// Says how the texts will lie and how long they are: each stem that is not the stem before it, its normal form
    /// where that differs, and the extensions of its files. A look-up that has come to a stem has all it compares at
    /// hand.
    std::size_t LayOutTexts() {
        std::size_t length = 0;
        const Draft* previous = nullptr;
        for (const SortKey& key : keys) {
            Draft& draft = drafts[key.draft];
            draft.sharesStemWithPrevious = previous != nullptr && previous->hash == draft.hash &&
                                           Tolvex::IsSameText(previous->Stem(), draft.Stem());
            if (!draft.sharesStemWithPrevious)
                length += draft.normalized.size() * (draft.isItsOwnNormalForm ? 1 : 2);
            length += draft.Extension().size();
            previous = &draft;
        }
        return length;
    }

    void Fill(char* memory, std::size_t itemsEnd) const {
        auto append = [end = reinterpret_cast<char16_t*>(memory + itemsEnd)](ustring_view text) mutable {
            text.copy(end, text.size());
            return std::exchange(end, end + text.size());
        };
        char* place = memory + sizeof(PathItemBlock);
        const char16_t* stem = nullptr;
        for (const SortKey& key : keys) {
            const Draft& draft = drafts[key.draft];
            if (!draft.sharesStemWithPrevious) {
                stem = append(draft.Stem());
                if (!draft.isItsOwnNormalForm)
                    append(draft.normalized);
            }
            const char16_t* const extension = append(draft.Extension());
            FillItem(place, draft, stem, extension, memory);
            place += sizeof(PathItem);
        }
    }

    static void FillItem(char* place, const Draft& draft, const char16_t* stem, const char16_t* extension,
                         const char* memory) {
        const auto distance = [place](const void* to) {
            return static_cast<std::uint32_t>(static_cast<const char*>(to) - place);
        };
        PathItem* item = new (place) PathItem();
        item->stem = distance(stem);
        item->extension = distance(extension);
        item->folder = static_cast<std::uint32_t>(place - (memory + offsetof(PathItemBlock, folder)));
        item->nameHash = draft.hash;
        item->stemLength = static_cast<std::uint16_t>(draft.normalized.size());
        item->extensionLength = static_cast<std::uint16_t>(draft.Extension().size());
        item->kind = static_cast<std::uint8_t>(Tolvex::GetItemKindForExtension(draft.Extension()));
        item->normalizedFollows = !draft.isItsOwnNormalForm;
    }

    std::vector<Draft> drafts;
    std::vector<SortKey> keys; // sorted as the items will be
    ustring folded;
    std::size_t textLength = 0;
};

std::shared_ptr<const PathItemBlock> PathItemBlock::Create(const Tolvex::CanonicalAbsoluteIRI& folder,
                                                           std::span<const ustring_view> fileNames) {
    return Builder(fileNames).Build(folder);
}

std::span<const PathItem> PathItemBlock::FindByNormalizedStem(ustring_view normalizedName) const noexcept {
    struct ByStem {
        bool operator()(const PathItem& item, ustring_view name) const noexcept {
            return item.GetNormalizedStem() < name;
        }
        bool operator()(ustring_view name, const PathItem& item) const noexcept {
            return name < item.GetNormalizedStem();
        }
    };
    const std::span<const PathItem> items = GetItems();
    const auto [first, last] = std::equal_range(items.begin(), items.end(), normalizedName, ByStem());
    return {first, last};
}

FileNameParts SplitFileName(ustring_view fileName) noexcept {
    const std::size_t dot = fileName.rfind(u'.');
    if (dot == ustring_view::npos || dot == 0)
        return {fileName, {}};
    return {fileName.substr(0, dot), fileName.substr(dot)};
}

} // namespace PathManagement
