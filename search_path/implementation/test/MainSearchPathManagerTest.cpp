#include "ManagerWorld.h"
#include "PackageWorld.h"

#include "foundation/components/ModularPackageRegistryHasBeenChanged.h"
#include "path_interfaces/PathAlterationExceptions.h"
#include "path_interfaces/events/PathManagerWillBeDestroyedEvent.h"

#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using Texts = std::vector<std::string>;

Texts Stages(const std::string& what) {
    return {"0" + what, "1" + what, "2" + what};
}

std::string Where(const IPath& path) {
    return PathManagement::Where(*path.GetMainEntries());
}

const std::vector<std::string> disk{"/work/here.kx", "/a/f.kx",       "/a/here.kx", "/a/private/p.kx", "/b/f.kx",
                                    "/b/g.kx",       "/c/+pack/h.kx", "/c/h.kx",    "/other/there.kx"};

TEST(MainSearchPathManager, ComposesTheFourPaths) {
    ManagerWorld world(disk);
    EXPECT_EQ(Where(*world.manager.GetPath()), "/work");
    world.Set({"/a", "/work", "/b", "/a"});
    EXPECT_EQ(Where(*world.manager.GetPath()), "/work /a /b");
    EXPECT_EQ(Where(*world.manager.GetSecondaryPath()), "/work /a /b") << "the user has set the current folder, too";
    EXPECT_EQ(Where(*world.manager.GetMonitoredPath()), "/work /a /work /b");
    EXPECT_EQ(Where(*world.manager.CreateMemento()->storedPath), "/a /work /b");
    EXPECT_EQ(world.manager.GetPathIRIs()->size(), 3u) << "a folder that is named twice is one entry";
    world.ChangeFolder("/other");
    EXPECT_EQ(Where(*world.manager.GetPath()), "/other /a /work /b");
    EXPECT_EQ(Where(*world.manager.GetSecondaryPath()), "/a /work /b");
    EXPECT_EQ(world.Find("there"), "/other/there.kx");
    EXPECT_EQ(world.Find("here"), "/a/here.kx");
    world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::noCurrentFolder);
    EXPECT_EQ(Where(*world.manager.GetPath()), "/a /work /b");
    EXPECT_EQ(world.manager.CreateMemento()->currentFolder, nullptr);
}

