#include "ManagerWorld.h"

#include "current_folder/CurrentFolderPathManagerFactory.h"
#include "foundation/components/ComponentFeature.h"
#include "foundation/components/IComponent.h"
#include "foundation/diagnostics/LogChannel.h"
#include "path_interfaces/events/CurrentFolderComponentHasBeenChangedEvent.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using TolvexComponents::ComponentFeature;
using TolvexComponents::ComponentIdentifier;
using TolvexComponents::IComponent;

/// A component of one folder with entries of its own.
class FolderComponent final : public IComponent {
public:
    FolderComponent(char16_t letter, std::string_view root)
        : identifier(ustring(1, letter), TolvexComponents::ComponentVersion({1, 0, 0}, u""),
                     {{static_cast<std::uint8_t>(letter)}}),
          root(PathWorld::At(root)), inside({std::string(root) + "/own.kx", std::string(root) + "/below/deep.kx"}) {}

    const ComponentIdentifier& GetIdentifier() const override { return identifier; }
    const Tolvex::CanonicalAbsoluteIRI& GetRootFolder() const override { return root; }
    std::shared_ptr<const IPath> GetPath() const override { return path; }
    std::shared_ptr<const IPathEntry> GetPathEntry(const Tolvex::CanonicalAbsoluteIRI& folder) const override {
        return inside.factory.CreatePathEntry(folder, inside.monitor);
    }

private:
    ComponentIdentifier identifier;
    Tolvex::CanonicalAbsoluteIRI root;
    mutable PathWorld inside;
    std::shared_ptr<const IPath> path = inside.PathOf(PathEntryVector{GetPathEntry(root)});
};

class ComponentsSwitchedOn {
public:
    ComponentsSwitchedOn() { ComponentFeature::Set(true); }
    ~ComponentsSwitchedOn() { ComponentFeature::Set(false); }
};

std::string Where(const IPath& path) {
    return PathManagement::Where(*path.GetMainEntries());
}

std::string Letter(const ICurrentFolderPathManager::Component& component) {
    return component ? Tolvex::ToUtf8(component->GetName()) : "-";
}

const std::vector<std::string> disk{"/work/here.kx",     "/work/+p/q.kx", "/work/@C/@D/m.kx", "/work/private/own.kx",
                                    "/work/resources/r", "/a/f.kx",       "/k/below/x.kx",    "/l/x.kx"};

/// A current-folder manager, and what it tells: "signal from -> component from ; event from to".
class CurrentFolderTest : public testing::Test {
protected:
    CurrentFolderTest() {
        world.manager.SetCurrentFolderPolicy(CurrentFolderPolicy::noCurrentFolder); // one that tells is enough
        manager.ConnectToCurrentFolderChanged([this](const auto& path, const auto& component) {
            told += "path " + Where(*path) + " of " + Letter(component) + ";";
        });
    }

    void GoTo(std::string_view folder) {
        world.bus->Publish(Tolvex::CurrentWorkingFolderChangedEvent(world.At(folder)));
    }
    std::string TakeTold() { return std::exchange(told, {}); }
    void Replace(const TolvexComponents::ModularPackageRegistry::Components& present) {
        world.components.ReplaceComponents(present, *world.bus);
    }

    ManagerWorld world{disk};
    std::shared_ptr<const FolderComponent> k = std::make_shared<FolderComponent>(u'k', "/k");
    std::shared_ptr<const FolderComponent> l = std::make_shared<FolderComponent>(u'l', "/l");
    std::string told;
    CurrentFolderPathManager manager{world.bus,         world.components,    world.factory,
                                     world.pathFactory, world.folderMonitor, world.At("/work")};
    Tolvex::ScopedConnection listener = world.bus->Subscribe<CurrentFolderComponentHasBeenChangedEvent>(
        [this](const CurrentFolderComponentHasBeenChangedEvent& event) {
            told += "component " + Letter(event.GetOld()) + " to " + Letter(event.GetNew()) + ";";
        });
};

