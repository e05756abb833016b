#include "PathWorld.h"

#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace PathManagement {
namespace {

using enum PathEntryType;

std::vector<std::string> Problems(const Tolvex::Notification& notification) {
    std::vector<std::string> texts;
    notification.ForEach([&](const auto& entry) {
        texts.push_back(entry.message.key + " " + Tolvex::ToUtf8(entry.message.arguments.at(0)));
        return false;
    });
    return texts;
}

TEST(PathEntryFactory, SortsChildFoldersByWhatTheirParentMayHold) {
    struct {
        std::string_view folder;
        std::string_view drawing;
    } const cases[] = {
        {"/m", "0 /m [] (1 p [] (1 p.q [a.kx]) (2 p.c [f.kx]) (3 p/private [h.kx]))"
               " (2 c [] (4 c.d [] (3 c.d/private [i.kx])) (3 c/private [j.kx]) (5 c/resources [k.xml]))"
               " (3 /m/private [l.kx]) (5 /m/resources [m.xml])"},
        {"/m/+p/+q", "1 p.q [a.kx]"},
        {"/m/@c/@d", "4 c.d [] (3 c.d/private [i.kx])"},
        {"/m/private", "3 /m/private [l.kx]"},
        {"/m/+", "0 /m/+ [n.kx]"},
        {"/m/plain", "0 /m/plain [o.kx]"},
    };
    PathWorld world({"/m/+p/+q/a.kx", "/m/+p/@c/f.kx", "/m/+p/private/h.kx", "/m/@c/@d/private/i.kx",
                     "/m/@c/private/j.kx", "/m/@c/resources/k.xml", "/m/private/l.kx", "/m/resources/m.xml",
                     "/m/+/n.kx", "/m/plain/o.kx",
                     // what the parent's kind rules out: not listed, not searched
                     "/m/@c/+p/1.kx", "/m/@c/@d/@e/2.kx", "/m/@c/@d/resources/3.kx", "/m/private/private/4.kx",
                     "/m/private/+p/5.kx", "/m/resources/private/6.kx", "/m/Private/7.kx", "/m/@/8.kx"});
    for (const auto& [folder, drawing] : cases)
        EXPECT_EQ(Draw(*world.Entry(folder)), drawing);
}

TEST(PathEntryFactory, TheLastPrivateAndResourcesEntriesCount) {
    PathWorld world({"/m/private/a.kx", "/m/resources/b.xml", "/n/private/c.kx", "/n/resources/d.xml"});
    PathEntryChildren children;
    for (const auto* folder : {"/m/private", "/m/resources", "/n/private", "/n/resources"})
        PathEntryFactory::PushChildEntryToCurrentPathEntry(children, world.Entry(folder));
    EXPECT_EQ(Where({children.privateEntry, children.resourcesEntry}), "/n/private /n/resources");
}

TEST(PathEntryFactory, EndsChainsOfLinksThatLeadBackUp) {
    PathWorld world({"/m/a.kx", "/m/+up -> /m", "/m/+side -> /n", "/n/b.kx", "/n/+self -> /n", "/n/+back -> /m",
                     "/m/@gone -> /nowhere", "/m/+file -> /m/a.kx", "/m/x.kx -> /n/b.kx",
                     "/m/+deep/+deeper -> /m/+deep"});
    EXPECT_EQ(Draw(*world.Entry("/m")), "0 /m [+file a.kx x.kx] (1 deep []) (1 side [b.kx])");
    // A folder asked for by itself is not cut by what lies above it, whatever was built before.
    EXPECT_EQ(Draw(*world.Entry("/m/+side")), "1 side [b.kx] (1 side.back [+file a.kx x.kx] (1 side.back.deep []))");
    EXPECT_EQ(Draw(*world.Entry("/m")), "0 /m [+file a.kx x.kx] (1 deep []) (1 side [b.kx])");
}

TEST(PathEntryFactory, AFolderCutFromAboveIsWholeWhenAskedForByItself) {
    const std::vector<std::string> paths{"/box/f.kx", "/box/+p/g.kx", "/box/+p/@c -> /box"};
    const std::string_view cut = "0 /box [f.kx] (1 p [g.kx])";
    const std::string_view whole = "1 p [g.kx] (2 p.c [f.kx])";
    for (const bool outerFirst : {false, true}) {
        PathWorld world(paths);
        const auto first = world.Entry(outerFirst ? "/box" : "/box/+p");
        const auto second = world.Entry(outerFirst ? "/box/+p" : "/box");
        EXPECT_EQ(Draw(*first), outerFirst ? cut : whole);
        EXPECT_EQ(Draw(*second), outerFirst ? whole : cut);
        EXPECT_EQ(Draw(*world.Entry("/box")), cut);
        EXPECT_EQ(Draw(*world.Entry("/box/+p")), whole);
    }
}

TEST(PathEntryFactory, LeavesOutWhatIsNestedBeyondReason) {
    std::string path = "/m";
    for (int i = 0; i < 300; ++i)
        path += "/+p";
    PathWorld world({path + "/deep.kx"});
    std::size_t count = 0;
    world.Entry("/m")->ForEachEntry(SearchScope::All(), [&](const auto&) { return ++count, false; });
    EXPECT_EQ(count, 256u);
}

TEST(PathEntryFactory, ReportsRequestedFoldersThatCannotBeReadInTheirOrder) {
    PathWorld world({"/a/a.kx", "/b/b.kx", "/c/c.kx", "/d/d.kx", "/link -> /a", "/e/+p/e.kx", "/e/+q/f.kx"});
    world.storage->DenyAccess("/b");
    world.storage->FailListing("/c");
    world.storage->FailListing("/e/+p");
    const std::vector<Tolvex::AbsoluteIRI> wanted{
        PathWorld::At("/d"),      PathWorld::At("/missing"), PathWorld::At("/b"), PathWorld::At("/link"),
        PathWorld::At("/a/a.kx"), PathWorld::At("/c"),       PathWorld::At("/a"), PathWorld::At("/e")};
    Tolvex::Notification problems;
    const PathEntryVector entries = world.factory.CreatePathEntries(wanted, world.monitor, problems);
    EXPECT_EQ(Where(entries), "/d - - /a - - /a /e");
    EXPECT_EQ(entries[3], entries[6]) << "one folder under two names is one entry";
    EXPECT_EQ(Problems(problems),
              (std::vector<std::string>{"nameNonexistentOrNotADirectory /missing", "directoryPermissionDenied /b",
                                        "nameNonexistentOrNotADirectory /a/a.kx", "directoryAccessFailure /c"}));
    EXPECT_EQ(Draw(*entries[7]), "0 /e [] (1 p []) (1 q [f.kx])") << "a failing child costs its own entry only";
}

TEST(PathEntryFactory, HandsOutLiveEntriesUntilTheirFolderChanges) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx", "/m/+q/c.kx", "/n/d.kx"});
    const auto first = world.Entry("/m");
    EXPECT_EQ(world.TakeListings(), 3u);
    EXPECT_EQ(world.Entry("/m"), first);
    EXPECT_EQ(world.Entry("/m/+p"), first->GetPackageEntries()->front());
    EXPECT_EQ(world.TakeListings(), 0u);

