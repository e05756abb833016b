#include "path_utilities/MultiMaskedPath.h"

#include <utility>

namespace PathManagement {

MultiMaskedPath::MultiMaskedPath(std::shared_ptr<const IPath> path,
                                 std::vector<std::shared_ptr<const IPathEntry>> hiddenEntries)
    : path(std::move(path)) {
    for (const auto& entry : hiddenEntries)
        hidden.insert(entry->GetIRI());
}

MultiMaskedPath::~MultiMaskedPath() = default;

/// REQUIRES: the entry is on the path.
bool MultiMaskedPath::IsHidden(const IPathEntry& entry) const {
    if (hidden.empty())
        return false;
    if (hidden.contains(entry.GetIRI()))
        return true;
    for (auto above = path->GetParentEntryForEntry(entry); above; above = path->GetParentEntryForEntry(*above)) {
        if (hidden.contains(above->GetIRI()))
            return true;
        if (above->GetIRI() == entry.GetIRI())
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
    if (!first || !IsHidden(*first->GetEntry()))
        return first;
    auto all = FindAllInScope(scope, target, policy);
    return all.empty() ? std::nullopt : std::optional(std::move(all.front()));
}

std::vector<FoundItem> MultiMaskedPath::FindAllInScope(SearchScope scope, const SearchTarget& target,
                                                       FilenameMatchingPolicy policy) const {
    auto found = path->FindAllInScope(scope, target, policy);
    if (!hidden.empty())
        std::erase_if(found, [this](const FoundItem& item) { return IsHidden(*item.GetEntry()); });
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
