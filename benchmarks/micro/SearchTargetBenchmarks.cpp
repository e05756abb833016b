#include "foundation/environment/CodeFiles.h"
#include "path_interfaces/SearchTarget.h"

#include <benchmark/benchmark.h>

namespace {

/// Names beyond 48 code units cost an allocation.
void MakeSearchTarget(benchmark::State& state) {
    const Tolvex::ustring name(static_cast<std::size_t>(state.range(0)), u'N');
    const auto extensions = Tolvex::GetCodeFileExtensions();
    for (auto _ : state)
        benchmark::DoNotOptimize(PathManagement::SearchTarget(name, extensions));
}
BENCHMARK(MakeSearchTarget)->Arg(4)->Arg(15)->Arg(48)->Arg(60);

} // namespace
