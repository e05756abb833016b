#include "ManagerWorld.h"
#include "PackageWorld.h"

#include "foundation/components/PackageRegistryHasBeenChanged.h"
#include "foundation/environment/EngineScopeStore.h"
#include "path_interfaces/PathAlterationExceptions.h"
#include "search_path/PackagesOnPath.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace PathManagement {
namespace {

using Tolvex::Notification;
using TolvexPackages::IPackageRegistrar;
using Texts = std::vector<std::string>;

/// A host with a manager, packages in the process's registrar, and a coordinator between them.
class PackagesOnPathCoordinatorTest : public testing::Test {
protected:
    PackagesOnPathCoordinatorTest() {
        world.Set({"/x", "/p/m", "/y"});
        Install([this](const Notification& report) { reports.push_back(DrawMessages(report)); });
        log.Take();
    }

    ~PackagesOnPathCoordinatorTest() override {
        Tolvex::EngineScopeStore::End();
        registrar.ReplaceRegistry(MakeRegistry(Texts()), *Tolvex::createEventMgr());
    }

    void Install(std::function<void(const Notification&)> callback) {
        InstallPackagesOnPathCoordinator(*world.bus, world.manager, std::move(callback));
    }

    void Register(const Texts& packages) { registrar.ReplaceRegistry(MakeRegistry(packages), *world.bus); }

    std::string GetFolders() const {
        std::string folders;
        for (const auto& folder : *world.manager.GetPathIRIs())
            folders += (folders.empty() ? "" : " ") + Tolvex::ToUtf8(folder.getPath());
        return folders;
    }

    /// The reports since this was last asked.
    std::vector<Texts> TakeReports() { return std::exchange(reports, {}); }

