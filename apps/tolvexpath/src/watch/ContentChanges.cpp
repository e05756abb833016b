#include "watch/ContentChanges.h"

#include "path_utilities/PathEntryVectorDifferentiator.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using PathManagement::PathEntryVector;
using PathManagement::PathItem;
using PathManagement::PathItemVector;
using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

/// What to ask for, by what people call it.
using Candidates = std::map<ustring, ustring>;

auto GetOrder(const PathItem& item) {
    return std::tuple(item.GetNormalizedStem(), item.GetStem(), item.GetExtension());
}

ustring_view GetLastName(ustring_view path) {
    return path.substr(path.rfind(u'/') + 1);
}

/// What stands in front of the names of files in a folder.
struct Prefix {
    ustring shown;
    ustring asked;
};

Prefix MakePrefix(const IPathEntry& entry, const Tolvex::AbsoluteIRI& mainFolder) {
    if (entry.GetPathEntryType() == PathEntryType::mainFolder)
        return {};
    const Tolvex::CanonicalAbsoluteIRI folder = entry.GetIRI();
    const ustring below = folder.makePathRelativeTo(mainFolder).value_or(ustring()) + u'/';
    const ustring_view lastName = GetLastName(folder.getPath());
    if (lastName != u"private" && lastName != u"resources")
        return {below, below};
    // Many folders have such a child; all names of the location say which is meant.
    const ustring_view path = folder.getPath();
    return {ustring(GetLastName(mainFolder.getPath())) + u'/' + below, ustring(path.substr(1)) + u'/'};
}

/// Gathers the names of files that come or go between two states of one main folder; either may be missing.
class NameComparison {
public:
    NameComparison(Tolvex::AbsoluteIRI mainFolder, Candidates& candidates)
        : mainFolder(std::move(mainFolder)), candidates(candidates) {}

    /// Whether anything differs.
    [[nodiscard]] bool Compare(const PathEntryVector& before, const PathEntryVector& after) {
        PathManagement::PathEntryVectorDifferentiator difference;
        difference.Compare(before, after, PathManagement::ComparisonFilter::withDescendants);
        for (const auto& entries : {difference.GetAdded(), difference.GetRemoved()})
            for (const auto& entry : *entries)
                Add(*entry, *entry->GetPathItems());
        for (std::size_t i = 0; i < difference.GetRefreshedBefore()->size(); ++i)
            CompareFiles(*(*difference.GetRefreshedBefore())[i], *(*difference.GetRefreshedAfter())[i]);
        return hasFoundAny || !difference.GetAdded()->empty() || !difference.GetRemoved()->empty();
    }

private:
    void CompareFiles(const IPathEntry& before, const IPathEntry& after) {
        PathItemVector different;
        std::ranges::set_symmetric_difference(*before.GetPathItems(), *after.GetPathItems(),
                                              std::back_inserter(different),
                                              [](const auto& a, const auto& b) { return GetOrder(*a) < GetOrder(*b); });
        Add(after, different);
    }

    void Add(const IPathEntry& entry, const PathItemVector& items) {
        const Prefix prefix = MakePrefix(entry, mainFolder);
        for (const auto& item : items) {
            const ustring_view stem = item->GetStem();
            hasFoundAny = true;
            candidates.emplace(prefix.shown + ustring(stem), prefix.asked + ustring(stem));
        }
    }

    const Tolvex::AbsoluteIRI mainFolder;
    Candidates& candidates;
    bool hasFoundAny = false;
};

std::optional<FoundItem> FindFirst(const Finder& finder, const ustring& name) {
    Question question;
    question.name = name;
    auto found = finder.Answer(question);
    return found.empty() ? std::nullopt : std::optional(std::move(found.front()));
}

bool IsSameFile(const std::optional<FoundItem>& a, const std::optional<FoundItem>& b) {
    return a.has_value() == b.has_value() && (!a || a->GetItem().GetIRI() == b->GetItem().GetIRI());
}

} // namespace

ContentChanges FindContentChanges(const PathManagement::PathChangeEvent& event, const Finder& before,
                                  const Finder& after) {
    ContentChanges changes{.folders = {},
                           .put = *event.GetAdded(),
                           .moved = *event.GetReordered(),
                           .taken = *event.GetRemoved(),
                           .names = {}};
    Candidates candidates;
    for (std::size_t i = 0; i < event.GetRefreshedBefore()->size(); ++i) {
        const auto& entry = (*event.GetRefreshedAfter())[i];
        const Tolvex::CanonicalAbsoluteIRI mainFolder = entry->GetIRI();
        if (NameComparison(mainFolder, candidates).Compare({(*event.GetRefreshedBefore())[i]}, {entry}))
            changes.folders.push_back(entry);
    }
    for (const auto* const folders : {&changes.put, &changes.moved, &changes.taken})
        for (const auto& entry : *folders)
            static_cast<void>(NameComparison(entry->GetIRI(), candidates).Compare({}, {entry}));
    for (const auto& [name, asked] : candidates) {
        NameChange change{name, FindFirst(before, asked), FindFirst(after, asked)};
        if (!IsSameFile(change.before, change.after))
            changes.names.push_back(std::move(change));
    }
    return changes;
}

} // namespace TolvexPath
