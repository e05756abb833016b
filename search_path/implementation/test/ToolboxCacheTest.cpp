#include "PathWorld.h"

#include "foundation/observers/FileFolderChangedEvent.h"
#include "foundation/storage/FileReplacement.h"
#include "path_utilities/PathText.h"
#include "path_utilities/ToolboxCacheFile.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace PathManagement {
namespace {

std::string WriteCache(const PathWorld& world, std::string_view root) {
    std::ostringstream text;
    world.factory.WriteToolboxCache(text, PathWorld::At(root));
    return text.str();
}

void LoadCache(PathWorld& world, std::string_view root, const std::string& text) {
    std::istringstream stream(text);
    world.factory.LoadToolboxCache(stream, PathWorld::At(root), world.storage->GetClock().Now());
}

TEST(ToolboxCache, IsWrittenByteForByte) {
    PathWorld world({"/root/lib/b.kx", "/root/lib/A.kxa", "/root/lib/c", "/root/lib/private/p.kxp",
                     "/root/lib/+pkg/x.kx", "/root/lib/+pkg/@cls/", "/root/lib/@cls/@udd/private/u.kx",
                     "/root/lib/resources/m.xml", "/root/another/", "/root/gr\u00f6\u00dfe & <co>/\xff.kx",
                     "/elsewhere/e.kx", "/root/at root.kx"});
    PathEntryVector entries;
    for (const auto* folder :
         {"/root/lib", "/root/another", "/root/gr\u00f6\u00dfe & <co>", "/elsewhere", "/root", "/root/lib/private"})
        entries.push_back(world.Entry(folder));
    const std::string text = WriteCache(world, "/root");
    const std::size_t lineEnd = text.find('\n');
    EXPECT_TRUE(std::regex_match(
        text.substr(0, lineEnd),
        std::regex("<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"(Mon|Tue|Wed|Thu|Fri|Sat|Sun) "
                   "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) \\d\\d \\d\\d:\\d\\d:\\d\\d \\d{4}\">")));
    EXPECT_EQ(text.substr(lineEnd + 1), " <D name=\"another\">\n"
                                        " </D>\n"
                                        " <D name=\"gr\u00f6\u00dfe & <co>\">\n"
                                        "  <C name=\"\xff.kx\"/>\n"
                                        " </D>\n"
                                        " <D name=\"lib\">\n"
                                        "  <D name=\"lib/+pkg\">\n"
                                        "   <D name=\"lib/+pkg/@cls\">\n"
                                        "   </D>\n"
                                        "   <C name=\"x.kx\"/>\n"
                                        "  </D>\n"
                                        "  <D name=\"lib/@cls\">\n"
                                        "   <D name=\"lib/@cls/@udd\">\n"
                                        "    <D name=\"lib/@cls/@udd/private\">\n"
                                        "     <C name=\"u.kx\"/>\n"
                                        "    </D>\n"
                                        "   </D>\n"
                                        "  </D>\n"
                                        "  <D name=\"lib/private\">\n"
                                        "   <C name=\"p.kxp\"/>\n"
                                        "  </D>\n"
                                        "  <D name=\"lib/resources\">\n"
                                        "   <U name=\"m.xml\"/>\n"
                                        "  </D>\n"
                                        "  <N name=\"A.kxa\"/>\n"
                                        "  <C name=\"b.kx\"/>\n"
                                        "  <U name=\"c\"/>\n"
                                        " </D>\n"
                                        "</Harrowfen>\n");
}

/// Main folders "m0", "m1", ... with special folders nested at random in them.
std::vector<std::string> AnyPaths() {
    const std::vector<std::string> folders{"+p", "+Q", "@c", "@d", "private", "resources", "plain", "m & <x>"};
    const std::vector<std::string> files{"a.kx", "A.kx", "a.kxp", "b.kxa",     "two\nlines.kx",
                                         "\xfe", ".x",   "",      "\u00c5.txt"};
    std::vector<std::string> paths;
    for (int main = *rc::gen::inRange(1, 5); main > 0; --main)
        for (int path = *rc::gen::inRange(1, 12); path > 0; --path) {
            std::string text = "/root/m" + std::to_string(main);
            for (int depth = *rc::gen::inRange(0, 4); depth > 0; --depth)
                text += "/" + *rc::gen::elementOf(folders);
            paths.push_back(text + "/" + *rc::gen::elementOf(files));
        }
    return paths;
}

RC_GTEST_PROP(ToolboxCache, GivesBackWhatTheDiskGave, ()) {
    const auto paths = AnyPaths();
    PathWorld first(std::vector<std::string>{"/root/"});
    for (const std::string& path : paths)
        try {
            first.storage->Add(path);
        } catch (const std::invalid_argument&) {
            // The same file again, or a file where a folder is.
        }
    first.storage->GetClock().Advance(std::chrono::seconds(10));
    PathEntryVector entries;
    for (int main = 1; main < 5; ++main)
        if (first.storage->takeChangeMark(PathWorld::At("/root/m" + std::to_string(main))).present)
            entries.push_back(first.Entry("/root/m" + std::to_string(main)));
    const std::string text = WriteCache(first, "/root");

    PathWorld second(first.storage);
    LoadCache(second, "/root", text);
    first.TakeListings();
    const std::size_t marks = first.storage->GetMarkCount();
    for (const auto& entry : entries) {
        const auto loaded = second.factory.CreatePathEntry(entry->GetIRI(), second.monitor);
        RC_ASSERT(Draw(*loaded) == Draw(*entry));
        RC_ASSERT(second.factory.GetEntryState(*loaded).source == PathEntrySource::cacheFile);
    }
    RC_ASSERT(first.TakeListings() == 0u);
    RC_ASSERT(first.storage->GetMarkCount() == marks);
    RC_ASSERT(WriteCache(second, "/root").substr(text.find('\n')) == text.substr(text.find('\n')));
}

TEST(ToolboxCache, AFolderThatChangedSinceIsOutOfDateAtTheFirstLook) {
    PathWorld first({"/root/same/s.kx", "/root/grown/g.kx", "/root/gone/x.kx", "/root/deep/+p/@c/d.kx"});
    PathEntryVector kept;
    for (const auto* folder : {"/root/same", "/root/grown", "/root/gone", "/root/deep"})
        kept.push_back(first.Entry(folder));
    first.storage->GetClock().Advance(std::chrono::seconds(10));
    const std::string text = WriteCache(first, "/root");
    const Tolvex::FileTime written = first.storage->GetClock().Now();
    first.storage->Add("/root/grown/new.kx");
    first.storage->Add("/root/deep/+p/@c/new.kx");
    first.storage->Remove("/root/gone");
    first.storage->GetClock().Advance(std::chrono::seconds(10));

    PathWorld second(first.storage);
    std::istringstream stream(text);
    second.factory.LoadToolboxCache(stream, PathWorld::At("/root"), written);
    const std::vector<std::pair<std::string_view, bool>> expected{
        {"/root/same", false}, {"/root/grown", true}, {"/root/gone", true}, {"/root/deep", true}};
    PathEntryVector keptNow;
    for (const auto& [folder, changed] : expected) {
        const auto entry = second.Entry(folder);
        EXPECT_EQ(entry->IsOutOfDate(), changed) << folder;
        const auto updated = keptNow.emplace_back(entry->GetUpdatedPathEntry(second.factory, second.monitor));
        EXPECT_EQ(updated == entry, !changed) << folder;
        EXPECT_EQ(second.factory.GetEntryState(*updated).source,
                  changed ? PathEntrySource::disk : PathEntrySource::cacheFile);
        const auto fresh = PathWorld(first.storage).Entry(folder);
        EXPECT_EQ(Draw(*updated), Draw(*fresh)) << folder;
    }
    EXPECT_NE(WriteCache(second, "/root").find("new.kx"), std::string::npos);
}

TEST(ToolboxCache, AnEntryIsTrustedUnseenTheFirstTimeOnly) {
    const auto load = [](PathWorld& first) {
        const auto kept = first.Entry("/root/m");
        first.storage->GetClock().Advance(std::chrono::seconds(10));
        auto second = std::make_unique<PathWorld>(first.storage);
        LoadCache(*second, "/root", WriteCache(first, "/root"));
        first.storage->GetClock().Advance(std::chrono::seconds(10));
        return second;
    };
    const UniformFolderMonitor unwatched(FolderMonitoringLevel::none);
    const auto at = PathWorld::At("/root/m");
    PathWorld first({"/root/m/a.kx", "/root/m/+p/old.kx"});
    const auto asked = load(first);
    static_cast<void>(asked->factory.CreatePathEntry(at, unwatched));
    asked->storage->Add("/root/m/b.kx");
    EXPECT_EQ(Names(*asked->factory.CreatePathEntry(at, unwatched)->GetPathItems()), "a.kx b.kx");

    const auto marked = load(first);
    const auto local = Tolvex::createLocalEventMgr();
    local->Publish(Tolvex::FileFolderChangedEvent(at));
    local->Deliver();
    const auto updated = marked->factory.CreatePathEntry(at, unwatched);
    EXPECT_EQ(marked->factory.GetEntryState(*updated).source, PathEntrySource::disk) << "marked before its first use";
}

TEST(ToolboxCache, WhatLiesInAReplacedFolderIsListedAgain) {
    PathWorld first({"/root/m/a.kx", "/root/m/+p/old.kx", "/root/m2/a.kx", "/root/m2/+p/older.kx"});
    const auto kept = first.Entry("/root/m");
    first.storage->GetClock().Advance(std::chrono::seconds(10));
    const std::string text = WriteCache(first, "/root");
    const Tolvex::FileTime written = first.storage->GetClock().Now();
    first.storage->GetClock().Advance(std::chrono::seconds(10));
    first.storage->Rename("/root/m", "/root/away");
    first.storage->Rename("/root/m2", "/root/m");
    PathWorld second(first.storage);
    std::istringstream stream(text);
    second.factory.LoadToolboxCache(stream, PathWorld::At("/root"), written);
    const auto entry = second.Entry("/root/m")->GetUpdatedPathEntry(second.factory, second.monitor);
    EXPECT_EQ(Names(*entry->GetPackageEntries()->front()->GetPathItems()), "older.kx");
}

TEST(ToolboxCache, AFileOfAMomentStillToComeProvesNothing) {
    PathWorld world({"/root/m/a.kx"});
    std::istringstream stream(
        "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"\"> <D name=\"m\"></D></Harrowfen>");
    world.factory.LoadToolboxCache(stream, PathWorld::At("/root"),
                                   Tolvex::GetSystemClock().Now() + std::chrono::hours(1));
    const auto entry = world.Entry("/root/m");
    EXPECT_EQ(world.factory.GetEntryState(*entry).source, PathEntrySource::cacheFile);
    const auto updated = entry->GetUpdatedPathEntry(world.factory, world.monitor);
    EXPECT_EQ(Draw(*updated), Draw(*PathWorld(world.storage).Entry("/root/m")));
    EXPECT_EQ(world.factory.GetEntryState(*updated).source, PathEntrySource::disk);
}

TEST(ToolboxCache, WritingListsAgainWhatNobodyLooksAt) {
    PathWorld first({"/root/m/a.kx"});
    const auto kept = first.Entry("/root/m");
    const std::string text = WriteCache(first, "/root");
    first.storage->Add("/root/m/b.kx");
    first.storage->GetClock().Advance(std::chrono::seconds(10));
    PathWorld second(first.storage);
    LoadCache(second, "/root", text); // as if the file were from now: nothing tells that it is older
    EXPECT_NE(WriteCache(second, "/root").find("b.kx"), std::string::npos);
}

TEST(ToolboxCache, AStreamGetsNamesAsTheyAreAndItsFailuresAreTold) {
    PathWorld world({"/r/m/a\"b&<.kx"});
    const auto entry = world.Entry("/r/m");
    std::ostringstream out;
    world.factory.WriteToolboxCache(out, PathWorld::At("/r"));
    EXPECT_NE(out.str().find("name=\"a\"b&<.kx\"/>"), std::string::npos) << out.str();
    for (const auto thrown : {std::ios::goodbit, std::ios::failbit | std::ios::badbit}) {
        struct NothingFits : std::streambuf {
        } nothingFits;
        std::ostream broken(&nothingFits);
        broken.exceptions(thrown);
        EXPECT_THROW(world.factory.WriteToolboxCache(broken, PathWorld::At("/r")), UnableToSaveToolboxCacheException);
    }
}

TEST(ToolboxCache, NothingOfARefusedFileIsUsed) {
    PathWorld world({"/root/m/a.kx"});
    EXPECT_THROW(LoadCache(world, "/root",
                           "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"\"><D name=\"m\"><C "
                           "name=\"ghost.kx\"/></D><D name=\"n"),
                 ToolboxCacheWrongFormatException);
    EXPECT_EQ(world.factory.GetLiveEntry(PathWorld::At("/root/m")), nullptr);
    EXPECT_EQ(Names(*world.Entry("/root/m")->GetPathItems()), "a.kx");
    EXPECT_THROW(LoadCache(world, "/nowhere", "x"), Tolvex::StorageError);
}

TEST(ToolboxCache, RecordsThatCannotStandWhereTheySayAreLeftOut) {
    PathWorld world({"/root/m/a.kx", "/other/"});
    std::string text = "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"\">";
    for (const auto* name : {"../other", "", "/other", "m/../../other", "m/", "."})
        text += "<D name=\"" + std::string(name) + "\"><C name=\"ghost.kx\"/></D>";
    std::string deep = "m";
    for (int i = 0; i < 60'000; ++i)
        deep += "/private";
    text += "<D name=\"" + deep + "\"></D>";
    const auto files = [](std::initializer_list<std::string> names) {
        std::string elements = "<C name=\"a.kx\"/>";
        for (const std::string& name : names)
            elements += "<C name=\"" + name + "\"/>";
        return elements + "<C name=\"z.kx\"/>";
    };
    text += "<D name=\"m\"><D name=\"m/private\">" + files({"sub/ghost.kx", "/"}) +
            "<D name=\"m/private/private\"></D></D><D name=\"m/resources\">" + files({"", ".", ".."}) +
            "</D><D name=\"n/+p\"></D><D name=\"m/+p/+q\"></D><D name=\"m/plain\"></D><D name=\"m/\"></D>" +
            files({std::string(1, '\0'), "gho" + std::string(1, '\0') + "st.kx", std::string(70'000, 'x')}) +
            "</D></Harrowfen>";
    LoadCache(world, "/root", text);
    EXPECT_EQ(Draw(*world.Entry("/root/m")), "0 /root/m [a.kx z.kx] (3 /root/m/private [a.kx z.kx]) "
                                             "(5 /root/m/resources [a.kx z.kx])");
    EXPECT_EQ(Names(*world.Entry("/other")->GetPathItems()), "");
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 3u) << "what was made for names outside died at once";
}

TEST(ToolboxCache, AFolderNamedTwiceIsKeptAsTheOneThatIsAlive) {
    PathWorld world({"/root/m/a.kx"});
    LoadCache(world, "/root",
              "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"\"><D name=\"m\">"
              "<D name=\"m/private\"><C name=\"old.kx\"/></D><D name=\"m/private\"><C name=\"new.kx\"/></D>"
              "</D></Harrowfen>");
    const auto entry = world.Entry("/root/m");
    EXPECT_EQ(Draw(*entry), "0 /root/m [] (3 /root/m/private [new.kx])");
    EXPECT_EQ(world.factory.GetLiveEntry(PathWorld::At("/root/m/private")), entry->GetPrivateEntry());
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 2u);
}

TEST(ToolboxCache, EntriesMayDieWhileOneIsWritten) {
    PathWorld world({"/root/m/+p/+q/a.kx", "/root/n/b.kx"});
    const auto kept = world.Entry("/root/n");
    std::atomic<bool> stop = false;
    std::thread owner([&] {
        while (!stop)
            world.Entry("/root/m").reset();
    });
    for (int writing = 0; writing < 300; ++writing)
        EXPECT_NE(WriteCache(world, "/root").find("b.kx"), std::string::npos);
    stop = true;
    owner.join();
}

TEST(ToolboxCache, IsForgottenWhenDroppedOrReplaced) {
    PathWorld first({"/root/m/a.kx", "/root/n/b.kx"});
    const PathEntryVector kept{first.Entry("/root/m"), first.Entry("/root/n")};
    const std::string text = WriteCache(first, "/root");
    PathWorld world(first.storage);
    LoadCache(world, "/root", text);
    const std::weak_ptr<const IPathEntry> loaded = world.factory.GetLiveEntry(PathWorld::At("/root/m"));
    EXPECT_FALSE(loaded.expired()) << "kept though nobody uses it";
    world.storage->Add("/root/n/c.kx");
    world.storage->GetClock().Advance(std::chrono::seconds(5));
    const auto fromDisk = world.Entry("/root/n")->GetUpdatedPathEntry(world.factory, world.monitor);
    EXPECT_EQ(world.factory.GetEntryState(*fromDisk).source, PathEntrySource::disk);
    LoadCache(world, "/root", text);
    EXPECT_EQ(world.Entry("/root/n"), fromDisk) << "what the disk said goes before a cache file";
    world.factory.DropToolboxCache();
    EXPECT_TRUE(loaded.expired());
    EXPECT_EQ(world.factory.GetEntryState(*world.Entry("/root/m")).source, PathEntrySource::disk);
}

/// Real folders and a factory over them.
class ToolboxCacheOnDisk : public testing::Test {
protected:
    ToolboxCacheOnDisk() {
        std::filesystem::create_directories(root / "lib/+p");
        for (const auto* name : {"lib/a.kx", "lib/+p/b.kx"})
            std::ofstream(root / name).put('\n');
        entry = MakeEntry("lib");
    }
    ~ToolboxCacheOnDisk() override {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }

    static std::filesystem::path MakeFolder() {
        std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()) / "cache-XXXXXX";
        return ::mkdtemp(pattern.data());
    }
    [[nodiscard]] Tolvex::CanonicalAbsoluteIRI At(const std::string& folder) const {
        return {Tolvex::AbsoluteIRI("file", Tolvex::FromUtf8((root / folder).native())), {}};
    }
    std::shared_ptr<const IPathEntry> MakeEntry(const std::string& folder) {
        return factory.CreatePathEntry(At(folder), monitor);
    }
    [[nodiscard]] std::string ReadFile() const {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    /// Why saving fails; empty when it does not.
    std::string Save() {
        try {
            WriteToolboxPathCache(factory, At(""), file);
        } catch (const UnableToSaveToolboxCacheException& refusal) {
            return refusal.what();
        }
        return {};
    }
    [[nodiscard]] std::size_t CountFiles() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}));
    }

    std::filesystem::path root = MakeFolder();
    std::filesystem::path file = root / "cache.xml";
    UniformFolderMonitor monitor;
    PathEntryFactory factory{At(""), Tolvex::GetDiskStorageSystem(), TolvexPackages::GetPackageDescriptorFactory(),
                             Tolvex::createLocalEventMgr("cache test"),
                             Tolvex::GetFileFolderObserverFactory(Tolvex::GetDiskStorageSystem())};
    std::shared_ptr<const IPathEntry> entry;
};

