#include "path_model/SlotMap.h"

#include "foundation/text/NameHash.h"

#include <tbb/concurrent_hash_map.h>

#include <utility>

namespace PathManagement {

namespace {

struct KeyHashCompare {
    static std::size_t hash(const Tolvex::AbsoluteIRI& location) { return location.hashValue(); }
    static std::size_t hash(const Tolvex::ustring& text) { return Tolvex::HashName(text); }
    template <class Key>
    static bool equal(const Key& a, const Key& b) {
        return a == b;
    }
};

} // namespace

template <class Key>
struct SlotMap<Key>::Table {
    tbb::concurrent_hash_map<Key, Slots, KeyHashCompare> map;
};

template <class Key>
SlotMap<Key>::SlotMap() : table(std::make_unique<Table>()) {}

template <class Key>
SlotMap<Key>::~SlotMap() = default;

template <class Key>
void SlotMap<Key>::Add(const Key& key, std::uint32_t slot) {
    typename decltype(Table::map)::accessor place;
    table->map.insert(place, key);
    place->second.push_back(slot);
}

template <class Key>
std::span<const std::uint32_t> SlotMap<Key>::Find(const Key& key) const {
    // equal_range locks no element, unlike find; it is safe because nobody writes any more.
    const auto [first, last] = std::as_const(table->map).equal_range(key);
    if (first == last)
        return {};
    return {first->second.data(), first->second.size()};
}

template class SlotMap<Tolvex::AbsoluteIRI>;
template class SlotMap<Tolvex::ustring>;

} // namespace PathManagement
