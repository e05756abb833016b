// How the operations of a search path manager grow with the number of folders on the path.
#include "micro/FolderForest.h"
#include "programs/ManagerSession.h"
#include "programs/Measurements.h"
#include "search_path/Accessors.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <optional>
#include <thread>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;

constexpr std::size_t mostFolders = 10'000;

/// So many folders on a manager's path, and two more that can come to it.
class ManagerBenchmark : public benchmark::Fixture {
public:
    void SetUp(benchmark::State& state) override {
        home = std::filesystem::current_path();
        const auto& all = GetForest().GetFolders();
        folders.assign(all.begin(), all.begin() + state.range(0));
        spares.assign(all.end() - 2, all.end());
        session.emplace();
        session->EnterFolder(spares.front());
        Set(folders);
        GetManager().RefreshPath(RefreshType::knownChanges); // watches from now on
    }

    void TearDown(benchmark::State&) override {
        std::filesystem::current_path(home);
        session.reset();
    }

protected:
    using Folders = std::vector<Tolvex::CanonicalAbsoluteIRI>;

    static const FolderForest& GetForest() {
        static const FolderForest forest(mostFolders + 2);
        return forest;
    }

    [[nodiscard]] IMainSearchPathManager& GetManager() const { return session->GetManager(); }
    [[nodiscard]] std::shared_ptr<const IPath> GetPath() const { return GetManager().GetPath(); }

    void Set(const Folders& wanted) const {
        Tolvex::Notification problems;
        GetManager().SetPathEntries(CanonicalIRIRange(wanted), problems);
    }

    /// Empties the path; entries die on another thread.
    void Forget() const {
        Set({});
        GetManager().RefreshPath(RefreshType::knownChanges);
        const auto isForgotten = [](const auto& folder) { return !GetPathEntryFactory().GetLiveEntry(folder); };
        while (!std::ranges::all_of(folders, isForgotten))
            std::this_thread::yield();
    }

    /// Changes so many folders, spread over the path.
    void Change(std::size_t count) const {
        for (std::size_t i = 0; i != count; ++i)
            GetForest().Change(i * folders.size() / count);
    }

    /// Times only what `work` takes, once for each iteration; `isDone` says whether it has done what it is measured
    /// for, without asking for flat lists, which would have to be let go of in the next iteration.
    template <class Prepare, class Work, class IsDone>
    static void Measure(benchmark::State& state, const Prepare& prepare, const Work& work, const IsDone& isDone) {
        for (auto _ : state) {
            prepare();
            state.SetIterationTime(MeasureMilliseconds(work) / 1000.0);
            if (!isDone())
                return state.SkipWithError("not done");
        }
    }

    void MeasureRefresh(benchmark::State& state, std::size_t changed) const {
        std::shared_ptr<const IPath> before;
        Measure(
            state,
            [&] {
                Change(changed);
                before = GetPath();
            },
            [&] { GetManager().RefreshPath(RefreshType::knownChanges); },
            [&] { return (GetPath() == before) == (changed == 0); });
    }

    Folders folders;
    Folders spares; // the first is the working folder
    std::optional<ManagerSession> session;

private:
    std::filesystem::path home;
};

BENCHMARK_DEFINE_F(ManagerBenchmark, SetAll)(benchmark::State& state) {
    std::uint64_t listed = 0;
    const auto prepare = [&] {
        Forget();
        listed = GetPathEntryFactory().GetCounters().foldersListed;
    };
    const auto isDone = [&] {
        return GetPathEntryFactory().GetCounters().foldersListed == listed + folders.size() &&
               GetManager().GetPathIRIs()->size() == folders.size();
    };
    Measure(
        state, prepare, [&] { Set(folders); }, isDone);
}

BENCHMARK_DEFINE_F(ManagerBenchmark, AddOne)(benchmark::State& state) {
    Folders more{spares.back()};
    more.insert(more.end(), folders.begin(), folders.end());
    Measure(
        state, [&] { Set(folders); }, [&] { Set(more); },
        [&] { return GetManager().GetPathIRIs()->size() == more.size(); });
}

BENCHMARK_DEFINE_F(ManagerBenchmark, Reverse)(benchmark::State& state) {
    Measure(
        state, [&] { std::ranges::reverse(folders); }, [&] { Set(folders); },
        [&] { return GetManager().GetPathIRIs()->front() == folders.front(); });
}

BENCHMARK_DEFINE_F(ManagerBenchmark, RefreshUnchanged)(benchmark::State& state) {
    MeasureRefresh(state, 0);
}

BENCHMARK_DEFINE_F(ManagerBenchmark, RefreshOneChanged)(benchmark::State& state) {
    MeasureRefresh(state, 1);
}

BENCHMARK_DEFINE_F(ManagerBenchmark, RefreshHundredChanged)(benchmark::State& state) {
    MeasureRefresh(state, 100);
}

BENCHMARK_DEFINE_F(ManagerBenchmark, EnterFolder)(benchmark::State& state) {
    Measure(
        state, [&] { std::ranges::reverse(spares); }, [&] { session->EnterFolder(spares.front()); },
        [&] { return GetPath()->GetPathEntryFromAbsoluteIRI(spares.front()) != nullptr; });
}

template <class Benchmark>
void Configure(Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(100, mostFolders)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK_REGISTER_F(ManagerBenchmark, SetAll)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, AddOne)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, Reverse)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, RefreshUnchanged)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, RefreshOneChanged)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, RefreshHundredChanged)->Apply(Configure);
BENCHMARK_REGISTER_F(ManagerBenchmark, EnterFolder)->Apply(Configure);

} // namespace