TEST_F(ToolboxCacheOnDisk, IsReplacedWholeOrNotAtAllWhereverTheDiskIsFull) {
    ASSERT_EQ(Save(), "");
    const std::string old = ReadFile();
    const std::size_t files = CountFiles();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    std::ofstream(root / "lib/later.kx").put('\n');
    const std::size_t newSize = old.size() + std::string("  <C name=\"later.kx\"/>\n").size();
    for (std::size_t room = 0; room <= newSize; ++room) {
        const rlimit limit{room, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const std::string refusal = Save();
        ::setrlimit(RLIMIT_FSIZE, &before);
        ASSERT_EQ(refusal.empty(), room == newSize) << room << " " << refusal;
        ASSERT_EQ(ReadFile() == old, room != newSize) << room;
        if (!refusal.empty()) {
            ASSERT_NE(refusal.find(file.native()), std::string::npos) << refusal;
        }
        ASSERT_EQ(CountFiles(), files) << "nothing is left behind";
    }
    EXPECT_NE(ReadFile().find("later.kx"), std::string::npos);
}

TEST_F(ToolboxCacheOnDisk, ANameThatTheFormatCannotCarryLeavesTheOldFile) {
    ASSERT_EQ(Save(), "");
    const std::string old = ReadFile();
    std::ofstream(root / "lib/say \"hi\".kx").put('\n');
    const std::string refusal = Save();
    EXPECT_NE(refusal.find((root / "lib").native()), std::string::npos) << refusal;
    EXPECT_NE(refusal.find("double quote"), std::string::npos) << refusal;
    EXPECT_EQ(ReadFile(), old);
}

TEST_F(ToolboxCacheOnDisk, RefusesPlacesWhereNoFileCanBe) {
    ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
    for (const auto* place : {"missing/cache.xml", "lib", "lib/a.kx/cache.xml", "pipe"}) {
        file = root / place;
        EXPECT_NE(Save().find(file.native()), std::string::npos);
    }
    EXPECT_TRUE(std::filesystem::is_fifo(root / "pipe"));
    file = root / "absent.xml";
    EXPECT_THROW(LoadToolboxPathCache(factory, At(""), file), ToolboxCacheWrongFormatException);
    file = root / "lib";
    EXPECT_THROW(LoadToolboxPathCache(factory, At(""), file), ToolboxCacheWrongFormatException);
}

TEST_F(ToolboxCacheOnDisk, TwoWritersAndAReaderMeetNoHalfFile) {
    ASSERT_EQ(Save(), "");
    std::atomic<bool> stop = false;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 2; ++writer)
        writers.emplace_back([&] {
            while (!stop)
                EXPECT_EQ(Save(), "");
        });
    for (int reading = 0; reading < 200; ++reading)
        EXPECT_NO_THROW(LoadToolboxPathCache(factory, At(""), file));
    stop = true;
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(CountFiles(), 2u) << "the folder and the cache file";
}