    world.storage->Add("/m/+p/new.kx");
    world.storage->GetClock().Advance(std::chrono::seconds(1));
    EXPECT_TRUE(first->IsOutOfDate());
    const auto second = first->GetUpdatedPathEntry(world.factory, world.monitor);
    EXPECT_EQ(Draw(*second), "0 /m [a.kx] (1 p [b.kx new.kx]) (1 q [c.kx])");
    EXPECT_EQ(second->GetPackageEntries()->at(1), first->GetPackageEntries()->at(1));
    EXPECT_EQ(world.TakeListings(), 2u) << "the folder itself and the child that changed";
    EXPECT_EQ(world.factory.GetLiveEntry(PathWorld::At("/m")), second);
    EXPECT_EQ(world.factory.GetEntryState(*second).source, PathEntrySource::disk);
    EXPECT_EQ(world.factory.GetEntryState(*first).source, PathEntrySource::unknown);
}

TEST(PathEntryFactory, LooksOnceAtAFolderThatNobodyWatchesBeforeHandingItOut) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx"});
    const UniformFolderMonitor unwatched(FolderMonitoringLevel::none);
    const auto first = world.factory.CreatePathEntry(PathWorld::At("/m"), unwatched);
    EXPECT_EQ(world.factory.CreatePathEntry(PathWorld::At("/m"), unwatched), first);
    world.storage->Add("/m/+p/new.kx");
    world.storage->GetClock().Advance(std::chrono::seconds(1));
    EXPECT_FALSE(first->IsOutOfDate()) << "nobody looks";
    const auto second = world.factory.CreatePathEntry(PathWorld::At("/m"), world.monitor);
    EXPECT_EQ(Draw(*second), "0 /m [a.kx] (1 p [b.kx new.kx])");
    world.storage->Add("/m/c.kx");
    EXPECT_TRUE(second->IsOutOfDate()) << "watched as the monitor that asked says";
    // As handed out by somebody who watches, though it was made for somebody who does not.
    world.storage->GetClock().Advance(std::chrono::seconds(1));
    const auto third = world.factory.CreatePathEntry(PathWorld::At("/m"), unwatched);
    EXPECT_EQ(world.factory.CreatePathEntry(PathWorld::At("/m"), world.monitor), third);
    world.storage->Add("/m/d.kx");
    EXPECT_TRUE(third->IsOutOfDate());
}

