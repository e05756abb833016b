#include "path_utilities/PathSequence.h"

#include <algorithm>
#include <utility>

namespace PathManagement {

namespace {

/// A path of no more main entries is walked whatever the length of the other: a long path may not have its list yet.
constexpr std::size_t few = 16;

} // namespace

PathSequence::PathSequence(std::vector<std::shared_ptr<const IPath>> paths, Repeats repeats) {
    members.reserve(paths.size());
    for (auto& path : paths) {
        members.push_back({std::move(path), Overlap::none});
        if (repeats == Repeats::dropped)
            members.back().overlap = FindOverlap(members.size() - 1);
    }
}

PathSequence::~PathSequence() = default;

/// Walks the smaller of two paths and looks its entries up in the other.
PathSequence::Overlap PathSequence::FindOverlap(std::size_t member) const {
    auto overlap = Overlap::none;
    for (std::size_t earlier = 0; earlier < member; ++earlier) {
        const IPath* walked = members[earlier].path.get();
        const IPath* asked = members[member].path.get();
        const std::size_t length = walked->GetMainEntries()->size();
        if (length > few && length > asked->GetMainEntries()->size())
            std::swap(walked, asked);
        walked->ForEachEntry(SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
            if (const auto other = asked->GetPathEntryFromAbsoluteIRI(entry->GetIRI()))
                overlap = std::max(overlap, other == entry ? Overlap::sameEntries : Overlap::otherEntries);
            return overlap == Overlap::otherEntries;
        });
    }
    return overlap;
}

const IPath* PathSequence::FindPathOf(const IPathEntry& entry) const {
    const auto found =
        std::ranges::find_if(members, [&](const Member& member) { return member.path->IsEntryOnPath(entry); });
    return found == members.end() ? nullptr : found->path.get();
}

/// Whether an entry of a member stands on an earlier path already.
bool PathSequence::IsHidden(std::size_t member, const IPathEntry& entry) const {
    if (members[member].overlap == Overlap::none)
        return false;
    return std::any_of(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(member),
                       [&](const Member& earlier) { return earlier.path->IsEntryOnPath(entry); });
}

/// What `get` gives for each path, without what is hidden.
template <class Get>
PathEntryVector PathSequence::Collect(const Get& get) const {
    PathEntryVector all;
    for (std::size_t member = 0; member < members.size(); ++member) {
        const PathEntryVector& ofMember = get(*members[member].path);
        std::ranges::copy_if(ofMember, std::back_inserter(all),
                             [&](const auto& entry) { return !IsHidden(member, *entry); });
    }
    return all;
}

std::shared_ptr<const PathEntryVector> PathSequence::GetMainEntries() const {
    return mainEntries.Get([this] {
        return std::make_shared<const PathEntryVector>(
            Collect([](const IPath& path) { return *path.GetMainEntries(); }));
    });
}

PathEntryVector PathSequence::GetMethodEntries() const {
    return Collect([](const IPath& path) { return path.GetMethodEntries(); });
}

PathEntryVector PathSequence::GetMethodEntriesByName(SearchScope scope, const ustring& className) const {
    return Collect([&](const IPath& path) { return path.GetMethodEntriesByName(scope, className); });
}

PathEntryVector PathSequence::GetPartiallyMatchingEntries(SearchScope scope, const ustring& partialPath) const {
    return Collect([&](const IPath& path) { return path.GetPartiallyMatchingEntries(scope, partialPath); });
}

std::shared_ptr<const IPathEntry> PathSequence::GetMainEntryForEntry(const IPathEntry& entry) const {
    const IPath* const path = FindPathOf(entry);
    return path == nullptr ? nullptr : path->GetMainEntryForEntry(entry);
}

std::shared_ptr<const IPathEntry> PathSequence::GetParentEntryForEntry(const IPathEntry& entry) const {
    const IPath* const path = FindPathOf(entry);
    return path == nullptr ? nullptr : path->GetParentEntryForEntry(entry);
}

std::shared_ptr<const IPathEntry>
PathSequence::GetPathEntryFromAbsoluteIRI(const Tolvex::CanonicalAbsoluteIRI& location) const {
    for (const Member& member : members)
        if (auto entry = member.path->GetPathEntryFromAbsoluteIRI(location))
            return entry;
    return nullptr;
}