TEST_F(CurrentFolderTest, StandsForMainAndPrivateFoldersOnly) {
    struct Case {
        const char* folder;
        const char* path;
    };
    for (const auto& [folder, path] : {Case{"/work", "/work"},
                                       {"/work/private", "/work/private"},
                                       {"/work/+p", ""},
                                       {"/work/@C", ""},
                                       {"/work/@C/@D", ""},
                                       {"/work/resources", ""},
                                       {"/never", "/never"}}) {
        GoTo(folder);
        EXPECT_EQ(Where(*manager.GetCurrentFolderPath()), path) << folder;
        EXPECT_EQ(PathManagement::Where(manager.CreateMemento()->entry), folder);
    }
}

TEST_F(CurrentFolderTest, WritesDownWhatStandsForTheFolder) {
    const auto written = [this](std::string_view folder, int level) {
        Tolvex::SetLogLevel("searchpath::currentfolder", level);
        testing::internal::CaptureStderr();
        GoTo(folder);
        Tolvex::SetLogLevel("searchpath::currentfolder", 0);
        return testing::internal::GetCapturedStderr();
    };
    using testing::AllOf;
    using testing::HasSubstr;
    EXPECT_EQ(written("/a", 1), "");
    EXPECT_THAT(written("/work", 2),
                AllOf(HasSubstr(" currentFolderIri.toString()=memory:///work"), Not(HasSubstr("successfully"))));
    EXPECT_THAT(written("/a", 8), HasSubstr("Current folder path created successfully."));
    EXPECT_THAT(written("/work/+p", 8), HasSubstr("Current folder path empty."));
    const ComponentsSwitchedOn on;
    EXPECT_THAT(written("/a", 8), AllOf(HasSubstr("memory:///a"), Not(HasSubstr("successfully"))));
    EXPECT_THAT(written("/work/+p", 8), Not(HasSubstr("empty")));
}

/// Gives connections to nothing.
class DeafEventMgr final : public Tolvex::EventMgr {
    Tolvex::ScopedConnection DoSubscribe(std::type_index, Handler, std::string) override { return {}; }
    void DoPublish(std::type_index, void*, Keep*) override {}
    void DoPublishNow(std::type_index, const void*) override {}
};

TEST_F(CurrentFolderTest, EndsTheProcessWhenItCannotListen) {
    EXPECT_DEATH(CurrentFolderPathManager(boost::make_shared<DeafEventMgr>(), world.components, world.factory,
                                          world.pathFactory, world.folderMonitor, world.At("/work")),
                 "!m_currentFolderListener.isEmpty\\(\\).*CurrentFolderPathManager");
}

TEST_F(CurrentFolderTest, SaysWhatWasBefore) {
    Replace({k, l});
    struct Case {
        const char* folder;
        const char* told;
    };
    for (const auto& [folder, expected] : {Case{"/a", "path /work of -;"},
                                           {"/a", "path /a of -;"},
                                           {"/k", "path /a of -;component - to k;"},
                                           {"/k/below", "path /k of k;"},
                                           {"/l", "path /k/below of k;component k to l;"},
                                           {"/work", "path /l of l;component l to -;"}}) {
        GoTo(folder);
        EXPECT_EQ(TakeTold(), expected) << folder;
    }
}

TEST_F(CurrentFolderTest, AComponentStandsForItselfWhenComponentsAreSwitchedOn) {
    Replace({k});
    const auto stored = world.PathOf({"/k", "/work"});
    GoTo("/k/below");
    EXPECT_EQ(manager.CreateMemento()->entry, k->GetPathEntry(world.At("/k/below"))) << "the component's own";
    EXPECT_EQ(Where(*manager.GetCurrentFolderPath(*stored)), "/k/below") << "switched off";
    const ComponentsSwitchedOn on;
    GoTo("/k/below");
    EXPECT_EQ(manager.GetCurrentFolderPath(), k->GetPath());
    EXPECT_EQ(manager.GetCurrentFolderPath(*stored), k->GetPath()) << "never the entry of the stored path";
    GoTo("/work");
    EXPECT_EQ(manager.GetCurrentFolderPath(*stored)->GetMainEntries()->front(), stored->GetMainEntries()->back());
    GoTo("/work/+p");
    EXPECT_EQ(Where(*manager.GetCurrentFolderPath(*stored)), "");
}

