#pragma once

#include "path_interfaces/IPathEntry.h"

#include <memory>

namespace PathManagement {

/// What of two lists of entries is compared.
enum class ComparisonFilter {
    withDescendants = 0, ///< the entries listed, each followed by its descendants in the order of a walk
    asListed = 1         ///< the entries listed, and nothing below them
};

/// What has to be done to one list of entries to make another of it. Entries are told apart by location; a folder that
/// is listed more often in one of the lists counts as added or removed as often as it is more.
///
/// Long lists that differ in few places cost little more than a walk in lock-step: what both begin and end with is
/// passed over, most of the rest is paired by its objects, and only what is left by its locations.
///
/// The lists handed out are never null, and belong to those who took them: another comparison makes new ones.
class KX_EXPORT PathEntryVectorDifferentiator {
public:
    using Entries = std::shared_ptr<PathEntryVector>;

    /// As after comparing two equal lists.
    PathEntryVectorDifferentiator() = default;

    /// REQUIRES: no null entry. Throws std::invalid_argument for a value that is no ComparisonFilter. What throws
    /// leaves the result of the comparison before.
    void Compare(const PathEntryVector& oldEntries, const PathEntryVector& newEntries, ComparisonFilter filter);

    /// Those only in the new list, in its order.
    [[nodiscard]] Entries GetAdded() const { return added; }

    /// Those only in the old list, in its order.
    [[nodiscard]] Entries GetRemoved() const { return removed; }

    /// The fewest entries that must be moved so that what is in both lists gets its new order; the new list's objects,
    /// in its order.
    [[nodiscard]] Entries GetReordered() const { return reordered; }

    /// The old list's objects for folders that have another object in the new list, in the new list's order.
    [[nodiscard]] Entries GetRefreshedBefore() const { return refreshedBefore; }

    /// What each of GetRefreshedBefore is replaced by, place by place.
    [[nodiscard]] Entries GetRefreshedAfter() const { return refreshedAfter; }

private:
    Entries added = std::make_shared<PathEntryVector>();
    Entries removed = std::make_shared<PathEntryVector>();
    Entries reordered = std::make_shared<PathEntryVector>();
    Entries refreshedBefore = std::make_shared<PathEntryVector>();
    Entries refreshedAfter = std::make_shared<PathEntryVector>();
};

} // namespace PathManagement
