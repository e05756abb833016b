#include "programs/NameCatalogue.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace KxBenchmarks {

using namespace PathManagement;

namespace {

/// How good an answer is: less is better. What lies outside main folders, or bears no code extension, is none.
struct Rank {
    std::size_t entry;
    std::size_t extension;
    auto operator<=>(const Rank&) const = default;
};

struct Answer {
    Rank rank;
    std::uint32_t number;
};

struct Name {
    Answer answer{};
    std::vector<std::uint32_t> files;
};

class AnswerCollector {
public:
    void Add(const std::shared_ptr<const IPathEntry>& handle) {
        const IPathEntry& entry = *entries.emplace_back(handle);
        const bool isMain = entry.GetPathEntryType() == PathEntryType::mainFolder;
        for (const auto& item : *entry.GetPathItems()) {
            const Rank rank = isMain ? GetRank(*item) : none;
            const Answer answer{rank, static_cast<std::uint32_t>(items.size())};
            items.push_back({&entries.back(), item.get(), entry.GetPathEntryType()});
            Name& name = names[item->GetNormalizedStem()];
            if (name.files.empty() || rank < name.answer.rank)
                name.answer = answer;
            name.files.push_back(answer.number);
        }
    }

    std::deque<std::shared_ptr<const IPathEntry>> entries;
    std::vector<CataloguedItem> items;
    std::unordered_map<ustring_view, Name> names; // views into the items

private:
    static constexpr Rank none{static_cast<std::size_t>(-1), 0};

    [[nodiscard]] Rank GetRank(const PathItem& item) const {
        const auto wanted = Tolvex::GetCodeFileExtensions();
        const auto found = std::ranges::find(wanted, item.GetExtension());
        return found == wanted.end() ? none : Rank{entries.size(), static_cast<std::size_t>(found - wanted.begin())};
    }
};

AnswerCollector Collect(const IPath& path) {
    AnswerCollector collector;
    path.ForEachEntry(SearchScope::All(), [&collector](const std::shared_ptr<const IPathEntry>& entry) {
        collector.Add(entry);
        return false;
    });
    return collector;
}

} // namespace

NameCatalogue::NameCatalogue(const IPath& path) : flatTable(0) {
    AnswerCollector collector = Collect(path);
    flatTable = FlatNameTable(collector.names.size());
    for (const auto& [text, name] : collector.names) {
        flatTable.Add(text, name.answer.number);
        flatMap.Add(text, name.answer.number);
        const NameFiles ofName{static_cast<std::uint32_t>(files.size()), static_cast<std::uint32_t>(name.files.size())};
        concurrentMap.emplace(ustring(text), ofName);
        files.insert(files.end(), name.files.begin(), name.files.end());
    }
    entries = std::move(collector.entries);
    items = std::move(collector.items);
}

std::optional<std::uint32_t> NameCatalogue::Choose(NameFiles ofName, SearchScope scope,
                                                   std::span<const ustring> extensions) const {
    std::optional<std::uint32_t> best;
    for (const std::uint32_t number : std::span(files).subspan(ofName.first, ofName.count)) {
        const CataloguedItem& candidate = items[number];
        if (best && candidate.entry != items[*best].entry)
            break; // what follows lies later on the path
        const ustring_view itsExtension = candidate.item->GetExtension();
        const auto rank = std::ranges::find_if(
            extensions, [itsExtension](const ustring& wanted) { return Tolvex::IsSameText(wanted, itsExtension); });
        if (!scope.Contains(candidate.type) || rank == extensions.end())
            continue;
        best = number;
        extensions = extensions.first(static_cast<std::size_t>(rank - extensions.begin()));
    }
    return best;
}

} // namespace KxBenchmarks
