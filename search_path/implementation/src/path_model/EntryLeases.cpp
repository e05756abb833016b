#include "path_model/EntryLeases.h"

#include <atomic>

namespace PathManagement {

namespace {

/// What a lease counts for. Fills a cache line together with its counter, so that no two leases share one.
struct alignas(64) Holding {
    std::shared_ptr<const IPathEntry> mainEntry;
};

} // namespace

unsigned EntryLeases::GetThreadNumber() noexcept {
    constexpr unsigned unknown = setCount + 1;
    static std::atomic<unsigned> threads = 0;
    thread_local unsigned number = unknown;
    if (number == unknown)
        number = threads.fetch_add(1, std::memory_order_relaxed) % unknown;
    return number;
}

const EntryLeases::Lease& EntryLeases::GetLease(unsigned set, std::uint32_t mainPlace,
                                                const std::shared_ptr<const IPathEntry>& mainEntry) const {
    const Set& leases = sets[set].Get([this] { return Set(mainCount); });
    return leases.leases[mainPlace].Get([&mainEntry] { return Lease(std::make_shared<Holding>(mainEntry)); });
}

} // namespace PathManagement