TEST_F(ToolboxCacheOnDisk, IsSavedBesideWhatKilledProcessesLeftAndBehindALinkToNothing) {
    for (int number = 0; number < 2000; ++number)
        std::ofstream(root / (".cache.xml." + std::to_string(::getpid()) + "." + std::to_string(number) + ".new"));
    ASSERT_EQ(Save(), "");
    std::filesystem::create_symlink("not there yet", root / "link");
    file = root / "link";
    ASSERT_EQ(Save(), "");
    EXPECT_TRUE(std::filesystem::is_symlink(root / "link"));
    EXPECT_TRUE(std::filesystem::is_regular_file(root / "not there yet"));
}

TEST_F(ToolboxCacheOnDisk, KeepsLinksRightsAndTheMomentOfWriting) {
    const auto real = root / "real.xml";
    std::ofstream(real).put('\n');
    std::filesystem::permissions(real, std::filesystem::perms(0640));
    std::filesystem::create_symlink("real.xml", file);
    const auto before = std::filesystem::file_time_type::clock::now() - std::chrono::milliseconds(20);
    ASSERT_EQ(Save(), "");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(std::filesystem::status(real).permissions(), std::filesystem::perms(0640));
    EXPECT_GE(std::filesystem::last_write_time(real), before);
    entry.reset();
    LoadToolboxPathCache(factory, At(""), file);
    EXPECT_EQ(Draw(*MakeEntry("lib")), "0 " + (root / "lib").native() + " [a.kx] (1 p [b.kx])");
}

