#include "foundation/storage/MemoryStorage.h"
#include "micro/SampleNames.h"
#include "path_utilities/PathItemBlock.h"

#include <benchmark/benchmark.h>

namespace {

using namespace PathManagement;

const auto folder = Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI("/toolbox"));

void BuildItemBlock(benchmark::State& state) {
    const auto names = KxBenchmarks::MakeSampleNames(static_cast<std::size_t>(state.range(0)));
    const std::vector<ustring_view> views(names.begin(), names.end());
    for (auto _ : state)
        benchmark::DoNotOptimize(PathItemBlock::Create(folder, views));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BuildItemBlock)->Arg(1)->Arg(100)->Arg(2'000);

void FindInItemBlock(benchmark::State& state) {
    const auto names = KxBenchmarks::MakeSampleNames(100);
    const std::vector<ustring_view> views(names.begin(), names.end());
    const auto block = PathItemBlock::Create(folder, views);
    const ustring wanted = PathItem::Normalize(SplitFileName(views[50]).stem);
    for (auto _ : state)
        benchmark::DoNotOptimize(block->FindByNormalizedStem(wanted));
}
BENCHMARK(FindInItemBlock);

} // namespace
