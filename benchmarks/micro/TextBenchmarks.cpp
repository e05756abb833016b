#include "foundation/text/CaseFolding.h"
#include "foundation/text/NameHash.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

using Tolvex::ustring_view;

constexpr std::array<ustring_view, 3> names{u"computeSpectralDensity", u"gr\u00F6\u00DFeDerMatrix",
                                            u"\u95A2\u6570\u306E\u540D\u524D"};
constexpr std::array labels{"ASCII", "Latin", "CJK"};

void FoldName(benchmark::State& state) {
    const auto which = static_cast<std::size_t>(state.range(0));
    std::array<char16_t, 64> folded;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Tolvex::FoldCaseTo(names[which], folded.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel(labels[which]);
}
BENCHMARK(FoldName)->DenseRange(0, 2);

void HashName(benchmark::State& state) {
    const Tolvex::ustring name(static_cast<std::size_t>(state.range(0)), u'n');
    for (auto _ : state)
        benchmark::DoNotOptimize(Tolvex::HashName(name));
}
BENCHMARK(HashName)->Arg(4)->Arg(15)->Arg(60);

void DecodeFileName(benchmark::State& state) {
    constexpr std::string_view bytes = "computeSpectralDensity.kx";
    std::array<char16_t, 64> text;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Tolvex::ConvertFromUtf8(bytes, text.data()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(DecodeFileName);

} // namespace