/// Whoever stamps the folders says what the time is, not this machine's clock, which may go wrong.
TEST_F(ToolboxCacheOnDisk, BearsTheTimeOfTheFoldersFileSystem) {
    struct WrongClock final : Tolvex::IClock {
        explicit WrongClock(std::chrono::hours fault) : fault(fault) {}
        [[nodiscard]] Tolvex::FileTime Now() const override { return Tolvex::GetSystemClock().Now() + fault; }
        const std::chrono::hours fault;
    };
    using namespace std::chrono_literals;
    const auto now = std::filesystem::file_time_type::clock::now();
    const auto findAge = [&](std::chrono::hours fault, const Tolvex::AbsoluteIRI& cacheRoot) {
        WriteToolboxPathCache(factory, cacheRoot, file, WrongClock(fault));
        return std::chrono::round<std::chrono::hours>(now - std::filesystem::last_write_time(file));
    };
    EXPECT_EQ(findAge(-5h, At("")), 0h);
    EXPECT_EQ(findAge(5h, At("")), 0h);
    const Tolvex::AbsoluteIRI elsewhere("file", u"/proc");
    EXPECT_EQ(findAge(-5h, elsewhere), 5h) << "the smaller of both clocks";
    EXPECT_EQ(findAge(5h, elsewhere), 0h);
}

} // namespace
} // namespace PathManagement
