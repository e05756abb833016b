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
using ConcurrentNameMap = tbb::concurrent_hash_map<Tolvex::ustring, std::uint32_t, FoldedNameHash>;

/// A file by its number; the handle is one of the catalogue's.
struct CataloguedItem {
    const std::shared_ptr<const PathManagement::IPathEntry>* entry;
    const PathManagement::PathItem* item;
};

/// Every name of a path with one number, in the containers that the path's own look-up is compared with. The number of
/// a name is that of the file that answers when the interpreter asks; of its first file where none does.
class NameCatalogue {
public:
    explicit NameCatalogue(const PathManagement::IPath& path);
    NameCatalogue(const NameCatalogue&) = delete;
    NameCatalogue& operator=(const NameCatalogue&) = delete;

    [[nodiscard]] const FlatNameTable& GetFlatTable() const noexcept { return flatTable; }
    [[nodiscard]] const FlatNameMap& GetFlatMap() const noexcept { return flatMap; }
    [[nodiscard]] const ConcurrentNameMap& GetConcurrentMap() const noexcept { return concurrentMap; }
    [[nodiscard]] const PathManagement::PathItem& GetItem(std::uint32_t number) const { return *items[number].item; }

    /// The whole answer, as a look-up on a path hands it out.
    [[nodiscard]] PathManagement::FoundItem MakeAnswer(std::uint32_t number) const {
        return {*items[number].entry, *items[number].item};
    }

private:
    std::deque<std::shared_ptr<const PathManagement::IPathEntry>> entries;
    std::vector<CataloguedItem> items;
    FlatNameTable flatTable;
    FlatNameMap flatMap;
    ConcurrentNameMap concurrentMap;
};

} // namespace KxBenchmarks
