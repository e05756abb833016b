#include "programs/LookupTrial.h"

#include "programs/HostSession.h"

#include <algorithm>
#include <barrier>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace KxBenchmarks {

using namespace PathManagement;

namespace {

using Clock = std::chrono::steady_clock;

struct Span {
    Clock::time_point start;
    Clock::time_point end;
    std::size_t found = 0;
};

template <class Find>
Span Ask(const LookupTask& task, const Find& find) {
    Span span{Clock::now(), {}};
    for (std::size_t round = 0; round != task.repeats; ++round)
        for (const ustring_view name : task.names)
            span.found += find(name) ? 1 : 0;
    span.end = Clock::now();
    return span;
}

template <class Find>
std::vector<Span> AskFromThreads(const LookupTask& task, const Find& find) {
    if (task.threads == 1)
        return {Ask(task, find)};
    std::vector<Span> spans(task.threads);
    std::barrier start(static_cast<std::ptrdiff_t>(task.threads));
    std::vector<std::jthread> threads;
    for (Span& span : spans)
        threads.emplace_back([&] {
            start.arrive_and_wait();
            span = Ask(task, find);
        });
    threads.clear(); // joins them
    return spans;
}

template <class Find>
double Measure(const LookupTask& task, const Find& find) {
    const auto spans = AskFromThreads(task, find);
    const std::size_t asked = task.repeats * task.names.size();
    for (const Span& span : spans)
        if (span.found != (task.areFound ? asked : 0))
            throw std::runtime_error("a name was found, or not, against expectation");
    const auto start = std::ranges::min(spans, {}, &Span::start).start;
    const auto end = std::ranges::max(spans, {}, &Span::end).end;
    return std::chrono::duration<double, std::nano>(end - start).count() / static_cast<double>(asked);
}

/// Keeps the compiler from leaving out what makes `value`.
template <class Value>
void Use(Value value) {
    asm volatile("" : : "r"(value) : "memory");
}

/// For contenders that find the number of an item. `use` makes of the number what is handed out.
template <class FindNumber, class UseNumber>
LookupContender MakeNumberContender(std::string name, const NameCatalogue& catalogue, FindNumber findNumber,
                                    UseNumber use) {
    const auto find = [findNumber, use](ustring_view wanted) {
        const std::optional<std::uint32_t> number = findNumber(wanted);
        if (number)
            use(*number);
        return number.has_value();
    };
    const auto answer = [findNumber, &catalogue](ustring_view wanted) {
        const std::optional<std::uint32_t> number = findNumber(wanted);
        return number ? ustring(catalogue.GetItem(*number).GetIRI().getPath()) : ustring();
    };
    return {std::move(name), [find](const LookupTask& task) { return Measure(task, find); }, answer};
}

/// A rival is asked what the path is asked, chooses among the files of the name, and hands out what the path hands out:
/// a counted handle of the entry and the item.
template <class FindFiles>
LookupContender MakeRival(std::string name, const NameCatalogue& catalogue, FindFiles findFiles) {
    const auto find = [&catalogue, findFiles](ustring_view wanted) -> std::optional<std::uint32_t> {
        const std::optional<NameFiles> files = findFiles(wanted);
        return files ? catalogue.Choose(*files, HostSession::GetScope(), HostSession::GetExtensions()) : std::nullopt;
    };
    return MakeNumberContender(std::move(name), catalogue, find, [&catalogue](std::uint32_t number) {
        const PathManagement::FoundItem answer = catalogue.MakeAnswer(number);
        Use(&answer);
    });
}

/// The wanted name in the form of the map's keys, in a string that each thread keeps.
const ustring& FoldForMap(ustring_view name) {
    thread_local ustring folded;
    folded.resize(name.size());
    Tolvex::FoldCaseTo(name, folded.data());
    return folded;
}

} // namespace

LookupContender MakePathContender(std::string name, const IPath& path) {
    const auto find = [&path](ustring_view wanted) { return HostSession::Find(path, wanted).has_value(); };
    const auto answer = [&path](ustring_view wanted) {
        const auto found = HostSession::Find(path, wanted);
        return found ? ustring(found->GetItem().GetIRI().getPath()) : ustring();
    };
    return {std::move(name), [find](const LookupTask& task) { return Measure(task, find); }, answer};
}

template <class Table>
LookupContender MakeFlatContender(std::string name, const NameCatalogue& catalogue, const Table& table) {
    return MakeNumberContender(
        std::move(name), catalogue, [&table](ustring_view wanted) { return table.Find(wanted); },
        [](std::uint32_t number) { Use(number); });
}

LookupContender MakeFlatMapContender(const NameCatalogue& catalogue) {
    return MakeFlatContender("flat map", catalogue, catalogue.GetFlatMap());
}

LookupContender MakeFlatTableContender(const NameCatalogue& catalogue) {
    return MakeFlatContender("leanest table", catalogue, catalogue.GetFlatTable());
}

LookupContender MakeAccessorContender(const NameCatalogue& catalogue) {
    const ConcurrentNameMap& map = catalogue.GetConcurrentMap();
    return MakeRival("tbb accessor", catalogue, [&map](ustring_view name) -> std::optional<NameFiles> {
        ConcurrentNameMap::const_accessor record;
        if (!map.find(record, FoldForMap(name)))
            return std::nullopt;
        return record->second;
    });
}

LookupContender MakeEqualRangeContender(const NameCatalogue& catalogue) {
    const ConcurrentNameMap& map = catalogue.GetConcurrentMap();
    return MakeRival("tbb equal_range", catalogue, [&map](ustring_view name) -> std::optional<NameFiles> {
        const auto [first, last] = map.equal_range(FoldForMap(name));
        if (first == last)
            return std::nullopt;
        return first->second;
    });
}

void DemandRightAnswers(const LookupContender& contender, const Questions& questions) {
    for (const auto& [name, expected] : questions.Get()) {
        if (const auto given = contender.answer(name); given != expected)
            throw std::runtime_error(contender.name + ": wrong answer to '" + Tolvex::ToUtf8(name) + "': '" +
                                     Tolvex::ToUtf8(given) + "' instead of '" + Tolvex::ToUtf8(expected) + "'");
    }
}

} // namespace KxBenchmarks
