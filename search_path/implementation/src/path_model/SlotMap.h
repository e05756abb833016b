#pragma once

#include "foundation/storage/AbsoluteIRI.h"
#include "foundation/text/ustring.h"

#include <boost/container/small_vector.hpp>

#include <cstdint>
#include <memory>
#include <span>

namespace PathManagement {

/// From a key to the slots filed under it. Filled from several threads at once, then only read: reading takes no lock,
/// and the order of the slots under a key depends on the schedule.
template <class Key>
class SlotMap {
public:
    SlotMap();
    ~SlotMap();
    SlotMap(const SlotMap&) = delete;
    SlotMap& operator=(const SlotMap&) = delete;

    /// Safe from several threads, but not together with Find.
    void Add(const Key& key, std::uint32_t slot);

    /// Empty when nothing is filed under the key. Valid as long as the map.
    [[nodiscard]] std::span<const std::uint32_t> Find(const Key& key) const;

private:
    using Slots = boost::container::small_vector<std::uint32_t, 1>;
    struct Table;
    std::unique_ptr<Table> table;
};

using LocationSlotMap = SlotMap<Tolvex::AbsoluteIRI>;
using FolderNameSlotMap = SlotMap<Tolvex::ustring>;

extern template class SlotMap<Tolvex::AbsoluteIRI>;
extern template class SlotMap<Tolvex::ustring>;

} // namespace PathManagement