    IPackageRegistrar& registrar = TolvexPackages::GetPackageRegistrar();
    ManagerWorld world{{"/x/f.kx", "/y/g.kx", "/p/h.kx", "/p/m/i.kx", "/q/j.kx", "/work/"}};
    EventLog log{world};
    std::vector<Texts> reports;
};

const std::vector<Texts> emptyReport{{}};
const std::vector<Texts> refused{{"PathAlterationNotSupported()"}};
const std::vector<Texts> unable{{"UnableToModifyTolvexpath()"}};
const std::string memberRemoved = "packageMemberFolderRemovedFromPath(memory:///p/m; To use the package, put its root "
                                  "folder 'memory:///p' on the path.; 'p@1.0.0')";

TEST_F(PackagesOnPathCoordinatorTest, AHostSeesThePackagesOnThePathAndOneReportForEachChange) {
    EXPECT_EQ(world.Find("h"), "-");
    Register({"p1 /p /p/m manual", "q1 /q manual at=begin"});
    EXPECT_EQ(GetFolders(), "/q /x /y /p");
    EXPECT_EQ(TakeReports(), std::vector<Texts>{{memberRemoved}});
    EXPECT_NE(world.Find("h"), "-");
    EXPECT_EQ(world.manager.GetPathComponents()->size(), 2U);
    EXPECT_EQ(log.Take(), (Texts{"0 +/q +/p -/p/m", "1 +/q +/p -/p/m", "2 +/q +/p -/p/m"}));

    Register({"p1 /p /p/m manual", "q1 /q manual at=begin"});
    EXPECT_EQ(TakeReports(), emptyReport);
    EXPECT_EQ(log.Take(), (Texts{"0", "1", "2"})); // the same list was installed

    Register({"p1 /p manual"}); // the folder is part of the package no more, but it lies inside
    EXPECT_EQ(GetFolders(), "/x /y /p");
    EXPECT_EQ(TakeReports(), emptyReport);

    Register({});
    EXPECT_EQ(GetFolders(), "/x /y");
    EXPECT_EQ(TakeReports(), emptyReport);
    EXPECT_EQ(world.Find("h"), "-");
}

TEST_F(PackagesOnPathCoordinatorTest, WhoeverListensToTheRegistryFindsThePathChangedAlready) {
    Tolvex::EngineScopeStore::End();
    std::string seen;
    const auto early =
        world.bus->Subscribe<TolvexPackages::PackageRegistryHasBeenChanged>([&](const auto&) { seen = GetFolders(); });
    Install([](const Notification&) {});
    Register({"q1 /q manual"});
    EXPECT_EQ(seen, "/x /p/m /y /q");
}

TEST_F(PackagesOnPathCoordinatorTest, TheManagersOwnMessagesAreInTheReport) {
    Register({"p1 /p manual", "z1 /nowhere manual"});
    EXPECT_EQ(GetFolders(), "/x /y /p"); // what does not exist is left out, and what belongs to a package
    EXPECT_EQ(TakeReports(),
              (std::vector<Texts>{{"nameNonexistentOrNotADirectory(/nowhere)",
                                   "packageMemberFoldersNotAllowedOnPath(memory:///p/m; 'p@1.0.0'; memory:///p)"}}));
}

TEST_F(PackagesOnPathCoordinatorTest, ARefusalIsTheWholeReport) {
    {
        const auto token = world.manager.PushMutabilityPolicy(PathManagerMutabilityPolicy::noAddingOrRemoving);
        Register({"p1 /p /p/m manual"});
        EXPECT_EQ(GetFolders(), "/x /p/m /y");
        EXPECT_EQ(TakeReports(), refused);
        EXPECT_EQ(log.Take(), Texts());
        Register({"p1 /p /p/m"}); // the folder still has to go
        EXPECT_EQ(TakeReports(), refused);
        Register({"p1 /p"});
        Register({"p1 /p manual at=begin"});
        EXPECT_EQ(TakeReports(), (std::vector<Texts>{refused[0], refused[0]}));
    }
    Register({});
    world.Set({"/x", "/p/m", "/y"});
    TakeReports();

    auto misplaced = *DrawnPackage::Parse("p1 /p /p/m manual").MakeRecord();
    misplaced.properties.emplace(TolvexPackages::pathPositionProperty, true);
    TolvexPackages::IPackageRegistry::Packages packages{
        std::make_shared<const TolvexPackages::PackageRecord>(std::move(misplaced))};
    registrar.ReplaceRegistry(std::make_shared<const TolvexPackages::PackageRegistry>(std::move(packages)), *world.bus);
    EXPECT_EQ(GetFolders(), "/x /p/m /y");
    EXPECT_EQ(TakeReports(), unable);
}

TEST_F(PackagesOnPathCoordinatorTest, APackageChangeInsideAPathChangeIsReportedAndThePathChangeGoesOn) {
    log.onEvent = [this](const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::afterChange && registrar.GetRegistry()->GetPackages().empty())
            Register({"q1 /q manual"});
    };
    world.Set({"/y"});
    EXPECT_EQ(GetFolders(), "/y");
    EXPECT_EQ(TakeReports(), unable);
    EXPECT_EQ(log.Take().size(), 3U);

    Register({"q1 /q notManual"});
    Register({"q1 /q manual"});
    EXPECT_EQ(GetFolders(), "/y /q");
}

TEST_F(PackagesOnPathCoordinatorTest, WhatTheCallbackThrowsReachesThePublisher) {
    Install({});
    EXPECT_THROW(Register({"q1 /q manual"}), std::bad_function_call);
    EXPECT_EQ(GetFolders(), "/x /p/m /y /q");
    Install([](const Notification&) { throw std::runtime_error("no place for reports"); });
    EXPECT_THROW(Register({}), std::runtime_error);
    EXPECT_EQ(GetFolders(), "/x /p/m /y");
    EXPECT_EQ(TakeReports(), std::vector<Texts>()); // the first coordinator was replaced
}

TEST_F(PackagesOnPathCoordinatorTest, ACallbackMayChangePackagesAndPathAndEndTheEngine) {
    Install([this](const Notification& report) {
        reports.push_back(DrawMessages(report));
        if (reports.size() == 1)
            Register({"p1 /p /p/m manual", "q1 /q manual"});
        if (reports.size() != 2)
            return;
        world.Set({"/y", "/q"});
        Tolvex::EngineScopeStore::End();
        reports.push_back({"still here"});
    });
    Register({"q1 /q manual"});
    EXPECT_EQ(GetFolders(), "/y /q");
    EXPECT_EQ(TakeReports(), (std::vector<Texts>{{}, {memberRemoved}, {"still here"}}));
    Register({});
    EXPECT_EQ(GetFolders(), "/y /q");
    EXPECT_EQ(TakeReports(), std::vector<Texts>());
}

} // namespace
} // namespace PathManagement
