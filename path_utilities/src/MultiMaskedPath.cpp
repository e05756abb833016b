#include "path_utilities/MultiMaskedPath.h"

#include <algorithm>
#include <utility>

namespace PathManagement {

// NOLINTBEGIN(performance-unnecessary-value-param): by value is what modules are compiled against
MultiMaskedPath::MultiMaskedPath(std::shared_ptr<const IPath> path,
                                 std::vector<std::shared_ptr<const IPathEntry>> hiddenEntries)
    // NOLINTEND(performance-unnecessary-value-param)
    : path(std::move(path)) {
    for (const auto& entry : hiddenEntries) {
        const ustring_view text = hidden.insert(entry->GetIRI()).first->getPath();
        hiddenTexts.insert(text);
        hiddenLengths.push_back(text.size());
    }
    std::ranges::sort(hiddenLengths);
    const auto repeats = std::ranges::unique(hiddenLengths);
    hiddenLengths.erase(repeats.begin(), repeats.end());
}

MultiMaskedPath::~MultiMaskedPath() = default;

/// REQUIRES: the entry is on the path; so do the next three.
bool MultiMaskedPath::IsHidden(const IPathEntry& entry) const {
    return !hidden.empty() && IsHidden(entry.GetIRI(), entry);
}

/// Asks the item where it lies: an entry hands out its location as a counted copy, and many threads may get one entry.
bool MultiMaskedPath::IsHidden(const FoundItem& found) const {
    return !hidden.empty() && IsHidden(found.GetItem().GetFolder(), *found.GetEntry());
}

bool MultiMaskedPath::IsHidden(const Tolvex::AbsoluteIRI& location, const IPathEntry& entry) const {
    return hidden.contains(location) || (IsNamedBelowHidden(location.getPath()) && LiesBelowHidden(entry));
}

/// Whether a hidden folder's path text is that of a folder above. A long list costs little more than a short one, since
/// its texts have few lengths.
bool MultiMaskedPath::IsNamedBelowHidden(ustring_view pathText) const {
    return std::ranges::any_of(hiddenLengths, [&](std::size_t length) {
        const bool endsName = length < pathText.size() && (pathText[length] == u'/' || length == 1);
        return endsName && hiddenTexts.contains(pathText.substr(0, length));
    });
}

/// A folder below a hidden one may stand on the path by itself.
bool MultiMaskedPath::LiesBelowHidden(const IPathEntry& entry) const {
    for (auto above = path->GetParentEntryForEntry(entry); above; above = path->GetParentEntryForEntry(*above)) {
        const Tolvex::CanonicalAbsoluteIRI location = above->GetIRI();
        if (hidden.contains(location))
            return true;
        if (location == entry.GetIRI())
            return false; // a main entry, asked for by another object of its folder
    }
    return false;
}

std::shared_ptr<const IPathEntry> MultiMaskedPath::UnlessHidden(std::shared_ptr<const IPathEntry> entry) const {
    return entry && !IsHidden(*entry) ? std::move(entry) : nullptr;
}

PathEntryVector MultiMaskedPath::WithoutHidden(PathEntryVector entries) const {
    if (!hidden.empty())
        std::erase_if(entries, [this](const auto& entry) { return IsHidden(*entry); });
    return entries;
}

std::shared_ptr<const PathEntryVector> MultiMaskedPath::GetMainEntries() const {
    if (hidden.empty())
        return path->GetMainEntries();
    return mainEntries.Get(
        [this] { return std::make_shared<const PathEntryVector>(WithoutHidden(*path->GetMainEntries())); });
}

PathEntryVector MultiMaskedPath::GetMethodEntries() const {
    return WithoutHidden(path->GetMethodEntries());
}

PathEntryVector MultiMaskedPath::GetMethodEntriesByName(SearchScope scope, const ustring& className) const {
    return WithoutHidden(path->GetMethodEntriesByName(scope, className));
}

PathEntryVector MultiMaskedPath::GetPartiallyMatchingEntries(SearchScope scope, const ustring& partialPath) const {
    return WithoutHidden(path->GetPartiallyMatchingEntries(scope, partialPath));
}

std::shared_ptr<const IPathEntry> MultiMaskedPath::GetMainEntryForEntry(const IPathEntry& entry) const {
    return IsEntryOnPath(entry) ? path->GetMainEntryForEntry(entry) : nullptr;
}

std::shared_ptr<const IPathEntry> MultiMaskedPath::GetParentEntryForEntry(const IPathEntry& entry) const {
    return IsEntryOnPath(entry) ? path->GetParentEntryForEntry(entry) : nullptr;
}

std::shared_ptr<const IPathEntry>
MultiMaskedPath::GetPathEntryFromAbsoluteIRI(const Tolvex::CanonicalAbsoluteIRI& location) const {
    return UnlessHidden(path->GetPathEntryFromAbsoluteIRI(location));
}

std::shared_ptr<const IPathEntry> MultiMaskedPath::GetPathEntryFromAbsoluteIRI(const Tolvex::AbsoluteIRI& location,
                                                                               FilenameMatchingPolicy policy) const {
    auto first = path->GetPathEntryFromAbsoluteIRI(location, policy);
    if (!first || !IsHidden(*first))
        return first;
    // Another entry may match behind a hidden one.
    std::shared_ptr<const IPathEntry> found;
    ForEachEntry(SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
        const auto matches = entry->CreateFilenameMatcher(policy);
        const Tolvex::CanonicalAbsoluteIRI candidate = entry->GetIRI();
        if (candidate.getScheme() == location.getScheme() &&
            (*matches)(ustring(candidate.getPath()), ustring(location.getPath())))
            found = entry;
        return found != nullptr;
    });
    return found;
}

std::optional<FoundItem> MultiMaskedPath::FindFirstInScope(SearchScope scope, const SearchTarget& target,
                                                           FilenameMatchingPolicy policy) const {
    auto first = path->FindFirstInScope(scope, target, policy);
    if (!first || !IsHidden(*first))
        return first;
    auto all = FindAllInScope(scope, target, policy);
    return all.empty() ? std::nullopt : std::optional(std::move(all.front()));
}

std::vector<FoundItem> MultiMaskedPath::FindAllInScope(SearchScope scope, const SearchTarget& target,
                                                       FilenameMatchingPolicy policy) const {
    auto found = path->FindAllInScope(scope, target, policy);
    if (!hidden.empty())
        std::erase_if(found, [this](const FoundItem& item) { return IsHidden(item); });
    return found;
}

bool MultiMaskedPath::ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    if (hidden.empty())
        return path->ForEachEntry(scope, callback);
    return path->ForEachEntry(scope, [&](const auto& entry) { return !IsHidden(*entry) && callback(entry); });
}

bool MultiMaskedPath::ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    if (hidden.empty())
        return path->ConcurrentForEachEntry(scope, callback);
    return path->ConcurrentForEachEntry(scope, [&](const auto& entry) { return !IsHidden(*entry) && callback(entry); });
}

bool MultiMaskedPath::FirstEntryIsBeforeSecondOnPath(const IPathEntry& first, const IPathEntry& second) const {
    if (!IsEntryOnPath(first) || !IsEntryOnPath(second))
        return IsEntryOnPath(first);
    return path->FirstEntryIsBeforeSecondOnPath(first, second);
}

bool MultiMaskedPath::IsEntryOnPath(const IPathEntry& entry) const {
    return path->IsEntryOnPath(entry) && !IsHidden(entry);
}

} // namespace PathManagement