TEST_F(CurrentFolderTest, FollowsTheRegistryWhereTheFolderChangesHands) {
    GoTo("/k/below");
    TakeTold();
    manager.UpdateCurrentFolderComponent();
    EXPECT_EQ(TakeTold(), "");
    for (const auto& [present, expected] :
         {std::pair{std::vector<std::shared_ptr<const IComponent>>{k, l}, "path /k/below of -;component - to k;"},
          {{k}, ""},
          {{l}, "path /k/below of k;component k to -;"}}) {
        Replace(present);
        manager.UpdateCurrentFolderComponent();
        EXPECT_EQ(TakeTold(), expected);
    }
}

TEST_F(CurrentFolderTest, TheSearchPathTakesThePathOfAComponentAsSoonAsItIsRegistered) {
    const ComponentsSwitchedOn on;
    ManagerWorld other(disk, "/k/below");
    other.Set({"/a"});
    other.components.ReplaceComponents({k}, *other.bus);
    EXPECT_EQ(Where(*other.manager.GetPath()), "/k /a");
    EXPECT_EQ(Letter(other.manager.GetCurrentFolderComponent()), "k");
    other.Set({"/k", "/a"});
    EXPECT_NE(other.manager.CreateMemento()->storedPath->GetMainEntries()->front(),
              k->GetPath()->GetMainEntries()->front())
        << "what the user stores is not the component's";
    other.components.ReplaceComponents({}, *other.bus);
    EXPECT_EQ(Where(*other.manager.GetPath()), "/k/below /k /a");
}

TEST_F(CurrentFolderTest, RefreshesWhatIsOutOfDate) {
    EXPECT_EQ(manager.RequestRefresh(RefreshType::knownChanges).first.size(), 0u);
    const auto before = manager.CreateMemento()->entry;
    const auto [gone, come] = manager.RequestRefresh(RefreshType::markCurrentFolder);
    EXPECT_EQ(gone, PathEntryVector{before});
    EXPECT_EQ(come, PathEntryVector{manager.CreateMemento()->entry});
    EXPECT_NE(before, come.front());
    EXPECT_EQ(TakeTold(), "") << "a refresh is no change of folder";
}

TEST_F(CurrentFolderTest, GoesBackToAMementoOfTheSameFolderOnly) {
    const auto atWork = manager.CreateMemento();
    manager.RequestRefresh(RefreshType::markCurrentFolder);
    manager.RestoreMemento(*atWork);
    EXPECT_EQ(manager.CreateMemento()->entry, atWork->entry);
    EXPECT_EQ(manager.GetCurrentFolderPath(), atWork->path);
    GoTo("/a");
    TakeTold();
    manager.RestoreMemento(*atWork);
    EXPECT_EQ(Where(*manager.GetCurrentFolderPath()), "/a");
    EXPECT_EQ(TakeTold(), "");
}

TEST_F(CurrentFolderTest, TheFactoryFollowsTheProcessOnRequest) {
    const CurrentFolderPathManagerFactory factory(world.bus, world.components, world.factory, world.pathFactory,
                                                  world.folderMonitor);
    const auto none = factory.Create(CurrentFolderPolicy::noCurrentFolder);
    GoTo("/a");
    EXPECT_EQ(none->CreateMemento(), nullptr);
    EXPECT_EQ(none->RequestRefresh(RefreshType::markEverything).first.size(), 0u);
    EXPECT_EQ(Where(*none->GetCurrentFolderPath(*world.PathOf({"/a"}))), "");
    EXPECT_EQ(factory.Create(CurrentFolderPolicy::trackWorkingFolder)->CreateMemento()->entry->GetIRI(),
              Tolvex::GetCurrentWorkingFolder().get());
}

TEST_F(CurrentFolderTest, ListensNoLongerThanItLives) {
    auto second = std::make_unique<CurrentFolderPathManager>(world.bus, world.components, world.factory,
                                                             world.pathFactory, world.folderMonitor, world.At("/a"));
    second->ConnectToCurrentFolderChanged([&](const auto&, const auto&) {
        second.reset(); // whoever is told may let go
        told += "gone;";
    });
    GoTo("/work");
    GoTo("/a");
    EXPECT_EQ(TakeTold(), "path /work of -;gone;path /work of -;");
}

} // namespace
} // namespace PathManagement