TEST(PathEntryFactory, TheEndOfAnOldEntryDoesNotEvictItsSuccessor) {
    PathWorld world({"/m/a.kx"});
    auto old = world.Entry("/m");
    world.storage->Add("/m/b.kx");
    world.storage->GetClock().Advance(std::chrono::seconds(1));
    const auto successor = world.Entry("/m");
    ASSERT_NE(old, successor);
    old.reset();
    EXPECT_EQ(world.Entry("/m"), successor);
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 1u);
}

TEST(PathEntryFactory, AChangeWithinOneTickIsNotTakenForNone) {
    PathWorld world({"/m/a.kx"});
    world.storage->Add("/m/b.kx");
    const auto before = world.Entry("/m"); // listed within the tick of the change
    world.storage->Add("/m/c.kx");         // same stamp
    EXPECT_TRUE(before->IsOutOfDate());
    EXPECT_EQ(Names(*world.Entry("/m")->GetPathItems()), "a.kx b.kx c.kx");
}

TEST(PathEntryFactory, AFolderThatVanishesBecomesEmptyAndComesBack) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx", "/top/x.kx"});
    auto entry = world.Entry("/m");
    const auto refresh = [&] {
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        EXPECT_TRUE(entry->IsOutOfDate());
        entry = entry->GetUpdatedPathEntry(world.factory, world.monitor);
        return Draw(*entry);
    };
    world.storage->Remove("/m");
    EXPECT_EQ(refresh(), "0 /m []");
    EXPECT_FALSE(entry->IsOutOfDate());
    EXPECT_THROW(
        static_cast<void>(world.factory.CreatePathEntry(Tolvex::AbsoluteIRI(PathWorld::At("/gone")), world.monitor)),
        Tolvex::StorageError);
    Tolvex::Notification problems;
    const Tolvex::AbsoluteIRI wanted = PathWorld::At("/m");
    EXPECT_EQ(Where(world.factory.CreatePathEntries({&wanted, 1}, world.monitor, problems)), "-")
        << "an empty entry that is kept does not make a missing folder acceptable";
    EXPECT_EQ(world.factory.CreatePathEntry(wanted, world.monitor), entry) << "but it is the entry of that folder";
    world.storage->Add("/m/c.kx");
    EXPECT_EQ(refresh(), "0 /m [c.kx]");
    world.storage->DenyAccess("/m");
    world.storage->Add("/m/d.kx");
    EXPECT_EQ(refresh(), "0 /m []");
}

