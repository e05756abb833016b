#include "programs/NameCatalogue.h"

#include <algorithm>
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

class AnswerCollector {
public:
    void Add(const std::shared_ptr<const IPathEntry>& handle) {
        const IPathEntry& entry = *entries.emplace_back(handle);
        const bool isMain = entry.GetPathEntryType() == PathEntryType::mainFolder;
        for (const auto& item : *entry.GetPathItems()) {
            const Rank rank = isMain ? GetRank(*item) : none;
            const Answer answer{rank, static_cast<std::uint32_t>(items.size())};
            items.push_back({&entries.back(), item.get()});
            const auto [known, isNew] = answers.emplace(item->GetNormalizedStem(), answer);
            if (!isNew && rank < known->second.rank)
                known->second = answer;
        }
    }

    std::deque<std::shared_ptr<const IPathEntry>> entries;
    std::vector<CataloguedItem> items;
    std::unordered_map<ustring_view, Answer> answers; // views into the items

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
    flatTable = FlatNameTable(collector.answers.size());
    for (const auto& [name, answer] : collector.answers) {
        flatTable.Add(name, answer.number);
        flatMap.Add(name, answer.number);
        concurrentMap.emplace(ustring(name), answer.number);
    }
    entries = std::move(collector.entries);
    items = std::move(collector.items);
}

} // namespace KxBenchmarks