TEST(MainSearchPathManager, AnnouncesEachChangeInThreeStages) {
    ManagerWorld world(disk);
    EventLog log(world);
    world.Set({"/a", "/b"});
    EXPECT_EQ(log.Take(), Stages(" +/a +/b"));
    world.Set({"/b", "/a"});
    EXPECT_EQ(log.Take(), Stages(" ~/b"));
    const auto locations = world.manager.GetPathIRIs();
    world.manager.SetPath(world.manager.CreateMemento()->storedPath);
    EXPECT_EQ(log.Take(), Stages("")) << "the same entries again";
    EXPECT_EQ(world.manager.GetPathIRIs(), locations);
    world.Set({"/a", "/c"});
    EXPECT_EQ(log.Take(), Stages(" +/c -/b"));
    world.ChangeFolder("/other");
    EXPECT_EQ(log.Take(), Stages(" c+/other c-/work cd"));
    world.ChangeFolder("/other");
    EXPECT_EQ(log.Take(), Stages("")) << "the same folder again";
    world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::trackWorkingFolder);
    EXPECT_EQ(log.Take(), Texts());
    world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::noCurrentFolder);
    EXPECT_EQ(log.Take(), Stages(" c-/other cd"));
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(log.Take(), Texts());
    world.OnDisk([](auto& storage) { storage.Add("/a/new.kx"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(log.Take(), Stages(" !/a refresh"));
}

TEST(MainSearchPathManager, HandlersSeeTheOldPathThenTheNewOne) {
    ManagerWorld world(disk);
    EventLog log(world);
    Texts seen;
    log.onEvent = [&](const PathChangeEvent& event) { seen.push_back(Where(*event.GetManager().GetPath())); };
    world.Set({"/a"});
    EXPECT_EQ(seen, (Texts{"/work", "/work /a", "/work /a"}));
}

TEST(MainSearchPathManager, RefusesChangesFromInsideAChange) {
    ManagerWorld world(disk);
    EventLog log(world);
    for (const int stage : {0, 1, 2}) {
        world.Set({});
        log.onEvent = [&](const PathChangeEvent& event) {
            if (static_cast<int>(event.GetStage()) == stage) {
                EXPECT_THROW(world.Set({"/b"}), RecursivePathChangeException);
            }
        };
        world.Set({"/a"});
        log.onEvent = nullptr;
        EXPECT_EQ(Where(*world.manager.GetPath()), "/work /a") << stage;
    }
}

TEST(MainSearchPathManager, MakesARefreshAskedForDuringAChangeOnceItIsOver) {
    ManagerWorld world(disk);
    EventLog log(world);
    world.Set({"/a", "/b"});
    log.Take();
    log.onEvent = [&](const PathChangeEvent& event) {
        if (event.IsRefresh())
            return;
        if (event.GetStage() == PathChangeEvent::Stage::beforeChange)
            world.OnDisk([](auto& storage) { storage.Add("/a/late.kx"); });
        world.manager.RefreshPath(RefreshType::knownChanges);
    };
    world.Set({"/a"});
    EXPECT_EQ(log.Take(), (Texts{"0 -/b", "1 -/b", "2 -/b", "0 !/a refresh", "1 !/a refresh", "2 !/a refresh"}));
    EXPECT_EQ(world.Find("late"), "/a/late.kx");

    log.onEvent = [&](const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::afterChange && !event.IsRefresh())
            world.ChangeFolder("/other");
    };
    world.Set({"/b"});
    EXPECT_EQ(Where(*world.manager.GetPath()), "/other /b");
}

TEST(MainSearchPathManager, KeepsTheStateOfTheStageInWhichAHandlerThrows) {
    ManagerWorld world(disk);
    EventLog log(world);
    for (const int stage : {0, 1, 2}) {
        world.Set({});
        log.onEvent = [stage](const PathChangeEvent& event) {
            if (static_cast<int>(event.GetStage()) == stage)
                throw std::runtime_error("handler");
        };
        EXPECT_THROW(world.Set({"/a"}), std::runtime_error);
        EXPECT_EQ(Where(*world.manager.GetPath()), stage == 0 ? "/work" : "/work /a");
        world.OnDisk([](auto& storage) { storage.Add("/work/new.kx"); });
        EXPECT_THROW(world.manager.RefreshPath(RefreshType::knownChanges), std::runtime_error);
        log.onEvent = nullptr;
        world.manager.RefreshPath(RefreshType::knownChanges);
        EXPECT_EQ(world.Find("new"), "/work/new.kx") << "nothing seen is forgotten";
        world.OnDisk([](auto& storage) { storage.Remove("/work/new.kx"); });
        world.Set({"/b"});
        EXPECT_EQ(Where(*world.manager.GetPath()), "/work /b") << "no change is in progress any more";
    }
}

TEST(MainSearchPathManager, AppliesItsMutabilityPolicy) {
    using enum PathManagerMutabilityPolicy;
    ManagerWorld world(disk);
    EventLog log(world);
    world.Set({"/a", "/b"});
    log.Take();
    auto outer = world.manager.PushMutabilityPolicy(noAddingOrRemoving);
    EXPECT_THROW(world.Set({"/a", "/b", "/c"}), PathAlterationNotSupportedException);
    EXPECT_THROW(world.Set({"/a"}), PathAlterationNotSupportedException);
    EXPECT_EQ(log.Take(), Texts());
    world.Set({"/b", "/a"});
    EXPECT_EQ(Where(*world.manager.GetPath()), "/work /b /a");
    log.Take();
    world.Set({"/b", "/a"});
    world.manager.RebuildPath();
    EXPECT_EQ(log.Take(), (Texts{"0", "1", "2", "0", "1", "2"})) << "the same again is no alteration";
    world.ChangeFolder("/other");
    EXPECT_EQ(Where(*world.manager.GetPath()), "/other /b /a") << "what the user has set stays as it is";
    world.OnDisk([](auto& storage) { storage.Rename("/b", "/away"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("g"), "-");
    world.OnDisk([](auto& storage) { storage.Rename("/away", "/b"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("g"), "/b/g.kx") << "a folder that vanishes and comes back";

    auto inner = world.manager.PushMutabilityPolicy(allAlterations);
    world.Set({"/a"});
    world.manager.SetMutabilityPolicy(allAlterations);
    inner.reset();
    EXPECT_THROW(world.Set({"/a", "/b"}), PathAlterationNotSupportedException) << "the policy before the token's";
    outer.reset();
    world.Set({"/a", "/b"});
    world.manager.SetMutabilityPolicy(static_cast<PathManagerMutabilityPolicy>(2));
    EXPECT_DEATH(world.Set({"/a"}), "Unidentified PathManagerMutabilityPolicy assigned to MainSearchPathManager.*"
                                    "MainSearchPathManager.*InstallNewPath");
}

TEST(MainSearchPathManager, LeavesOutWhatMayNotStandOnAPath) {
    ManagerWorld world(disk);
    world.Set({"/c/+pack", "/missing", "/a/private", "/a"});
    EXPECT_EQ(Where(*world.manager.GetPath()), "/work /a");
    EXPECT_EQ(world.problems.GetCount(), 3u);
    EXPECT_NE(world.Keys().find("packageDirectoriesNotAllowedOnPath privateDirectoriesNotAllowedOnPath"),
              std::string::npos)
        << world.Keys();
    world.OnDisk([](auto& storage) { storage.Add("/missing/m.kx"); });
    world.Set({"/missing", "/a"});
    EXPECT_EQ(world.Find("m"), "/missing/m.kx") << "asked for again";

    world.ChangeFolder("/a/private");
    EXPECT_EQ(world.Find("p"), "/a/private/p.kx") << "a private folder serves as the current one";
    world.manager.SetPath(world.manager.GetPath());
    EXPECT_EQ(world.manager.GetPathIRIs()->size(), 2u) << "but is no folder for a path";
}

TEST(MainSearchPathManager, ARefreshSeesEveryKindOfFolder) {
    ManagerWorld world(disk);
    world.Set({"/a", "/c"});
    struct Case {
        const char* file;
        const char* name;
    };
    for (const auto& [file, name] : {Case{"/c/+pack/n1.kx", "n1"},
                                     {"/a/private/n2.kx", "n2"},
                                     {"/work/n3.kx", "n3"},
                                     {"/c/@cls/n4.kx", "n4"},
                                     {"/a/n5.kx", "n5"}}) {
        world.OnDisk([&](auto& storage) { storage.Add(file); });
        world.manager.RefreshPath(RefreshType::knownChanges);
        EXPECT_EQ(world.Find(name), file);
        world.OnDisk([&](auto& storage) { storage.Remove(file); });
        world.manager.RefreshPath(RefreshType::knownChanges);
        EXPECT_EQ(world.Find(name), "-");
    }
}

TEST(MainSearchPathManager, ACurrentFolderThatIsNotInFrontYetIsReadAgain) {
    ManagerWorld world(disk);
    EventLog log(world);
    log.onEvent = [&](const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::afterwards && !event.IsRefresh()) {
            world.ChangeFolder("/other");
            world.OnDisk([](auto& storage) { storage.Add("/other/late.kx"); });
        }
    };
    world.Set({"/a"});
    EXPECT_EQ(world.Find("late"), "/other/late.kx");

    log.onEvent = [&](const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::beforeChange)
            throw std::runtime_error("handler");
    };
    EXPECT_THROW(world.ChangeFolder("/c"), std::runtime_error);
    log.onEvent = nullptr;
    world.OnDisk([](auto& storage) { storage.Add("/c/unseen.kx"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("unseen"), "/c/unseen.kx");
}

TEST(MainSearchPathManager, ReadsTheCurrentFolderAgainOnRequestAlsoWhereItIsStored) {
    for (const RefreshType type : {RefreshType::markCurrentFolder, RefreshType::markEverything}) {
        ManagerWorld world(disk, "/b");
        world.Set({"/b"});
        EventLog log(world);
        world.TakeListings();
        world.manager.RefreshPath(type);
        EXPECT_EQ(log.Take(), Stages(" !/b refresh"));
        EXPECT_EQ(world.TakeListings(), 1u);
    }
}

TEST(MainSearchPathManager, AChangeOfTheCurrentFoldersPolicyRefreshesThePath) {
    ManagerWorld world(disk);
    world.Set({"/a", "/b"});
    EventLog log(world);
    world.OnDisk([](auto& storage) { storage.Add("/b/new.kx"); });
    world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::noCurrentFolder);
    EXPECT_EQ(world.Find("new"), "/b/new.kx");
    EXPECT_EQ(log.Take(), Stages(" c-/work !/b cd"));

    world.OnDisk([](auto& storage) { storage.Add("/b/newer.kx"); });
    log.onEvent = [&](const PathChangeEvent& event) {
        if (event.GetStage() == PathChangeEvent::Stage::beforeChange)
            world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::trackWorkingFolder);
    };
    world.Set({"/b", "/a"});
    EXPECT_EQ(world.Find("newer"), "/b/newer.kx");
    EXPECT_EQ(Where(*world.manager.GetPath()), "/work /b /a");
}

TEST(MainSearchPathManager, RefreshesOfTheCurrentFolderLeaveTheStoredPathAlone) {
    ManagerWorld world(disk);
    world.Set({"/b"});
    world.ChangeFolder("/a/private");
    world.OnDisk([](auto& storage) {
        storage.Add("/a/private/new.kx");
        storage.Add("/b/new.kx");
    });
    world.manager.RefreshPath(RefreshType::knownChanges);
    const auto stored = world.manager.CreateMemento()->storedPath;
    const std::weak_ptr<const IPathEntry> inFront = world.manager.GetPath()->GetMainEntries()->front();
    world.OnDisk([](auto& storage) { storage.Add("/a/private/newer.kx"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("newer"), "/a/private/newer.kx");
    EXPECT_EQ(world.manager.CreateMemento()->storedPath, stored);
    world.ChangeFolder("/other");
    world.queue->WaitUntilIdle();
    EXPECT_TRUE(inFront.expired());
}

TEST(MainSearchPathManager, WatchesEntriesThatStayAsTheirPackagesSay) {
    ManagerWorld world({"/p/f.kx", "/x/g.kx"});
    world.Set({"/p", "/x"});
    const auto drawLevels = [&world] {
        std::string levels;
        for (const auto& entry : *world.manager.CreateMemento()->storedPath->GetMainEntries())
            levels += std::to_string(static_cast<int>(world.factory.GetEntryState(*entry).level));
        return levels;
    };
    struct Case {
        std::vector<std::string> packages;
        const char* levels;
    };
    for (const auto& [packages, levels] :
         {Case{{}, "22"}, Case{{"p1 /p"}, "12"}, Case{{"p1 /p watched", "x1 /x"}, "21"}})
        for (const bool isSet : {true, false}) {
            world.registrar->ReplaceRegistry(MakeRegistry(std::vector<std::string>()), *world.bus);
            world.manager.RebuildPath();
            EXPECT_EQ(drawLevels(), "22");
            world.registrar->ReplaceRegistry(MakeRegistry(packages), *world.bus);
            isSet ? world.Set({"/p", "/x"}) : world.manager.RebuildPath();
            EXPECT_EQ(drawLevels(), levels) << packages.size();
        }
}

/// Somebody keeps the entry of a main folder, so that its child stays the child of a folder that is no longer stored.
TEST(MainSearchPathManager, SeesAPrivateCurrentFolderGoWithTheFolderAbove) {
    ManagerWorld world(disk);
    world.Set({"/a"});
    const auto held = world.manager.CreateMemento()->storedPath->GetMainEntries()->front();
    world.ChangeFolder("/a/private");
    world.Set({"/a", "/b"});
    EXPECT_EQ(world.Find("p"), "/a/private/p.kx");
    world.OnDisk([](auto& storage) { storage.Remove("/a"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("p"), "-");
    EXPECT_EQ(world.Find("f"), "/b/f.kx");
}

TEST(MainSearchPathManager, GoesBackToAMementoAndReadsWhatChangedMeanwhile) {
    ManagerWorld world(disk);
    world.Set({"/a", "/b"});
    const auto memento = world.manager.CreateMemento();
    world.Set({"/c"});
    world.OnDisk([](auto& storage) { storage.Add("/b/meanwhile.kx"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    world.manager.SetPath(memento->storedPath);
    EXPECT_EQ(*world.manager.GetPathIRIs(), *memento->pathIRIs);
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("meanwhile"), "/b/meanwhile.kx");
    world.OnDisk([](auto& storage) { storage.Add("/b/later.kx"); });
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.Find("later"), "/b/later.kx");
}

TEST(MainSearchPathManager, ChangesCostWhatChanged) {
    ManagerWorld world(disk);
    world.Set({"/a", "/b"});
    const auto locations = world.manager.GetPathIRIs();
    const auto stored = world.manager.CreateMemento()->storedPath;
    world.TakeListings();
    world.ChangeFolder("/other");
    EXPECT_EQ(world.TakeListings(), 1u);
    EXPECT_EQ(world.manager.GetPathIRIs(), locations) << "the same list, not one like it";
    EXPECT_EQ(world.manager.CreateMemento()->storedPath, stored);
    world.Set({"/a", "/b", "/c"});
    EXPECT_EQ(world.TakeListings(), 2u) << "the new folder and what lies in it";
    world.Set({"/c", "/b", "/a"});
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.TakeListings(), 0u);
    for (int report = 0; report < 1000; ++report)
        world.OnDisk([&](auto& storage) { storage.Add("/b/r" + std::to_string(report) + ".kx"); });
    EventLog log(world);
    world.manager.RefreshPath(RefreshType::knownChanges);
    EXPECT_EQ(world.TakeListings(), 1u);
    EXPECT_EQ(log.Take(), Stages(" !/b refresh"));
    world.manager.RefreshPath(RefreshType::markCurrentFolder);
    EXPECT_EQ(world.TakeListings(), 1u);
    EXPECT_EQ(log.Take(), Stages(" !/other refresh"));
    world.manager.RefreshPath(RefreshType::markEverything);
    EXPECT_EQ(world.TakeListings(), 6u);
}

TEST(MainSearchPathManager, LetsGoOfFoldersThatLeaveThePath) {
    ManagerWorld world(disk);
    const auto kept = world.factory.GetCounters().entriesKept;
    world.Set({"/a", "/b", "/c"});
    world.Set({});
    world.queue->WaitUntilIdle();
    EXPECT_EQ(world.factory.GetCounters().entriesKept, kept);
}

TEST(MainSearchPathManager, SaysThatItIsDestroyedWhileItIsWhole) {
    ManagerWorld world(disk);
    std::string seen;
    const auto connection =
        world.bus->Subscribe<PathManagerWillBeDestroyedEvent>([&](const PathManagerWillBeDestroyedEvent& event) {
            seen = Where(*event.GetManager().GetPath());
            throw std::runtime_error("stays inside");
        });
    {
        MainSearchPathManager second(world.bus, world.components, world.factory, world.pathFactory,
                                     std::make_unique<MemoryCurrentFolderFactory>([&](CurrentFolderPolicy) {
                                         return std::make_unique<NoCurrentFolderPathManager>(world.pathFactory);
                                     }),
                                     CurrentFolderPolicy::noCurrentFolder, world.folderMonitor,
                                     MainSearchPathManager::EnableModularPackages::yes);
        second.SetPath(world.PathOf({"/a"}));
    }
    EXPECT_EQ(seen, "/a");
}

} // namespace
} // namespace PathManagement
