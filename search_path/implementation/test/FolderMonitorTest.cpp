#include "PathWorld.h"

#include "change_tracking/FolderMonitor.h"
#include "foundation/components/PackageRegistry.h"
#include "path_interfaces/PackageFolderMonitoringChangeException.h"

#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using Tolvex::CanonicalAbsoluteIRI;
using TolvexPackages::PackageRecord;
using TolvexPackages::PackageRegistry;

std::shared_ptr<const PackageRecord> Package(std::string_view folder, char letter, bool isWatchedClosely) {
    PackageRecord record{
        .identifier = {u"p", TolvexComponents::ComponentVersion({1, 0, 0}), {{static_cast<std::uint8_t>(letter)}}}};
    record.memberFolders.push_back(PathWorld::At(folder));
    record.isWatchedClosely = isWatchedClosely;
    return std::make_shared<const PackageRecord>(std::move(record));
}

/// A monitor of the installation "/install", with two packages inside and two outside of it.
class FolderMonitorTest : public testing::Test {
protected:
    FolderMonitorTest() {
        const auto events = Tolvex::createEventMgr();
        registrar->ReplaceRegistry(std::make_shared<const PackageRegistry>(PackageRegistry::Packages{
                                       Package("/install/close", 'a', true), Package("/install/loose", 'b', false),
                                       Package("/home/close", 'c', true), Package("/home/loose", 'd', false)}),
                                   *events);
    }

    [[nodiscard]] int Level(std::string_view folder) const {
        return static_cast<int>(monitor.GetMonitoringLevel(PathWorld::At(folder)));
    }

    [[nodiscard]] int ParentLevel(std::string_view folder) const {
        return static_cast<int>(monitor.GetParentMonitoringLevel(PathWorld::At(folder)));
    }

    PathWorld world{{"/install/close/sub/", "/install/loose/sub/", "/install/plain/", "/home/close/sub/",
                     "/home/loose/sub/", "/home/plain/private/", "/home/other/", "/installer/"}};
    std::unique_ptr<TolvexPackages::IPackageRegistrar> registrar = TolvexPackages::CreatePackageRegistrar();
    FolderMonitor monitor{PathWorld::At("/install"), world.PathOf(PathEntryVector()), *registrar};
};

TEST_F(FolderMonitorTest, TheFirstRuleThatAppliesDecides) {
    struct Case {
        std::string folder;
        int level;         // neither on the path nor started
        int startedLevel;  // -1: a package's folder cannot be started
        int onPathLevel;   // on the path
        int startedOnPath; // both
    };
    const std::vector<Case> cases{
        {"/install/close", 2, -1, 2, -1},    {"/install/close/sub", 2, -1, 2, -1},
        {"/install/loose", 1, -1, 1, -1},    {"/install/loose/sub", 1, -1, 1, -1},
        {"/home/close/sub", 2, -1, 2, -1},   {"/home/loose/sub", 1, -1, 1, -1},
        {"/install/plain", 1, 1, 1, 1},      {"/install", 0, 1, 2, 1}, // the installation is not below itself
        {"/home/plain", 0, 1, 2, 1},         {"/installer", 0, 1, 2, 1},
        {"/home/plain/private", 0, 1, 2, 1}, {"/home/not there", 0, 1, 2, 1},
    };
    for (const auto& [folder, level, startedLevel, onPathLevel, startedOnPath] : cases) {
        SCOPED_TRACE(folder);
        const CanonicalAbsoluteIRI location = PathWorld::At(folder);
        const bool isStartable = startedLevel != -1;
        EXPECT_EQ(Level(folder), level);
        monitor.SetPath(world.PathOf({folder}));
        EXPECT_EQ(Level(folder), onPathLevel);
        if (isStartable) {
            monitor.StartMonitoringPackageFolder(location);
            EXPECT_EQ(Level(folder), startedOnPath);
        }
        monitor.SetPath(world.PathOf(PathEntryVector()));
        EXPECT_EQ(Level(folder), isStartable ? startedLevel : level);
        if (isStartable)
            monitor.StopMonitoringPackageFolder(location);
        EXPECT_EQ(Level(folder), level);
    }
    monitor.SetPath(world.PathOf({"/home/plain"}));
    EXPECT_EQ(Level("/home/plain/private"), 2); // children stand on the path, too
    EXPECT_EQ(Level("/home"), 0);
}

TEST_F(FolderMonitorTest, TheParentsLevelIsTheLevelOfTheFolderAbove) {
    EXPECT_EQ(ParentLevel("/"), 0);
    EXPECT_EQ(ParentLevel("/install/plain/x"), 1);
    EXPECT_EQ(ParentLevel("/home/close/sub"), 2);
    monitor.SetPath(world.PathOf({"/"}));
    EXPECT_EQ(ParentLevel("/anything"), 2);
    EXPECT_EQ(ParentLevel("/"), 0);
}

TEST_F(FolderMonitorTest, FoldersOfPackagesAreTheirPackagesBusiness) {
    const CanonicalAbsoluteIRI ofPackage = PathWorld::At("/home/loose/sub");
    const CanonicalAbsoluteIRI free = PathWorld::At("/home/other");
    const auto refuses = [&](auto operation) {
        try {
            (monitor.*operation)(ofPackage);
        } catch (const PackageFolderMonitoringChangeException& refusal) {
            EXPECT_EQ(refusal.GetFolder(), ofPackage);
            EXPECT_EQ(refusal.GetMessageIdentifier().arguments, std::vector<ustring>{u"/home/loose/sub"});
            return true;
        }
        return false;
    };
    monitor.StartMonitoringPackageFolder(free);
    monitor.StartMonitoringPackageFolder(free);
    EXPECT_TRUE(refuses(&FolderMonitor::StartMonitoringPackageFolder));
    EXPECT_TRUE(refuses(&FolderMonitor::StopMonitoringPackageFolder));
    EXPECT_EQ(Level("/home/other"), 1);
    monitor.StopMonitoringPackageFolder(PathWorld::At("/home/never started"));
    EXPECT_EQ(Level("/home/other"), 1);

    // What is known of packages is asked anew each time.
    const auto events = Tolvex::createEventMgr();
    monitor.StopMonitoringPackageFolder(free);
    registrar->ReplaceRegistry(
        std::make_shared<const PackageRegistry>(PackageRegistry::Packages{Package("/home/other", 'e', true)}), *events);
    EXPECT_EQ(Level("/home/other"), 2);
    EXPECT_FALSE(refuses(&FolderMonitor::StartMonitoringPackageFolder));
    EXPECT_EQ(Level("/home/loose/sub"), 1);
}

} // namespace
} // namespace PathManagement
