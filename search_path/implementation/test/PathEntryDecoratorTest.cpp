#include "PathWorld.h"

#include "current_folder/CurrentFolderPathManager.h"
#include "current_folder/PathEntryDecorator.h"
#include "foundation/components/ModularPackageRegistry.h"

#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using Tolvex::CanonicalAbsoluteIRI;
using TolvexComponents::ComponentIdentifier;

/// A component with one entry for all its folders.
class TestComponent : public TolvexComponents::IComponent {
public:
    TestComponent(const CanonicalAbsoluteIRI& folder, std::shared_ptr<const IPathEntry> entry)
        : folder(folder), entry(std::move(entry)) {}
    [[nodiscard]] const ComponentIdentifier& GetIdentifier() const override { return identifier; }
    [[nodiscard]] const CanonicalAbsoluteIRI& GetRootFolder() const override { return folder; }
    [[nodiscard]] std::shared_ptr<const IPath> GetPath() const override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetPathEntry(const CanonicalAbsoluteIRI&) const override {
        return entry;
    }

private:
    ComponentIdentifier identifier{u"c", TolvexComponents::ComponentVersion({1, 0, 0}), {}};
    CanonicalAbsoluteIRI folder;
    std::shared_ptr<const IPathEntry> entry;
};

std::vector<std::string> Walk(const IPathEntry& entry, SearchScope scope, bool concurrently, bool stop) {
    std::vector<std::string> visited;
    const auto visit = [&](const std::shared_ptr<const IPathEntry>& each) {
        visited.push_back(Draw(*each));
        return stop;
    };
    const bool stopped = concurrently ? entry.ConcurrentForEachEntry(scope, visit) : entry.ForEachEntry(scope, visit);
    EXPECT_EQ(stopped, stop && !visited.empty());
    return visited;
}

class PathEntryDecoratorTest : public testing::Test {
protected:
    /// What the manager of the current folder makes of a folder.
    std::shared_ptr<const IPathEntry> CurrentFolderEntry(std::string_view folder) {
        const CurrentFolderPathManager manager(events, components, world.factory, world.pathFactory, world.monitor,
                                               PathWorld::At(folder));
        return manager.CreateMemento()->entry;
    }

    PathWorld world{{"/top/f.kx", "/top/F.kxp", "/top/+pack/g.kx", "/top/@Class/@Inner/i.kx", "/top/private/p.kx",
                     "/top/private/private/", "/top/private/resources/", "/top/resources/r.txt"}};
    TolvexComponents::ModularPackageRegistry components;
    boost::shared_ptr<Tolvex::EventMgr> events = Tolvex::createEventMgr();
    const std::vector<ustring> extensions{u".kx", u".kxp"};
    const SearchTarget target{u"f", extensions};
};

TEST_F(PathEntryDecoratorTest, AnswersAsTheEntryItWraps) {
    for (const auto* const folder : {"/top", "/top/+pack", "/top/@Class", "/top/private", "/top/resources"}) {
        SCOPED_TRACE(folder);
        const auto entry = world.Entry(folder);
        const auto decorator = std::make_shared<const PathEntryDecorator>(entry);
        EXPECT_EQ(Draw(*decorator), Draw(*entry)); // type, descriptor, items and all children
        EXPECT_EQ(decorator->GetIRI(), entry->GetIRI());
        EXPECT_EQ(&decorator->GetPathComparator(), &entry->GetPathComparator());
        for (const auto policy : {FilenameMatchingPolicy::exact, FilenameMatchingPolicy::ignoreCase}) {
            EXPECT_EQ(decorator->FindFirst(target, policy), entry->FindFirst(target, policy));
            EXPECT_EQ(decorator->FindAll(target, policy), entry->FindAll(target, policy));
            EXPECT_EQ((*decorator->CreateFilenameMatcher(policy))(u"f", u"F"),
                      (*entry->CreateFilenameMatcher(policy))(u"f", u"F"));
        }
        for (const bool stop : {false, true})
            for (const bool concurrently : {false, true})
                EXPECT_EQ(Walk(*decorator, SearchScope::All(), concurrently, stop),
                          Walk(*entry, SearchScope::All(), concurrently, stop));
    }
    const auto entry = world.Entry("/top");
    const PathEntryDecorator decorator(entry);
    EXPECT_FALSE(decorator.IsOutOfDate());
    world.storage->GetClock().Advance(std::chrono::seconds(1));
    world.storage->Add("/top/new.kx");
    world.storage->GetClock().Advance(std::chrono::seconds(1)); // else the new entry is not settled either
    EXPECT_TRUE(decorator.IsOutOfDate());
    EXPECT_EQ(decorator.GetUpdatedPathEntry(world.factory, world.monitor), world.Entry("/top"));
}

