#include "path_utilities/PathEntryVectorDifferentiator.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace PathManagement {

namespace {

using EntrySpan = std::span<const std::shared_ptr<const IPathEntry>>;
constexpr std::size_t none = SIZE_MAX;

struct Differences {
    PathEntryVector added;
    PathEntryVector removed;
    PathEntryVector reordered;
    PathEntryVector refreshedBefore;
    PathEntryVector refreshedAfter;

    /// Takes in two objects for one folder.
    void AddIfRefreshed(const std::shared_ptr<const IPathEntry>& before,
                        const std::shared_ptr<const IPathEntry>& after) {
        if (before == after)
            return;
        refreshedBefore.push_back(before);
        refreshedAfter.push_back(after);
    }
};

/// Which entries of two lists stand for the same folders.
class Pairing {
public:
    Pairing(EntrySpan before, EntrySpan after)
        : before(before), after(after), partners(after.size(), none), isPaired(before.size(), false) {
        PairInLockStep();
        PairBy<std::hash<const IPathEntry*>>([](const IPathEntry& entry) { return &entry; });
        PairBy<Tolvex::IRIHash>([](const IPathEntry& entry) -> Tolvex::AbsoluteIRI { return entry.GetIRI(); });
    }

    /// The place in the old list of what stands at a place of the new one, or `none`.
    [[nodiscard]] std::size_t GetPartner(std::size_t placeAfter) const { return partners[placeAfter]; }
    [[nodiscard]] bool IsPaired(std::size_t placeBefore) const { return isPaired[placeBefore]; }

    /// By place in the new list: the longest run of pairs that are in the same order in both lists.
    [[nodiscard]] std::vector<bool> FindLongestRunInOrder() const;

private:
    void PairInLockStep();
    template <class Hash, class Key>
    void PairBy(const Key& keyOf);

    EntrySpan before;
    EntrySpan after;
    std::vector<std::size_t> partners;
    std::vector<bool> isPaired;
};

/// Pairs same objects that a walk over both lists meets together; where the lists differ, it looks a few places ahead
/// for what comes again. Finds nearly all where a few folders came, went or moved, and needs no table for it.
void Pairing::PairInLockStep() {
    constexpr std::size_t lookAhead = 8;
    std::size_t placeBefore = 0;
    std::size_t placeAfter = 0;
    while (placeBefore < before.size() && placeAfter < after.size()) {
        const auto comingBefore = before.subspan(placeBefore).first(std::min(lookAhead, before.size() - placeBefore));
        const auto comingAfter = after.subspan(placeAfter).first(std::min(lookAhead, after.size() - placeAfter));
        const auto gone = std::ranges::find(comingBefore, comingAfter.front()) - comingBefore.begin();
        const auto come = std::ranges::find(comingAfter, comingBefore.front()) - comingAfter.begin();
        if (gone < std::ssize(comingBefore)) {
            placeBefore += static_cast<std::size_t>(gone);
        } else if (come < std::ssize(comingAfter)) {
            placeAfter += static_cast<std::size_t>(come);
        }
        if (before[placeBefore] == after[placeAfter]) {
            partners[placeAfter] = placeBefore;
            isPaired[placeBefore] = true;
        }
        ++placeBefore;
        ++placeAfter;
    }
}

/// Pairs what is not paired yet and has the same key: the first of a key with the first, and so on.
template <class Hash, class Key>
void Pairing::PairBy(const Key& keyOf) {
    boost::unordered_flat_map<decltype(keyOf(*before.front())), std::size_t, Hash> firstOfKey;
    firstOfKey.reserve(static_cast<std::size_t>(std::ranges::count(isPaired, false)));
    std::vector<std::size_t> nextOfKey(before.size(), none);
    for (std::size_t place = before.size(); place-- > 0;) {
        if (isPaired[place])
            continue;
        const auto [found, isNew] = firstOfKey.try_emplace(keyOf(*before[place]), place);
        if (!isNew)
            nextOfKey[place] = std::exchange(found->second, place);
    }
    if (firstOfKey.empty())
        return;
    for (std::size_t place = 0; place < after.size(); ++place) {
        if (partners[place] != none)
            continue;
        const auto found = firstOfKey.find(keyOf(*after[place]));
        if (found == firstOfKey.end() || found->second == none)
            continue;
        partners[place] = found->second;
        isPaired[found->second] = true;
        found->second = nextOfKey[found->second];
    }
}

/// The longest increasing subsequence of the partners, by patience sorting: for each length of a run, what ends the run
/// of that length with the smallest end.
std::vector<bool> Pairing::FindLongestRunInOrder() const {
    std::vector<std::size_t> ends;
    std::vector<std::size_t> previous(after.size(), none);
    for (std::size_t place = 0; place < after.size(); ++place) {
        if (partners[place] == none)
            continue;
        auto end = ends.end();
        if (!ends.empty() && partners[ends.back()] > partners[place])
            end = std::ranges::lower_bound(ends, partners[place], {}, [this](std::size_t at) { return partners[at]; });
        if (end != ends.begin())
            previous[place] = *std::prev(end);
        if (end == ends.end())
            ends.push_back(place);
        else
            *end = place;
    }
    std::vector<bool> isInRun(after.size(), false);
    for (std::size_t place = ends.empty() ? none : ends.back(); place != none; place = previous[place])
        isInRun[place] = true;
    return isInRun;
}

bool IsSameObject(const std::shared_ptr<const IPathEntry>& before, const std::shared_ptr<const IPathEntry>& after) {
    return before == after;
}

bool IsSameFolder(const std::shared_ptr<const IPathEntry>& before, const std::shared_ptr<const IPathEntry>& after) {
    return before == after || before->GetIRI() == after->GetIRI();
}

/// How many places both lists begin with in common.
template <class IsSame>
std::size_t CountCommonHead(EntrySpan before, EntrySpan after, const IsSame& isSame) {
    return static_cast<std::size_t>(std::ranges::mismatch(before, after, isSame).in1 - before.begin());
}

template <class IsSame>
std::size_t CountCommonTail(EntrySpan before, EntrySpan after, const IsSame& isSame) {
    const auto end = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend(), isSame).first;
    return static_cast<std::size_t>(end - before.rbegin());
}