TEST(PathEntryFactory, WritesOnlyTheMainFoldersThatAreThere) {
    PathWorld world({"/r/gone/a.kx", "/r/m/+pkg/b.kx", "/r/unwatched/c.kx"});
    const PathEntryVector kept{world.Entry("/r/gone"), world.Entry("/r/m/+pkg"), world.Entry("/r/never there")};
    const UniformFolderMonitor nobody(FolderMonitoringLevel::none);
    const auto unwatched = world.factory.CreatePathEntry(PathWorld::At("/r/unwatched"), nobody);
    world.storage->Remove("/r/gone");
    std::size_t ends = 0;
    const auto connection = world.events->Subscribe<PathEntryWillBeDestroyedEvent>([&](const auto& event) {
        EXPECT_EQ(event.GetCanonicalIRI(), unwatched->GetIRI());
        EXPECT_NE(&event.GetEntry(), unwatched.get());
        ++ends;
    });
    std::ostringstream text;
    world.factory.WriteToolboxCache(text, PathWorld::At("/r"));
    EXPECT_EQ(text.str().substr(text.str().find('\n')),
              "\n <D name=\"unwatched\">\n  <C name=\"c.kx\"/>\n </D>\n</Harrowfen>\n");
    EXPECT_EQ(ends, 1u) << "of what was listed anew, to be written";
    EXPECT_EQ(world.factory.GetLiveEntry(PathWorld::At("/r/unwatched")), unwatched);
}

TEST(PathEntryFactory, AChildThatVanishesBetweenListingAndOpeningIsLeftOut) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx", "/m/+q/c.kx"});
    world.storage->VanishWhenOpened("/m/+p");
    EXPECT_EQ(Draw(*world.Entry("/m")), "0 /m [a.kx] (1 q [c.kx])");
}

TEST(PathEntryFactory, OneSlowFolderHoldsUpNobodyElse) {
    PathWorld world({"/slow/a.kx", "/fast/b.kx"});
    world.storage->HoldListing("/slow");
    std::thread slow([&] { EXPECT_EQ(Draw(*world.Entry("/slow")), "0 /slow [a.kx]"); });
    EXPECT_EQ(Draw(*world.Entry("/fast")), "0 /fast [b.kx]"); // would never return if a lock were held
    EXPECT_EQ(world.factory.GetLiveEntry(PathWorld::At("/slow")), nullptr);
    world.storage->ReleaseListings();
    slow.join();
}

TEST(PathEntryFactory, TheScheduleLeavesNoTraceInTheResult) {
    std::vector<std::string> paths;
    std::vector<Tolvex::AbsoluteIRI> wanted;
    for (int i = 0; i < 200; ++i) {
        const std::string folder = "/m" + std::to_string(i % 150);
        paths.push_back(folder + "/f" + std::to_string(i) + ".kx");
        if (i < 150)
            paths.insert(paths.end(), {folder + "/+p/g.kx", folder + "/@c/h.kx"});
        wanted.push_back(PathWorld::At(folder));
    }
    const auto run = [&] {
        PathWorld world(paths);
        Tolvex::Notification problems;
        const auto entries = world.factory.CreatePathEntries(wanted, world.monitor, problems);
        std::string text;
        for (const auto& entry : entries)
            text += Draw(*entry) + "\n";
        for (std::size_t i = 150; i < 200; ++i)
            EXPECT_EQ(entries[i], entries[i - 150]);
        EXPECT_EQ(world.factory.GetCounters().entriesKept, 450u);
        return text;
    };
    const std::string once = run();
    for (int round = 0; round < 10; ++round)
        EXPECT_EQ(run(), once);
}

using PathEntryFactoryDeathTest = testing::Test;

TEST(PathEntryFactoryDeathTest, UnexpectedTypesEndTheProcess) {
    EXPECT_DEATH(
        static_cast<void>(PathEntryFactory::GetValidChildEntryTypesForEntryType(static_cast<PathEntryType>(6))),
        "Received unexpected PathEntry Type.*PathEntryFactory");
    PathWorld world({"/m/a.kx"});
    PathEntryChildren children;
    EXPECT_DEATH(PathEntryFactory::PushChildEntryToCurrentPathEntry(children, world.Entry("/m")),
                 "Unexpected PathEntry Type\\..*PathEntryFactory");
}

} // namespace
} // namespace PathManagement
