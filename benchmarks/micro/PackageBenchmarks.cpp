// How a change of the package registry grows with the number of plain folders on the path, and of packages that change.
#include "micro/FolderForest.h"
#include "programs/ManagerSession.h"
#include "programs/Measurements.h"
#include "search_path/Accessors.h"
#include "search_path/PackagesOnPath.h"

#include "foundation/components/IPackageRegistrar.h"
#include "foundation/components/PackageRegistry.h"
#include "foundation/environment/EngineScopeStore.h"
#include "path_utilities/UniformFolderMonitor.h"

#include <benchmark/benchmark.h>

#include <optional>

namespace {

using namespace KxBenchmarks;
using namespace PathManagement;
using namespace TolvexPackages;

constexpr std::size_t mostFolders = 10'000;
constexpr std::size_t mostPackages = 1'000;

/// So many plain folders on a manager's path, and so many packages that a registry can have. The packages' folders have
/// been read, so that what is measured is the change of the path and not the disk.
class PackageBenchmark : public benchmark::Fixture {
public:
    void SetUp(benchmark::State& state) override {
        const auto& all = GetForest().GetFolders();
        const Folders folders(all.begin(), all.begin() + state.range(0));
        packageFolders.assign(all.end() - state.range(1), all.end());
        const std::vector<Tolvex::AbsoluteIRI> locations(packageFolders.begin(), packageFolders.end());
        Tolvex::Notification problems;
        entries = GetPathEntryFactory().CreatePathEntries(locations, UniformFolderMonitor(), problems);
        session.emplace();
        InstallPackagesOnPathCoordinator(session->GetEvents(), session->GetManager(),
                                         [this](const auto& report) { messages += report.GetCount(); });
        session->GetManager().SetPathEntries(CanonicalIRIRange(folders), problems);
        session->GetManager().RefreshPath(RefreshType::knownChanges); // watches from now on
        plainFolders = folders.size();
    }

    void TearDown(benchmark::State&) override {
        Announce({});
        Tolvex::EngineScopeStore::End();
        session.reset();
        entries.clear();
    }

protected:
    using Folders = std::vector<Tolvex::CanonicalAbsoluteIRI>;
    using Registry = std::shared_ptr<const IPackageRegistry>;

    /// Packages that differ from those of another `release` in a property.
    [[nodiscard]] Registry MakeRegistry(std::int64_t release) const {
        IPackageRegistry::Packages packages;
        for (std::size_t i = 0; i != packageFolders.size(); ++i) {
            ComponentIdentifier::UniqueID id{};
            id.data[0] = static_cast<std::uint8_t>(i);
            id.data[1] = static_cast<std::uint8_t>(i >> 8);
            PackageRecord record{.identifier = {u"package", TolvexComponents::ComponentVersion({1, 0, 0}), id},
                                 .memberFolders = {packageFolders[i]},
                                 .order = i,
                                 .properties = {{std::string(manualInstallProperty), true}, {"Release", release}}};
            record.memberFolders.push_back(packageFolders[i].getChild(u"lib"));
            packages.push_back(std::make_shared<const PackageRecord>(std::move(record)));
        }
        return std::make_shared<const PackageRegistry>(std::move(packages));
    }

    void Announce(Registry registry) const {
        if (registry == nullptr)
            registry = std::make_shared<const PackageRegistry>();
        GetPackageRegistrar().ReplaceRegistry(std::move(registry), session->GetEvents());
    }

    /// Times the change from one registry to another; afterwards so many packages have to be on the path.
    void Measure(benchmark::State& state, const Registry& before, const Registry& after, std::size_t onPath) {
        for (auto _ : state) {
            Announce(before);
            messages = 0;
            state.SetIterationTime(MeasureMilliseconds([&] { Announce(after); }) / 1000.0);
            if (session->GetManager().GetPathIRIs()->size() != plainFolders + onPath || messages != 0)
                return state.SkipWithError("not done");
        }
    }

    [[nodiscard]] std::size_t GetPackageCount() const { return packageFolders.size(); }

private:
    static const FolderForest& GetForest() {
        static const FolderForest forest(mostFolders + mostPackages);
        return forest;
    }

    std::size_t plainFolders = 0;
    std::size_t messages = 0; // of the last change
    Folders packageFolders;
    PathEntryVector entries; // keeps what was read
    std::optional<ManagerSession> session;
};

BENCHMARK_DEFINE_F(PackageBenchmark, Add)(benchmark::State& state) {
    Measure(state, nullptr, MakeRegistry(1), GetPackageCount());
}

BENCHMARK_DEFINE_F(PackageBenchmark, Update)(benchmark::State& state) {
    Measure(state, MakeRegistry(1), MakeRegistry(2), GetPackageCount());
}

BENCHMARK_DEFINE_F(PackageBenchmark, Remove)(benchmark::State& state) {
    Measure(state, MakeRegistry(1), nullptr, 0);
}

template <class Benchmark>
void Configure(Benchmark* benchmark) {
    benchmark->ArgNames({"folders", "packages"})
        ->ArgsProduct({benchmark::CreateRange(100, mostFolders, 10), benchmark::CreateRange(1, mostPackages, 10)})
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK_REGISTER_F(PackageBenchmark, Add)->Apply(Configure);
BENCHMARK_REGISTER_F(PackageBenchmark, Update)->Apply(Configure);
BENCHMARK_REGISTER_F(PackageBenchmark, Remove)->Apply(Configure);

} // namespace
