#include "NamesOnPath.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace TolvexPath {

using PathManagement::FilenameMatchingPolicy;
using PathManagement::FoundItem;
using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using Tolvex::CaseModifier;
using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

CaseModifier GetModifier(FilenameMatchingPolicy policy) {
    switch (policy) {
    case FilenameMatchingPolicy::exact:
        return CaseModifier::exact;
    case FilenameMatchingPolicy::ignoreCase:
        return CaseModifier::ignoreCase;
    case FilenameMatchingPolicy::native:
        break;
    }
    return CaseModifier::fileSystemRule;
}

/// The place of an extension among the wanted ones.
std::optional<std::uint32_t> FindRank(const IPathEntry& entry, ustring_view extension, const NameRules& rules) {
    const Tolvex::PathComparator& comparator = entry.GetPathComparator();
    for (std::uint32_t rank = 0; rank < rules.extensions.size(); ++rank)
        if (comparator(extension, rules.extensions[rank], GetModifier(rules.policy)))
            return rank;
    return std::nullopt;
}

} // namespace

NamesOnPath::NamesOnPath(const PathManagement::IPath& path, NameRules nameRules) : rules(std::move(nameRules)) {
    std::map<std::pair<PathEntryType, ustring>, std::uint32_t> numbers; // a package and a class may share a name
    path.ForEachEntry(rules.scope, [&](const std::shared_ptr<const IPathEntry>& entry) {
        const PathEntryType kind = entry->GetPathEntryType();
        ustring owner = kind == PathEntryType::mainFolder ? ustring() : entry->GetDescriptor();
        const auto [known, isNew] = numbers.emplace(std::pair(kind, owner), static_cast<std::uint32_t>(owners.size()));
        if (isNew)
            owners.push_back(std::move(owner));
        Add(entry, known->second);
        return false;
    });
    // Stable: files that a search does not tell apart stay in their folder's order.
    std::ranges::stable_sort(names, {}, [](const Name& name) {
        return std::tuple(name.owner, name.item->GetNameHash(), name.item->GetNormalizedStem(), name.entry, name.rank);
    });
}

void NamesOnPath::Add(std::shared_ptr<const IPathEntry> entry, std::uint32_t owner) {
    const auto number = static_cast<std::uint32_t>(entries.size());
    for (const auto& item : *entry->GetPathItems())
        if (const auto rank = FindRank(*entry, item->GetExtension(), rules))
            names.push_back({item.get(), number, owner, *rank});
    entries.push_back(std::move(entry));
}

void NamesOnPath::ForEachGroup(const std::function<void(Group)>& visit) const {
    const auto isOther = [](const Name& a, const Name& b) {
        return a.owner != b.owner || a.item->GetNameHash() != b.item->GetNameHash() ||
               a.item->GetNormalizedStem() != b.item->GetNormalizedStem();
    };
    for (auto start = names.begin(); start != names.end();) {
        const auto last = std::adjacent_find(start, names.end(), isOther);
        const auto end = last == names.end() ? last : last + 1;
        if (end - start > 1)
            visit(Group(start, end));
        start = end;
    }
}

std::vector<NameConflict> NamesOnPath::FindConflicts() const {
    std::vector<NameConflict> conflicts;
    ForEachGroup([&](Group group) { AddConflicts(group, conflicts); });
    std::unordered_map<const IPathEntry*, std::size_t> places;
    for (const auto& entry : entries)
        places.emplace(entry.get(), places.size());
    std::ranges::stable_sort(conflicts, {}, [&places](const NameConflict& conflict) {
        return std::pair(places.at(conflict.winner.GetEntry().get()), ustring_view(conflict.name));
    });
    return conflicts;
}

/// Each spelling of the name is asked for, as a search would: whether other spellings answer, too, may differ from
/// folder to folder.
void NamesOnPath::AddConflicts(Group group, std::vector<NameConflict>& conflicts) const {
    std::vector<ustring_view> asked;
    std::vector<std::vector<Name>> told;
    const auto areSame = [](const std::vector<Name>& a, const std::vector<Name>& b) {
        return std::ranges::equal(a, b, {}, &Name::item, &Name::item);
    };
    for (const Name& name : group) {
        const ustring_view stem = name.item->GetStem();
        if (std::ranges::find(asked, stem) != asked.end())
            continue;
        asked.push_back(stem);
        std::vector<Name> answers = SelectAnswers(group, stem);
        if (answers.size() < 2 || std::ranges::any_of(told, [&](const auto& other) { return areSame(other, answers); }))
            continue;
        NameConflict& conflict =
            conflicts.emplace_back(NameConflict{MakeQualifiedName(name, stem), MakeFile(answers.front()), {}});
        for (const Name& hidden : std::span(answers).subspan(1))
            conflict.hidden.push_back(MakeFile(hidden));
        told.push_back(std::move(answers));
    }
}

/// The winner first; without other forms of the winner unless they count.
std::vector<NamesOnPath::Name> NamesOnPath::SelectAnswers(Group group, ustring_view stem) const {
    std::vector<Name> answers;
    for (const Name& name : group) {
        const IPathEntry& entry = *entries[name.entry];
        if (!entry.GetPathComparator()(name.item->GetStem(), stem, GetModifier(rules.policy)))
            continue;
        const bool isOtherForm = !answers.empty() && answers.front().entry == name.entry &&
                                 answers.front().item->GetStem() == name.item->GetStem();
        if (!isOtherForm || rules.countsOtherForms)
            answers.push_back(name);
    }
    return answers;
}

std::vector<CaseClash> NamesOnPath::FindCaseClashes() const {
    std::vector<std::pair<std::uint32_t, CaseClash>> clashes; // with the place of the first file's folder
    ForEachGroup([&](Group group) {
        CaseClash clash{MakeQualifiedName(group.front(), group.front().item->GetStem()), {}};
        std::vector<ustring_view> spellings;
        for (const Name& name : group) {
            if (std::ranges::find(spellings, name.item->GetStem()) != spellings.end())
                continue;
            spellings.push_back(name.item->GetStem());
            clash.files.push_back(MakeFile(name));
        }
        if (spellings.size() > 1)
            clashes.emplace_back(group.front().entry, std::move(clash));
    });
    std::ranges::stable_sort(clashes, {},
                             [](const auto& clash) { return std::pair(clash.first, ustring_view(clash.second.name)); });
    std::vector<CaseClash> inOrder;
    for (auto& [place, clash] : clashes)
        inOrder.push_back(std::move(clash));
    return inOrder;
}

FoundItem NamesOnPath::MakeFile(const Name& name) const {
    return {entries[name.entry], *name.item};
}

ustring NamesOnPath::MakeQualifiedName(const Name& name, ustring_view stem) const {
    const ustring& owner = owners[name.owner];
    return owner.empty() ? ustring(stem) : (owner + u'.').append(stem);
}

} // namespace TolvexPath