TEST_F(PathEntryDecoratorTest, OnlyAPrivateCurrentFolderIsPresentedAsAnother) {
    for (const auto* const folder : {"/top", "/top/+pack", "/top/@Class", "/top/@Class/@Inner", "/top/resources"})
        EXPECT_EQ(CurrentFolderEntry(folder), world.Entry(folder));

    const auto component = std::make_shared<const TestComponent>(PathWorld::At("/top"), world.Entry("/top/+pack"));
    components.ReplaceComponents({component}, *events);
    EXPECT_EQ(CurrentFolderEntry("/top/private"), world.Entry("/top/+pack"));
}

TEST_F(PathEntryDecoratorTest, APrivateCurrentFolderIsAMainFolderAndItsOwnPrivateFolder) {
    const auto wrapped = world.Entry("/top/private");
    const auto entry = CurrentFolderEntry("/top/private");
    ASSERT_NE(entry, wrapped);
    EXPECT_EQ(wrapped->GetPathEntryType(), PathEntryType::privateFolder);
    EXPECT_EQ(entry->GetPathEntryType(), PathEntryType::mainFolder);
    EXPECT_EQ(entry->GetPrivateEntry(), wrapped);
    EXPECT_EQ(entry->GetIRI(), wrapped->GetIRI());
    EXPECT_EQ(entry->GetResourcesEntry(), wrapped->GetResourcesEntry());
    EXPECT_EQ(entry->GetPathItems(), wrapped->GetPathItems());
    EXPECT_EQ(entry->GetUpdatedPathEntry(world.factory, world.monitor), wrapped); // not wrapped

    const SearchScope withoutMain{PathEntryType::privateFolder, PathEntryType::resourcesFolder};
    const SearchScope twice{PathEntryType::privateFolder, PathEntryType::mainFolder, PathEntryType::mainFolder};
    for (const bool concurrently : {false, true}) {
        for (const bool stop : {false, true}) {
            EXPECT_EQ(Walk(*entry, withoutMain, concurrently, stop), std::vector<std::string>());
            EXPECT_EQ(Walk(*entry, twice, concurrently, stop), std::vector<std::string>{Draw(*entry)});
        }
    }
    entry->ForEachEntry(SearchScope::All(), [&](const auto& visited) {
        EXPECT_EQ(visited, entry);
        return false;
    });
}

TEST_F(PathEntryDecoratorTest, APathFindsTheFilesOfAPrivateCurrentFolder) {
    const auto entry = CurrentFolderEntry("/top/private");
    const auto path = world.PathOf({entry, world.Entry("/top")});
    const SearchScope main{PathEntryType::mainFolder};
    EXPECT_EQ(File(path->FindFirstInScope(main, target.WithName(u"p"), FilenameMatchingPolicy::exact)),
              "/top/private/p.kx");
    EXPECT_EQ(File(path->FindFirstInScope(main, target, FilenameMatchingPolicy::exact)), "/top/f.kx");
    EXPECT_EQ(path->GetPathEntryFromAbsoluteIRI(entry->GetIRI()), entry);
    const auto alone = world.PathOf({world.Entry("/top")});
    EXPECT_EQ(File(alone->FindFirstInScope(main, target.WithName(u"p"), FilenameMatchingPolicy::exact)), "-");
}

} // namespace
} // namespace PathManagement