std::shared_ptr<const IPathEntry> PathSequence::GetPathEntryFromAbsoluteIRI(const Tolvex::AbsoluteIRI& location,
                                                                            FilenameMatchingPolicy policy) const {
    // What a later path gives for it cannot be hidden: the earlier path would have given its own.
    for (const Member& member : members)
        if (auto entry = member.path->GetPathEntryFromAbsoluteIRI(location, policy))
            return entry;
    return nullptr;
}

std::optional<FoundItem> PathSequence::FindFirstInScope(SearchScope scope, const SearchTarget& target,
                                                        FilenameMatchingPolicy policy) const {
    if (members.empty())
        return std::nullopt;
    const std::size_t last = members.size() - 1;
    for (std::size_t member = 0; member < last; ++member)
        if (auto found = FindFirstInMember(member, scope, target, policy))
            return found;
    return FindFirstInMember(last, scope, target, policy);
}

std::optional<FoundItem> PathSequence::FindFirstInMember(std::size_t member, SearchScope scope,
                                                         const SearchTarget& target,
                                                         FilenameMatchingPolicy policy) const {
    // An entry that an earlier path holds as the same object has been asked there, and had no answer.
    if (members[member].overlap != Overlap::otherEntries)
        return members[member].path->FindFirstInScope(scope, target, policy);
    auto found = members[member].path->FindFirstInScope(scope, target, policy);
    if (!found || !IsHidden(member, *found->GetEntry()))
        return found;
    auto all = FindAllInMember(member, scope, target, policy);
    return all.empty() ? std::nullopt : std::optional(std::move(all.front()));
}

std::vector<FoundItem> PathSequence::FindAllInMember(std::size_t member, SearchScope scope, const SearchTarget& target,
                                                     FilenameMatchingPolicy policy) const {
    auto found = members[member].path->FindAllInScope(scope, target, policy);
    std::erase_if(found, [&](const FoundItem& item) { return IsHidden(member, *item.GetEntry()); });
    return found;
}

std::vector<FoundItem> PathSequence::FindAllInScope(SearchScope scope, const SearchTarget& target,
                                                    FilenameMatchingPolicy policy) const {
    std::vector<FoundItem> all;
    for (std::size_t member = 0; member < members.size(); ++member) {
        auto found = FindAllInMember(member, scope, target, policy);
        all.insert(all.end(), std::move_iterator(found.begin()), std::move_iterator(found.end()));
    }
    return all;
}

/// Walks each path with what it holds and is not hidden.
template <class Walk>
bool PathSequence::WalkMembers(const PathEntryCallback& callback, const Walk& walk) const {
    for (std::size_t member = 0; member < members.size(); ++member) {
        const auto unlessHidden = [&](const std::shared_ptr<const IPathEntry>& entry) {
            return !IsHidden(member, *entry) && callback(entry);
        };
        if (walk(*members[member].path, unlessHidden))
            return true;
    }
    return false;
}

bool PathSequence::ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return WalkMembers(callback, [scope](const IPath& path, const PathEntryCallback& visit) {
        return path.ForEachEntry(scope, visit);
    });
}

bool PathSequence::ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return WalkMembers(callback, [scope](const IPath& path, const PathEntryCallback& visit) {
        return path.ConcurrentForEachEntry(scope, visit);
    });
}

bool PathSequence::FirstEntryIsBeforeSecondOnPath(const IPathEntry& first, const IPathEntry& second) const {
    for (const Member& member : members) {
        const bool holdsFirst = member.path->IsEntryOnPath(first);
        const bool holdsSecond = member.path->IsEntryOnPath(second);
        if (holdsFirst && holdsSecond)
            return member.path->FirstEntryIsBeforeSecondOnPath(first, second);
        if (holdsFirst || holdsSecond)
            return holdsFirst;
    }
    return false;
}

bool PathSequence::IsEntryOnPath(const IPathEntry& entry) const {
    return FindPathOf(entry) != nullptr;
}

} // namespace PathManagement
