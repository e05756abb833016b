#include "programs/ChangeTrial.h"

#include "programs/HostSession.h"
#include "programs/Measurements.h"
#include "search_path/Accessors.h"

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
    return MedianOf(15, [&] { return MeasureAt(places(random)); });
}

double ChangeTrial::MeasureAt(std::size_t place) const {
    auto entries = std::make_shared<PathEntryVector>(*path->GetMainEntries());
    (*entries)[place] = replacement;
    std::shared_ptr<const IPath> derived;
    const double taken = MeasureMilliseconds([&] { derived = GetCurrentPathFactory().CreatePath(entries, path); });
    const auto found = HostSession::Find(*derived, newName);
    if (!found || found->GetEntry()->GetIRI() != replacement->GetIRI())
        throw std::runtime_error("a derived path does not know the entry that was put in");
    return taken;
}

} // namespace KxBenchmarks