void CompareMiddle(EntrySpan before, EntrySpan after, Differences& differences) {
    if (before.empty() || after.empty()) {
        differences.removed.assign(before.begin(), before.end());
        differences.added.assign(after.begin(), after.end());
        return;
    }
    const Pairing pairing(before, after);
    const std::vector<bool> isInOrder = pairing.FindLongestRunInOrder();
    for (std::size_t place = 0; place < after.size(); ++place) {
        const std::size_t partner = pairing.GetPartner(place);
        if (partner == none) {
            differences.added.push_back(after[place]);
            continue;
        }
        if (!isInOrder[place])
            differences.reordered.push_back(after[place]);
        differences.AddIfRefreshed(before[partner], after[place]);
    }
    for (std::size_t place = 0; place < before.size(); ++place)
        if (!pairing.IsPaired(place))
            differences.removed.push_back(before[place]);
}

Differences FindDifferences(EntrySpan before, EntrySpan after) {
    Differences differences;
    const auto addRefreshed = [&](EntrySpan some, EntrySpan others) {
        for (std::size_t place = 0; place < some.size(); ++place)
            differences.AddIfRefreshed(some[place], others[place]);
    };
    const std::size_t head = CountCommonHead(before, after, IsSameFolder);
    addRefreshed(before.first(head), after.first(head));
    before = before.subspan(head);
    after = after.subspan(head);
    const std::size_t tail = CountCommonTail(before, after, IsSameFolder);
    CompareMiddle(before.first(before.size() - tail), after.first(after.size() - tail), differences);
    addRefreshed(before.last(tail), after.last(tail));
    return differences;
}

PathEntryVector ListWithDescendants(EntrySpan entries) {
    PathEntryVector all;
    for (const auto& entry : entries)
        entry->ForEachEntry(SearchScope::All(), [&all](const auto& each) {
            all.push_back(each);
            return false;
        });
    return all;
}

/// What is the same object in both has the same descendants.
Differences FindDifferencesWithDescendants(EntrySpan before, EntrySpan after) {
    const std::size_t head = CountCommonHead(before, after, IsSameObject);
    before = before.subspan(head);
    after = after.subspan(head);
    const std::size_t tail = CountCommonTail(before, after, IsSameObject);
    return FindDifferences(ListWithDescendants(before.first(before.size() - tail)),
                           ListWithDescendants(after.first(after.size() - tail)));
}

Differences FindDifferences(EntrySpan before, EntrySpan after, ComparisonFilter filter) {
    switch (filter) {
    case ComparisonFilter::withDescendants:
        return FindDifferencesWithDescendants(before, after);
    case ComparisonFilter::asListed:
        return FindDifferences(before, after);
    }
    throw std::invalid_argument("PathEntryVectorDifferentiator: a value that is no ComparisonFilter");
}

} // namespace

void PathEntryVectorDifferentiator::Compare(const PathEntryVector& oldEntries, const PathEntryVector& newEntries,
                                            ComparisonFilter filter) {
    Differences differences = FindDifferences(oldEntries, newEntries, filter);
    PathEntryVectorDifferentiator result;
    *result.added = std::move(differences.added);
    *result.removed = std::move(differences.removed);
    *result.reordered = std::move(differences.reordered);
    *result.refreshedBefore = std::move(differences.refreshedBefore);
    *result.refreshedAfter = std::move(differences.refreshedAfter);
    *this = std::move(result);
}

} // namespace PathManagement
