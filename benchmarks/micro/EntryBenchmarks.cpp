#include "foundation/environment/CodeFiles.h"
#include "micro/SampleNames.h"
#include "path_utilities/PathText.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace PathManagement;

/// A main folder of a hundred files on the disk, and the path that it makes.
class EntryBenchmark : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        std::string pattern = (std::filesystem::temp_directory_path() / "kx-micro-XXXXXX").string();
        folder = std::filesystem::path(mkdtemp(pattern.data()));
        names = KxBenchmarks::MakeSampleNames(100);
        for (const auto& name : names)
            std::ofstream(folder / name);
        const auto location = GetIRIFromString(Tolvex::FromUtf8(folder.string()));
        entry = GetPathEntryFactory().CreatePathEntry(location, UniformFolderMonitor());
        path = GetCurrentPathFactory().CreatePath(std::make_shared<const PathEntryVector>(PathEntryVector{entry}),
                                                  nullptr);
    }

    void TearDown(benchmark::State&) override {
        path.reset();
        entry.reset();
        std::filesystem::remove_all(folder);
    }

protected:
    [[nodiscard]] SearchTarget MakeHit() const {
        return {ustring_view(names[50]).substr(0, names[50].rfind(u'.')), Tolvex::GetCodeFileExtensions()};
    }
    [[nodiscard]] static SearchTarget MakeMiss() { return {u"nothingOfThisName", Tolvex::GetCodeFileExtensions()}; }

    void FindFirstOnEntry(benchmark::State& state, const SearchTarget& target) const {
        for (auto _ : state)
            benchmark::DoNotOptimize(entry->FindFirst(target, FilenameMatchingPolicy::ignoreCase));
    }
    void FindFirstOnPath(benchmark::State& state, const SearchTarget& target) const {
        for (auto _ : state)
            benchmark::DoNotOptimize(
                path->FindFirstInScope({PathEntryType::mainFolder}, target, FilenameMatchingPolicy::ignoreCase));
    }

private:
    std::filesystem::path folder;
    std::vector<ustring> names;
    std::shared_ptr<const IPathEntry> entry;
    std::shared_ptr<const IPath> path;
};

BENCHMARK_F(EntryBenchmark, FindOnEntry)(benchmark::State& state) {
    FindFirstOnEntry(state, MakeHit());
}
BENCHMARK_F(EntryBenchmark, MissOnEntry)(benchmark::State& state) {
    FindFirstOnEntry(state, MakeMiss());
}
BENCHMARK_F(EntryBenchmark, FindOnPath)(benchmark::State& state) {
    FindFirstOnPath(state, MakeHit());
}
BENCHMARK_F(EntryBenchmark, MissOnPath)(benchmark::State& state) {
    FindFirstOnPath(state, MakeMiss());
}

} // namespace
