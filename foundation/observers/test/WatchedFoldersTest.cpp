#include "ObservedTree.h"
#include "foundation/events/EventMgr.h"
#include "foundation/observers/FileFolderChangedEvent.h"
#include "foundation/storage/MemoryStorage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

namespace Tolvex {
namespace {

using namespace std::chrono_literals;

/// Something that happens to the tree, and the observers that it changes; all others stay as they are.
struct Happening {
    const char* name;
    std::function<void(const ObservedTree&)> happen;
    Names changed;
};

void Exchange(const ObservedTree& tree, const std::string& a, const std::string& b) {
    tree.MoveStampsOn();
    ASSERT_EQ(::renameat2(-1, tree.At(a).c_str(), -1, tree.At(b).c_str(), RENAME_EXCHANGE), 0);
}

void RunInShell(const ObservedTree& tree, const std::string& command) {
    tree.MoveStampsOn();
    ASSERT_EQ(std::system(("cd '" + tree.tree.GetRoot().native() + "' && " + command).c_str()), 0);
}

const std::vector<std::string> observed{"a", "a/b", "a/b/c", "d", "far/off/folder", "direct", "links/to/e", "links/e"};

void BuildTree(const ObservedTree& tree) {
    for (const auto* const folder : {"a/b/c", "a/x/c", "d", "e/f", "e2/f", "links", "direct"})
        tree.MakeFolder(folder);
    for (const auto* const file : {"a/b/c/file", "a/x/c/file", "e/file", "e2/file"})
        tree.MakeFile(file);
    tree.MakeLink("links/to", "..");
    tree.MakeLink("links/e", "../e");
}

const std::vector<Happening> happenings{
    {"file made", [](const auto& t) { t.MakeFile("a/b/new"); }, {"a/b"}},
    {"file removed", [](const auto& t) { t.Remove("a/b/c/file"); }, {"a/b/c"}},
    {"file renamed", [](const auto& t) { t.Move("a/b/c/file", "a/b/c/file2"); }, {"a/b/c"}},
    {"file moved", [](const auto& t) { t.Move("a/b/c/file", "d/file"); }, {"a/b/c", "d"}},
    {"folder made", [](const auto& t) { t.MakeFolder("d/new"); }, {"d"}},
    {"file only written", [](const auto& t) { std::ofstream(t.At("a/b/c/file")) << "more"; }, {}},
    {"file's rights changed",
     [](const auto& t) { std::filesystem::permissions(t.At("a/b/c/file"), std::filesystem::perms::owner_read); },
     {}},
    {"by another process",
     [](const auto& t) { RunInShell(t, "touch d/new && mv a/b/c/file a/b/c/g"); },
     {"d", "a/b/c"}},
    {"ancestor moved away", [](const auto& t) { t.Move("a", "z"); }, {"a", "a/b", "a/b/c"}},
    {"ancestor moved away and back",
     [](const auto& t) {
         t.Move("a", "z");
         t.Move("z", "a");
     },
     {"a"}}, // whose own stamp says so
    {"ancestor exchanged", [](const auto& t) { Exchange(t, "a/b", "a/x"); }, {"a", "a/b", "a/b/c"}},
    {"folder removed", [](const auto& t) { t.Remove("a/b"); }, {"a", "a/b", "a/b/c"}},
    {"folder removed while it is held",
     [](const auto& t) {
         t.Hold("a/b/c");
         t.Hold("a/b");
         t.Remove("a/b");
     },
     {"a", "a/b", "a/b/c"}},
    {"folder made again while it is held",
     [](const auto& t) {
         t.Hold("a/b/c");
         t.Remove("a/b/c");
         t.MakeFolder("a/b/c");
         t.MakeFile("a/b/c/file");
     },
     {"a/b", "a/b/c"}},
    {"empty folder removed while it is held",
     [](const auto& t) {
         t.Hold("direct");
         t.Remove("direct");
     },
     {"direct"}},
    {"missing folder comes", [](const auto& t) { t.MakeFolder("far/off/folder"); }, {"far/off/folder"}},
    {"missing folder comes by a move",
     [](const auto& t) {
         t.MakeFolder("near/off/folder");
         t.Move("near", "far");
     },
     {"far/off/folder"}},
    {"half of the way comes", [](const auto& t) { t.MakeFolder("far/off"); }, {}},
    {"missing folder comes and goes",
     [](const auto& t) {
         t.MakeFolder("far/off/folder");
         t.Remove("far");
     },
     {}},
    {"folder replaced by a file",
     [](const auto& t) {
         t.Remove("d");
         t.MakeFile("d");
     },
     {"d"}},
    {"folder replaced by a link",
     [](const auto& t) {
         t.Move("d", "d2");
         t.MakeLink("d", "e");
     },
     {"d"}},
    {"link's target changed", [](const auto& t) { t.MakeFile("e/new"); }, {"links/to/e", "links/e"}},
    {"link retargeted",
     [](const auto& t) {
         t.Remove("links/e");
         t.MakeLink("links/e", "../e2");
     },
     {"links/e"}},
    {"link's target replaced", [](const auto& t) { Exchange(t, "e", "e2"); }, {"links/to/e", "links/e"}},
    {"folder's rights changed",
     [](const auto& t) {
         t.MoveStampsOn();
         std::filesystem::permissions(t.At("d"), std::filesystem::perms::owner_all);
     },
     {"d"}},
};

/// How the observers of a test come to know.
struct Means {
    const char* name;
    ObservationLevel level;
    std::size_t watchLimit;
};

const Means allMeans[] = {{"watches", ObservationLevel::notification, 1000},
                          {"time checks", ObservationLevel::timeCheck, 1000},
                          {"one watch", ObservationLevel::notification, 1},
                          {"some watches", ObservationLevel::notification, 7},
                          {"no watch", ObservationLevel::notification, 0}};

class ByAllMeans : public testing::TestWithParam<Means> {};

TEST_P(ByAllMeans, WhatHappensIsSeenByThoseItConcerns) {
    const auto& [name, level, watchLimit] = GetParam();
    for (const auto& happening : happenings) {
        for (const bool askFirst : {true, false}) {
            if (!askFirst && watchLimit < 1000)
                continue; // nothing is armed either way, or by chance
            SCOPED_TRACE(std::string(happening.name) + (askFirst ? ", watched before" : ", not asked before"));
            ObservedTree tree({watchLimit, {}});
            BuildTree(tree);
            std::vector<std::unique_ptr<IFileFolderObserver>> observers;
            for (const auto& path : observed)
                observers.push_back(tree.Observe(path, level));
            if (askFirst) {
                EXPECT_EQ(tree.TakeChanges(), Names());
            }
            happening.happen(tree);
            Names changed;
            for (std::size_t i = 0; i < observed.size(); ++i)
                if (observers[i]->hasChanged())
                    changed.insert(observed[i]);
            EXPECT_EQ(changed, happening.changed);
            EXPECT_EQ(tree.TakeChanges(), happening.changed);
            EXPECT_EQ(tree.TakeChanges(), Names());
        }
    }
}

std::string NameOf(const testing::TestParamInfo<Means>& tested) {
    std::string name = tested.param.name;
    std::ranges::replace(name, ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Observers, ByAllMeans, testing::ValuesIn(allMeans), NameOf);

TEST(WatchedFolders, AreNotLookedAtAgain) {
    ObservedTree tree;
    BuildTree(tree);
    const auto a = tree.Observe("a");
    const auto c = tree.Observe("a/b/c");
    EXPECT_EQ(tree.TakeChanges(), Names());
    EXPECT_EQ(tree.storage->TakeLooks(), 2U) << "one after each watch was armed";
    tree.MakeFile("a/new");
    static_cast<void>(tree.storage->TakeLooks());
    EXPECT_EQ(tree.TakeChanges(), Names{"a"});
    EXPECT_TRUE(a->hasChanged());
    EXPECT_FALSE(c->hasChanged());
    EXPECT_EQ(tree.storage->TakeLooks(), 0U);
}

TEST(WatchedFolders, AnObserverKnowsNothingOfWhatItsMarkHasSeenAlready) {
    ObservedTree tree;
    tree.MakeFolder("a");
    auto old = tree.Watch("a");
    tree.MakeFile("a/first");
    const auto young = tree.Observe("a");
    EXPECT_TRUE(old->hasChanged());
    EXPECT_FALSE(young->hasChanged());
    EXPECT_EQ(tree.TakeChanges(), Names{"a"});
    old.reset();
    EXPECT_FALSE(young->hasChanged()) << "the end of the old one changes nothing";
    tree.MakeFile("a/second");
    static_cast<void>(tree.storage->TakeLooks());
    EXPECT_TRUE(young->hasChanged());
    EXPECT_EQ(tree.storage->TakeLooks(), 0U) << "the watch is still there";
}

TEST(WatchedFolders, ChangesBetweenMarkAndWatchAreSeen) {
    ObservedTree tree;
    for (const auto* const path : {"a", "b", "c"})
        tree.MakeFolder(path);
    const auto a = tree.Observe("a");
    const auto b = tree.Observe("b", ObservationLevel::none);
    const auto c = tree.Observe("c", ObservationLevel::none);
    const auto later = tree.Observe("later", ObservationLevel::none);
    for (const auto* const path : {"a/x", "b/x", "c/x", "later"})
        tree.MakeFolder(path);
    EXPECT_EQ(tree.TakeChanges(), Names{"a"});
    EXPECT_FALSE(b->hasChanged());
    for (const auto* const path : {"b", "later"})
        tree.factory->setObservationLevel(tree.Locate(path), ObservationLevel::notification);
    EXPECT_EQ(tree.TakeChanges(), (Names{"b", "later"}));
    EXPECT_FALSE(c->hasChanged());
    tree.factory->setObservationLevel(tree.Locate("a"), ObservationLevel::none);
    EXPECT_TRUE(a->hasChanged()) << "what is known stays known";
}

TEST(WatchedFolders, TheKernelsOneWatchServesAFolderUnderItsOldAndItsNewName) {
    for (const bool isOldOneAsked : {true, false}) {
        ObservedTree tree;
        tree.MakeFolder("a/b");
        auto old = tree.Watch("a/b");
        tree.Move("a", "z");
        const auto now = tree.Watch("z/b");
        if (isOldOneAsked) {
            EXPECT_TRUE(old->hasChanged());
        } else {
            old.reset();
        }
        tree.MakeFile("z/b/new");
        static_cast<void>(tree.storage->TakeLooks());
        EXPECT_TRUE(now->hasChanged());
        EXPECT_EQ(tree.storage->TakeLooks(), 0U) << "the end of the other name took the watch along";
    }
}

TEST(WatchedFolders, WhatHappensToAFolderThatMovedOnIsNoneOfItsOldNamesBusiness) {
    ObservedTree tree;
    tree.MakeFolder("a/b");
    const auto old = tree.Watch("a/b");
    tree.MakeFile("a/b/first");
    tree.Move("a/b", "z");
    EXPECT_TRUE(old->hasChanged()) << "known without a look";
    const auto missing = tree.Observe("a/b");
    tree.MakeFile("z/second");
    EXPECT_FALSE(missing->hasChanged());
}

TEST(WatchedFolders, AFolderKnownByATimeOnlyIsToldFromOneThatTakesItsPlace) {
    const auto now = GetSystemClock().Now();
    const auto known = ChangeMark::AsOf(now + 30s, now + 1h);
    for (const auto level : {ObservationLevel::timeCheck, ObservationLevel::notification}) {
        ObservedTree tree;
        for (const auto* const folder : {"old/sub", "top/sub"})
            tree.MakeFolder(folder);
        const auto top = tree.factory->createObserver(tree.Locate("top"), known, level);
        const auto sub = tree.factory->createObserver(tree.Locate("top/sub"), known, level);
        const auto later = ChangeMark::AsOf(now + 30s, now);
        const auto untrusted = tree.factory->createObserver(tree.Locate("old"), later, level);
        EXPECT_FALSE(top->hasChanged());
        EXPECT_FALSE(sub->hasChanged());
        EXPECT_TRUE(untrusted->hasChanged()) << "nobody can have known it yet";
        tree.Move("top", "newer");
        tree.Move("old", "top");
        EXPECT_TRUE(top->hasChanged());
        EXPECT_TRUE(sub->hasChanged());
    }
}

/// Others keep no watch that would tell by chance.
TEST(WatchedFolders, EachAloneSeesWhatConcernsIt) {
    for (const auto& happening : happenings) {
        SCOPED_TRACE(happening.name);
        ObservedTree tree;
        BuildTree(tree);
        std::vector<std::unique_ptr<IFileFolderObserverFactory>> factories;
        std::vector<std::unique_ptr<IFileFolderObserver>> observers;
        for (const auto& path : happening.changed) {
            tree.factory = CreateFileFolderObserverFactory(tree.storage);
            observers.push_back(tree.Watch(path));
            factories.push_back(std::move(tree.factory));
        }
        happening.happen(tree);
        for (const auto& observer : observers)
            EXPECT_TRUE(observer->hasChanged());
    }
}

TEST(WatchedFolders, TheWayToAMissingFolderMayChange) {
    ObservedTree tree;
    tree.MakeFolder("last");
    tree.MakeFolder("deep/in/here");
    tree.MakeFolder("other/missing");
    const auto deep = tree.Watch("deep/in/here");
    const auto observer = tree.Watch("last/missing/too");
    const auto nearer = tree.Watch("last/missing");
    tree.Hold("last");
    tree.Move("other", "last");
    EXPECT_FALSE(observer->hasChanged());
    EXPECT_TRUE(nearer->hasChanged());
    tree.MakeFolder("last/missing/too");
    EXPECT_TRUE(observer->hasChanged());
    const auto below = tree.Watch("deep/down/there"); // "deep" told of its own fate only until now
    tree.MakeFolder("deep/down/there");
    EXPECT_TRUE(below->hasChanged());
}

TEST(WatchedFolders, TokensTellWhatChangedSince) {
    ObservedTree tree;
    std::vector<std::unique_ptr<IFileFolderObserver>> observers;
    for (const auto* const path : {"a", "b", "c"}) {
        tree.MakeFolder(path);
        observers.push_back(tree.Watch(path));
    }
    const auto changesSince = [&](ChangeToken since) {
        const auto changed = tree.factory->getChangesSince(since).changed;
        return std::vector<CanonicalAbsoluteIRI>(changed);
    };
    using Folders = std::vector<CanonicalAbsoluteIRI>;
    const auto start = tree.factory->getChangesSince({}).now;
    tree.MakeFile("b/1");
    const auto afterB = tree.factory->getChangesSince(start).now;
    tree.MakeFile("a/1");
    tree.MakeFile("b/2");
    EXPECT_EQ(changesSince(afterB), Folders{tree.Locate("a")}) << "b had changed before";
    EXPECT_EQ(changesSince(start), (Folders{tree.Locate("b"), tree.Locate("a")}));
    EXPECT_EQ(changesSince({afterB.position + 1000}), (Folders{tree.Locate("b"), tree.Locate("a")}))
        << "a token of another factory";
    observers[1] = tree.Watch("b");
    EXPECT_EQ(changesSince(start), Folders{tree.Locate("a")}) << "nobody is left to whom b has changed";
    tree.MakeFile("b/3");
    EXPECT_EQ(changesSince(start), (Folders{tree.Locate("a"), tree.Locate("b")}));
}

TEST(WatchedFolders, ReportsOfOthersChangeAllObserversOfAFolder) {
    ObservedTree tree;
    tree.MakeFolder("a/b");
    const auto watched = tree.Watch("a");
    const auto frozen = tree.Observe("a", ObservationLevel::none);
    const auto other = tree.Watch("a/b");
    const auto events = createLocalEventMgr();
    events->Publish(FileFolderChangedEvent(tree.Locate("a").toString(), FrozenInclusion::excluded));
    events->Publish(FileFolderChangedEvent(ustring(u"no IRI"), FrozenInclusion::included));
    EXPECT_FALSE(watched->hasChanged()) << "not delivered yet";
    events->Deliver();
    EXPECT_TRUE(watched->hasChanged());
    EXPECT_FALSE(frozen->hasChanged());
    EXPECT_EQ(tree.TakeChanges(), Names{"a"});
    events->Publish(FileFolderChangedEvent(tree.Locate("a")));
    events->Deliver();
    EXPECT_TRUE(frozen->hasChanged());
    EXPECT_EQ(tree.TakeChanges(), Names{"a"}) << "a report counts again";
    EXPECT_FALSE(other->hasChanged());
    tree.factory.reset();
    events->Publish(FileFolderChangedEvent(tree.Locate("a/b")));
    events->Deliver();
    EXPECT_FALSE(other->hasChanged()) << "nobody listens any more";
}

TEST(WatchedFolders, ALostReportMakesEverybodyLook) {
    std::size_t queueLength = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> queueLength;
    if (queueLength == 0 || queueLength > 100'000)
        GTEST_SKIP() << "too long a queue to fill: " << queueLength;
    ObservedTree tree;
    for (const auto* const path : {"noise", "changed", "still", "parent/gone", "parent/stays"})
        tree.MakeFolder(path);
    std::vector<std::unique_ptr<IFileFolderObserver>> observers;
    for (const auto* const path : {"noise", "changed", "still", "parent/gone", "parent/stays", "later"})
        observers.push_back(tree.Watch(path));
    for (std::size_t i = 0; i <= queueLength / 2; ++i) {
        std::ofstream(tree.At("noise/file")).put('x');
        std::filesystem::remove(tree.At("noise/file"));
    }
    tree.MakeFile("changed/file");
    tree.Remove("parent/gone");
    tree.MakeFolder("later");
    EXPECT_EQ(tree.TakeChanges(), (Names{"noise", "changed", "parent/gone", "later"}));
    tree.MakeFile("still/file");
    static_cast<void>(tree.storage->TakeLooks());
    EXPECT_EQ(tree.TakeChanges(), Names{"still"});
    EXPECT_EQ(tree.storage->TakeLooks(), 0U) << "all is watched again";
}

TEST(WatchedFolders, WithoutAWatchAreLookedAtAndTheUserIsTold) {
    struct Case {
        ChangeHandleWarning setting;
        std::vector<bool> isTold; // at each of three times
    };
    const Case cases[] = {{ChangeHandleWarning::always, {true, true, true}},
                          {ChangeHandleWarning::once, {true, false, false}},
                          {ChangeHandleWarning::never, {false, false, false}}};
    for (const std::size_t limit : {0U, 1U, 5U})
        for (const auto& [setting, isTold] : cases) {
            ObservedTree tree({limit, {}});
            tree.factory->setChangeHandleWarning(setting);
            EXPECT_EQ(tree.factory->getChangeHandleWarning(), setting);
            tree.MakeFolder("a/b/c");
            tree.MakeFolder("b");
            EXPECT_EQ(tree.TakeChanges(), Names());
            EXPECT_EQ(tree.factory->takeChangeHandleWarning(), "") << "nobody wanted a watch";
            const auto a = tree.Observe("a/b/c");
            const auto b = tree.Observe("b");
            for (const bool expected : isTold) {
                EXPECT_EQ(tree.TakeChanges(), Names());
                const auto text = tree.factory->takeChangeHandleWarning();
                const bool isRight = text.find("All " + std::to_string(limit) + " folder watches") == 0;
                EXPECT_TRUE(expected ? isRight : text.empty()) << text;
                EXPECT_EQ(text.find("sysctl"), std::string::npos) << "that is not what refused: " << text;
                EXPECT_EQ(tree.factory->takeChangeHandleWarning(), "");
            }
        }
}

TEST(WatchedFolders, GetAWatchOnceOneIsFree) {
    const auto depth = static_cast<std::size_t>(std::ranges::distance(ObservedTree().tree.GetRoot()));
    ObservedTree tree({depth + 1, {}}); // the way down to the tree, and one
    tree.MakeFolder("a");
    tree.MakeFolder("b");
    auto a = tree.Observe("a");
    const auto b = tree.Observe("b");
    const auto countLooks = [&] {
        static_cast<void>(tree.storage->TakeLooks());
        EXPECT_EQ(tree.TakeChanges(), Names());
        return tree.storage->TakeLooks();
    };
    static_cast<void>(countLooks());
    EXPECT_EQ(countLooks(), 1U);
    a.reset();
    EXPECT_EQ(countLooks(), 1U) << "after the watch was armed";
    EXPECT_EQ(countLooks(), 0U);
}

TEST(RemoteFolders, AreCheckedAsThePolicySays) {
    const auto storage = std::make_shared<MemoryStorage>(std::initializer_list<std::string_view>{"/r/a/", "/l/"});
    const auto factory = CreateFileFolderObserverFactory(storage, {0, {MemoryStorage::GetIRI("/r")}});
    const auto observe = [&](std::string_view path, ObservationLevel level) {
        const auto iri = CanonicalAbsoluteIRI::fromCanonical(MemoryStorage::GetIRI(path));
        return factory->createObserver(iri, storage->takeChangeMark(iri), level);
    };
    struct Case {
        RemotePathPolicy policy;
        bool isChangedAtOnce;
        bool isChangedLater;
    };
    const Case cases[] = {{RemotePathPolicy::none, false, false},
                          {RemotePathPolicy::timecheckDir, false, true},
                          {RemotePathPolicy::reload, true, true}};
    for (const auto& [policy, isChangedAtOnce, isChangedLater] : cases) {
        storage->GetClock().Advance(1s);
        factory->setRemotePathPolicy(policy);
        const auto remote = observe("/r/a", ObservationLevel::notification);
        const auto unwatched = observe("/r/a", ObservationLevel::none);
        const auto local = observe("/l", ObservationLevel::notification);
        const auto number = std::to_string(static_cast<int>(policy));
        EXPECT_EQ(remote->hasChanged(), isChangedAtOnce);
        EXPECT_FALSE(local->hasChanged());
        auto token = factory->getChangesSince({}).now;
        storage->Add("/r/a/" + number);
        EXPECT_EQ(remote->hasChanged(), isChangedLater);
        EXPECT_FALSE(unwatched->hasChanged());
        EXPECT_EQ(factory->getChangesSince(token).changed.size(), isChangedLater ? 1U : 0U);
        token = factory->getChangesSince({}).now;
        EXPECT_EQ(factory->getChangesSince(token).changed.size(), policy == RemotePathPolicy::reload ? 1U : 0U);
    }
    const auto remote = observe("/r/a", ObservationLevel::timeCheck);
    factory->setRemotePathPolicy(RemotePathPolicy::none);
    storage->ClearListings();
    storage->Add("/r/a/last");
    EXPECT_FALSE(remote->hasChanged());
    EXPECT_TRUE(factory->getChangesSince({}).changed.empty());
    EXPECT_EQ(storage->GetMarkCount(), 0U) << "a server that does not answer would hold everybody up";
}

TEST(RemoteFolders, AreKnownBehindLinks) {
    for (const auto level : {ObservationLevel::none, ObservationLevel::timeCheck, ObservationLevel::notification}) {
        ObservedTree tree;
        for (const auto* const folder : {"far/p/q", "near", "here/q"})
            tree.MakeFolder(folder);
        tree.MakeLink("there", "far");
        tree.MakeLink("near/link", "../there/p");
        tree.factory = CreateFileFolderObserverFactory(tree.storage, {1000, {tree.Locate("far")}});
        const std::vector folders{tree.Locate("near/link"), tree.Locate("near/link/q")};
        const auto countLooks = [&](RemotePathPolicy policy) {
            tree.factory->setRemotePathPolicy(policy);
            const auto link = tree.Observe("near/link", level);
            const auto below = tree.Observe("near/link/q", level);
            tree.factory->lookAt(folders);
            EXPECT_EQ(link->hasChanged(), policy == RemotePathPolicy::reload);
            EXPECT_EQ(below->hasChanged(), policy == RemotePathPolicy::reload);
            return tree.storage->TakeLooks();
        };
        EXPECT_EQ(countLooks(RemotePathPolicy::none), 0U);
        EXPECT_EQ(countLooks(RemotePathPolicy::reload), 0U);
        EXPECT_GT(countLooks(RemotePathPolicy::timecheckDir), 0U);
        tree.factory->setRemotePathPolicy(RemotePathPolicy::none);
        const auto observer = tree.Observe("near/link/q", level);
        tree.factory->lookAt(folders);
        EXPECT_FALSE(observer->hasChanged());
        tree.Remove("near/link");
        tree.MakeLink("near/link", "../here");
        tree.factory->lookAt(folders);
        EXPECT_TRUE(observer->hasChanged()) << "it is near now";
    }
}

TEST(WatchedFolders, OtherStorageAttachedOnTheWayIsSeen) {
    ObservedTree tree;
    tree.MakeFolder("a/b");
    tree.MakeFolder("c");
    const auto mount = "mount -t tmpfs none '" + tree.At("a").native() + "' 2> /dev/null";
    auto b = tree.Watch("a/b");
    const auto c = tree.Watch("c");
    if (std::system(mount.c_str()) != 0)
        GTEST_SKIP() << "this user may not attach storage";
    EXPECT_TRUE(b->hasChanged());
    b = tree.Watch("a/b");
    EXPECT_EQ(std::system(("umount '" + tree.At("a").native() + "'").c_str()), 0);
    EXPECT_TRUE(b->hasChanged());
    EXPECT_FALSE(c->hasChanged());
}

TEST(WatchedFolders, AreAskedByManyThreadsWhileTheyChange) {
    ObservedTree tree;
    tree.MakeFolder("a/b");
    tree.MakeFolder("still");
    tree.MakeFolder("c/moved");
    const auto still = tree.Watch("still");
    const auto work = [&](int number) {
        for (int i = 0; i < 100; ++i) {
            const auto own = tree.Observe("a/b");
            const auto moved = tree.Observe(i % 2 == 0 ? "c/moved" : "d/moved");
            std::ofstream(tree.At("a/b/" + std::to_string(number))).put('x');
            std::filesystem::remove(tree.At("a/b/" + std::to_string(number)));
            EXPECT_TRUE(own->hasChanged());
            EXPECT_FALSE(still->hasChanged());
            EXPECT_FALSE(tree.factory->getChangesSince({}).changed.empty());
            tree.factory->setObservationLevel(tree.Locate("a/b"), ObservationLevel::notification);
            if (number == 0)
                std::filesystem::rename(tree.At(i % 2 == 0 ? "c" : "d"), tree.At(i % 2 == 0 ? "d" : "c"));
            EXPECT_TRUE(number != 0 || moved->hasChanged());
        }
    };
    std::thread threads[] = {std::thread(work, 0), std::thread(work, 1), std::thread(work, 2)};
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace Tolvex
