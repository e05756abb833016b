#pragma once

#include "floors/FlatNameMap.h"
#include "floors/FlatNameTable.h"
#include "path_interfaces/IPath.h"

#include <tbb/concurrent_hash_map.h>

#include <deque>
#include <vector>

namespace KxBenchmarks {

struct FoldedNameHash {
    static std::size_t hash(const Tolvex::ustring& name) noexcept { return Tolvex::HashName(name); }
    static bool equal(const Tolvex::ustring& a, const Tolvex::ustring& b) noexcept { return Tolvex::IsSameText(a, b); }
};

/// The files of one name among those of all names.
struct NameFiles {
    std::uint32_t first;
    std::uint32_t count;
};
using ConcurrentNameMap = tbb::concurrent_hash_map<Tolvex::ustring, NameFiles, FoldedNameHash>;

/// A file by its number; the handle is one of the catalogue's.
struct CataloguedItem {
    const std::shared_ptr<const PathManagement::IPathEntry>* entry;
    const PathManagement::PathItem* item;
    PathManagement::PathEntryType type; // of the entry
};

/// Every name of a path in the containers that the path's own look-up is compared with: with one number, that of the
/// file that answers when the interpreter asks (of its first file where none does), and with all its files, which can
/// answer whatever is asked.
class NameCatalogue {
public:
    explicit NameCatalogue(const PathManagement::IPath& path);
    NameCatalogue(const NameCatalogue&) = delete;
    NameCatalogue& operator=(const NameCatalogue&) = delete;

    [[nodiscard]] const FlatNameTable& GetFlatTable() const noexcept { return flatTable; }
    [[nodiscard]] const FlatNameMap& GetFlatMap() const noexcept { return flatMap; }
    [[nodiscard]] const ConcurrentNameMap& GetConcurrentMap() const noexcept { return concurrentMap; }
    [[nodiscard]] const PathManagement::PathItem& GetItem(std::uint32_t number) const { return *items[number].item; }

    /// The first of a name's files in path order that lies in scope and bears the most wanted extension there.
    [[nodiscard]] std::optional<std::uint32_t> Choose(NameFiles ofName, PathManagement::SearchScope scope,
                                                      std::span<const Tolvex::ustring> extensions) const;

    /// The whole answer, as a look-up on a path hands it out.
    [[nodiscard]] PathManagement::FoundItem MakeAnswer(std::uint32_t number) const {
        return {*items[number].entry, *items[number].item};
    }

private:
    std::deque<std::shared_ptr<const PathManagement::IPathEntry>> entries;
    std::vector<CataloguedItem> items;
    std::vector<std::uint32_t> files; // numbers of items, those of one name behind each other, in path order
    FlatNameTable flatTable;
    FlatNameMap flatMap;
    ConcurrentNameMap concurrentMap;
};

} // namespace KxBenchmarks
