#include "path_utilities/PartialPathname.h"

#include "foundation/storage/MemoryStorage.h"

#include <benchmark/benchmark.h>

namespace {

using namespace PathManagement;

void SplitPartialPath(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(SplitPartialPathname(u"+shapes/+solid/@Prism"));
}
BENCHMARK(SplitPartialPath);

void MatchPartialPath(benchmark::State& state) {
    const auto components = SplitPartialPathname(u"+solid/@Prism");
    const auto location = Tolvex::MemoryStorage::GetIRI("/toolboxes/geometry/+shapes/+solid/@Prism");
    const Tolvex::PathComparator comparator;
    for (auto _ : state)
        benchmark::DoNotOptimize(DoesPartialPathnameMatchPathEntryIRI(components, location, comparator));
}
BENCHMARK(MatchPartialPath);

} // namespace
