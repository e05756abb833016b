#include "programs/ChangeTrial.h"

#include "programs/HostSession.h"
#include "search_path/Accessors.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <stdexcept>

namespace KxBenchmarks {

using namespace PathManagement;

ChangeTrial::ChangeTrial(std::shared_ptr<const IPath> path, std::shared_ptr<const IPathEntry> replacement,
                         Tolvex::ustring newName)
    : path(std::move(path)), replacement(std::move(replacement)), newName(std::move(newName)) {}

double ChangeTrial::Measure(std::uint32_t seed) const {
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::size_t> places(0, path->GetMainEntries()->size() - 1);
    std::array<double, 15> times{};
    std::ranges::generate(times, [&] { return MeasureAt(places(random)); });
    const auto middle = times.begin() + times.size() / 2;
    std::ranges::nth_element(times, middle);
    return *middle;
}

double ChangeTrial::MeasureAt(std::size_t place) const {
    auto entries = std::make_shared<PathEntryVector>(*path->GetMainEntries());
    (*entries)[place] = replacement;
    const auto start = std::chrono::steady_clock::now();
    const auto derived = GetCurrentPathFactory().CreatePath(entries, path);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    const auto found = HostSession::Find(*derived, newName);
    if (!found || found->GetEntry()->GetIRI() != replacement->GetIRI())
        throw std::runtime_error("a derived path does not know the entry that was put in");
    return taken.count();
}

} // namespace KxBenchmarks
