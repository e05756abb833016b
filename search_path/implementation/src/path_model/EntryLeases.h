#pragma once

#include "path_interfaces/IPathEntry.h"
#include "path_utilities/PublishOnce.h"

#include <array>
#include <cstdint>
#include <memory>

namespace PathManagement {

/// Hands out the handles of a path's answers so that threads do not meet at one counter. Two threads that look the same
/// names up would otherwise spend most of their time in passing the cache lines of the counters to and fro: threads are
/// numbered as they come, the first counts on the main entry's own handle, each further one on a lease, which is
/// counted apart and holds that handle. Leases are made when they are first needed, one allocation each, and kept for
/// as long as the path. Safe from any thread, takes no lock.
class EntryLeases {
public:
    /// For main entries with places from 0 to `mainCount` - 1.
    explicit EntryLeases(std::size_t mainCount) noexcept : mainCount(mainCount) {}

    /// A handle to `entry` that keeps `mainEntry` alive. REQUIRES: `mainEntry` is the one at `mainPlace`, in every
    /// call.
    [[nodiscard]] std::shared_ptr<const IPathEntry>
    Take(std::uint32_t mainPlace, const std::shared_ptr<const IPathEntry>& mainEntry, const IPathEntry& entry) const {
        const unsigned thread = GetThreadNumber();
        if (thread == 0)
            return {mainEntry, &entry};
        return {GetLease(thread - 1, mainPlace, mainEntry), &entry};
    }

private:
    static constexpr unsigned setCount = 7; // further threads share

    using Lease = std::shared_ptr<const void>;

    /// The leases of one thread, or of a few that share them, by place of the main entry.
    struct Set {
        explicit Set(std::size_t mainCount) : leases(std::make_unique<PublishOnce<Lease>[]>(mainCount)) {}
        std::unique_ptr<PublishOnce<Lease>[]> leases;
    };

    [[nodiscard]] static unsigned GetThreadNumber() noexcept;
    [[nodiscard]] const Lease& GetLease(unsigned set, std::uint32_t mainPlace,
                                        const std::shared_ptr<const IPathEntry>& mainEntry) const;

    std::size_t mainCount;
    std::array<PublishOnce<Set>, setCount> sets;
};

} // namespace PathManagement
