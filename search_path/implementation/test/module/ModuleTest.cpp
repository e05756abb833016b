#include "Host.h"

#include "foundation/components/ComponentFeature.h"
#include "path_interfaces/PathAlterationExceptions.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Module.h"

#include <chrono>

namespace PathManagement {
namespace {

TEST(ModuleTest, StartAndStopDoNothingAndTheProcessHasOneOfEach) {
    initializeFcn();
    IPathEntryFactory& entryFactory = GetPathEntryFactory();
    const IPathFactory& pathFactory = GetCurrentPathFactory();
    terminateFcn();
    initializeFcn();

    Host host;
    const auto manager = host.CreateManager();
    terminateFcn();
    EXPECT_EQ(&GetPathEntryFactory(), &entryFactory);
    EXPECT_EQ(&GetCurrentPathFactory(), &pathFactory);
    EXPECT_EQ(&manager->GetFolderMonitor(), &GetFolderMonitor());
    host.Write("main/f.kx");
    EXPECT_EQ(host.Set(*manager, {"main"}), "");
    EXPECT_EQ(host.Find(*manager, "f"), "main/f.kx");
}

/// Tells when it goes.
class MortalMonitor final : public IFolderMonitor {
public:
    explicit MortalMonitor(int& deaths) : deaths(deaths) {}
    ~MortalMonitor() override { ++deaths; }
    [[nodiscard]] FolderMonitoringLevel GetMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI&) const override {
        return FolderMonitoringLevel::timeCheck;
    }
    [[nodiscard]] FolderMonitoringLevel GetParentMonitoringLevel(const Tolvex::CanonicalAbsoluteIRI&) const override {
        return FolderMonitoringLevel::none;
    }
    void StartMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI&) override {}
    void StopMonitoringPackageFolder(const Tolvex::CanonicalAbsoluteIRI&) override {}
    void SetPath(std::shared_ptr<const IPath>) override {}

private:
    int& deaths;
};

TEST(ModuleTest, AFolderMonitorGoesWhenTheNextIsInstalled) {
    int deaths = 0;
    auto own = std::make_unique<MortalMonitor>(deaths);
    const IFolderMonitor* const installed = own.get();
    SetFolderMonitor(std::move(own));
    EXPECT_EQ(&GetFolderMonitor(), installed);
    EXPECT_EQ(deaths, 0);

    Host host;
    const auto manager = host.CreateManager();
    EXPECT_EQ(deaths, 1);
    EXPECT_NE(&GetFolderMonitor(), installed);
}

TEST(ModuleTest, ASecondManagerTakesTheMonitorAndOutlivesTheFirst) {
    Host host;
    host.Write("one/f.kx");
    host.Write("two/g.kx");
    auto first = host.CreateManager();
    host.Set(*first, {"one", "two"});
    const auto held = first->GetPath();
    const IPathEntryFactory& entryFactory = GetPathEntryFactory();

    const auto second = host.CreateManager();
    EXPECT_EQ(&GetPathEntryFactory(), &entryFactory);
    EXPECT_EQ(&second->GetFolderMonitor(), &GetFolderMonitor());
    host.Set(*second, {"two"});
    first.reset();

    host.Write("two/h.kx");
    host.Write("current/c.kx");
    second->RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(host.Find(*second, "h"), "two/h.kx");
    EXPECT_EQ(host.Find(*second, "c"), "current/c.kx");
    host.Enter("elsewhere");
    EXPECT_EQ(host.Find(*second, "c"), "-");
    EXPECT_EQ(held->GetMainEntries()->size(), 3U) << "a path lives as long as somebody holds it";
}

TEST(ModuleTest, AManagerIsMadeWithComponentsSwitchedOn) {
    TolvexComponents::ComponentFeature::Set(true);
    Host host;
    host.Write("main/f.kx");
    const auto manager = host.CreateManager();
    TolvexComponents::ComponentFeature::Set(false);
    EXPECT_EQ(host.Set(*manager, {"main"}), "");
    EXPECT_EQ(host.Find(*manager, "f"), "main/f.kx");
    ASSERT_NE(manager->GetPathComponents(), nullptr);
    EXPECT_TRUE(manager->GetPathComponents()->empty());
}

TEST(ModuleTest, WithoutAWorkingFolderThereIsNoManagerUntilTheProcessEntersOne) {
    int deaths = 0;
    SetFolderMonitor(std::make_unique<MortalMonitor>(deaths));
    Host host;
    host.Enter("doomed");
    const std::string doomed = host.At("doomed");
    host.Remove("doomed");
    try {
        (void)host.CreateManager();
        FAIL() << "a manager without a working folder";
    } catch (const Tolvex::StorageError& error) {
        EXPECT_EQ(error.GetFailure(), Tolvex::StorageFailure::missing);
        EXPECT_NE(std::string(error.what()).find(doomed), std::string::npos) << error.what();
    }
    EXPECT_EQ(deaths, 1) << "the new folder monitor stays installed";
    host.Enter("current");
    host.Write("current/f.kx");
    EXPECT_EQ(host.Find(*host.CreateManager(), "f"), "current/f.kx");
}

TEST(ModuleTest, AChangeIsToldInThreeStagesAndAHostMayLookUpInEach) {
    Host host;
    host.Write("main/f.kx");
    const auto manager = host.CreateManager();
    std::string told;
    const auto listener = host.bus->Subscribe<PathChangeEvent>([&](const PathChangeEvent& event) {
        told += std::to_string(static_cast<int>(event.GetStage())) + ':' + host.Find(*manager, "f") + ' ';
    });
    host.Set(*manager, {"main"});
    EXPECT_EQ(std::exchange(told, ""), "0:- 1:main/f.kx 2:main/f.kx ");
    host.Enter("main");
    EXPECT_EQ(std::exchange(told, ""), "0:main/f.kx 1:main/f.kx 2:main/f.kx ");
    host.Remove("main/f.kx");
    manager->RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(std::exchange(told, ""), "0:main/f.kx 1:- 2:- ");
    // A folder whose stamp is as young as the clock's grain is read once more, so silence comes a little later.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    do {
        told.clear();
        manager->RefreshPath(RefreshType::knownChanges);
    } while (!told.empty() && std::chrono::steady_clock::now() < deadline);
    EXPECT_EQ(told, "") << "nothing has changed";
}

} // namespace
} // namespace PathManagement
