#include "../src/linux/FileSystemRules.h"
#include "TemporaryTree.h"
#include "foundation/storage/MemoryStorage.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tolvex {
namespace {

namespace fs = std::filesystem;
using Names = std::multiset<std::string>;

class DiskStorage : public testing::Test {
protected:
    void MakeFile(const std::string& name) const { std::ofstream(tree.GetRoot() / name).flush(); }
    void MakeFolder(const std::string& name) const { fs::create_directories(tree.GetRoot() / name); }
    void MakeLink(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, tree.GetRoot() / name);
    }
    [[nodiscard]] std::unique_ptr<Folder> Open(const std::string& name = {}) const {
        return disk->openFolder(tree.GetIRI(name));
    }
    [[nodiscard]] std::optional<StorageFailure> FailureOf(const std::string& name) const {
        return GetFailure([&] { return Open(name); });
    }
    /// What opening and canonicalising, which take different ways, both say.
    [[nodiscard]] AbsoluteIRI Canonical(const std::string& name) const {
        auto opened = Open(name)->getCanonicalLocation();
        EXPECT_EQ(disk->canonicalise(tree.GetIRI(name)), opened) << name;
        return opened;
    }
    [[nodiscard]] std::string Canonicalise(const std::string& name) const {
        return ToUtf8(disk->canonicalise(tree.GetIRI(name)).makePathRelativeTo(tree.GetIRI()).value_or(u"outside"));
    }

    TemporaryTree tree;
    StorageSystemReference disk = GetDiskStorageSystem();
};

TEST_F(DiskStorage, ListsEveryNameThatADiskCanHold) {
    const Names names{"a b",      "a&b<c>'\"",  "line\nbreak",  "e\xCC\x81",
                      "\xC3\xA9", "\xE9 latin", "\xED\xA0\x80", "\xF0\x9F\x98\x80",
                      ".hidden",  "trailing.",  "...",          "noextension",
                      "Case",     "case",       "a -> b",       std::string(255, 'n'),
                      "\\",       "100%20"};
    for (const auto& name : names)
        MakeFolder(name + "/in");
    Names listed;
    for (const auto& name : names)
        listed.insert(name + "/");
    const auto folder = Open();
    EXPECT_EQ(ListNames(*folder), listed);
    EXPECT_EQ(ListNames(*folder), listed) << "a second time";
    for (const auto& name : names) {
        const auto child = folder->openChild(FromUtf8(name));
        EXPECT_EQ(ListNames(*child), Names{"in/"}) << name;
        EXPECT_EQ(child->getCanonicalLocation(), tree.GetIRI().getChild(FromUtf8(name))) << name;
        const auto reread = AbsoluteIRI::fromString(child->getCanonicalLocation().toString());
        EXPECT_EQ(child->getChangeMark().inode, disk->takeChangeMark(*reread).inode) << name;
    }
}

TEST_F(DiskStorage, ListsMoreNamesThanOneCallReturns) {
    Names expected;
    for (int i = 0; i < 2500; ++i) {
        auto name = std::string(40, 'f') + std::to_string(i);
        MakeFile(name);
        expected.insert(std::move(name));
    }
    EXPECT_EQ(ListNames(*Open()), expected);
}

TEST_F(DiskStorage, LinksCountAsTheirTargetsAndOddThingsNotAtAll) {
    MakeFile("file");
    MakeFolder("folder/inner");
    MakeLink("tofile", "file");
    MakeLink("tofolder", "folder");
    MakeLink("dangling", "nothing");
    MakeLink("loop", "loop");
    MakeLink("throughfile", "file/x");
    MakeLink("todevice", "/dev/null");
    ASSERT_EQ(::mkfifo((tree.GetRoot() / "pipe").c_str(), 0600), 0);
    sockaddr_un address{AF_UNIX, {}};
    const auto socketPath = (tree.GetRoot() / "socket").native();
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(socket);

    const auto folder = Open();
    EXPECT_EQ(ListNames(*folder), (Names{"file", "tofile", "folder/", "tofolder/"}));
    EXPECT_EQ(folder->openChild(u"tofolder")->getCanonicalLocation(), tree.GetIRI("folder"));
    EXPECT_EQ(folder->openChild(u"tofolder")->openChild(u"inner")->getCanonicalLocation(), tree.GetIRI("folder/inner"));
    for (const auto* name : {u"file", u"tofile", u"pipe", u"socket", u"throughfile"})
        EXPECT_EQ(GetFailure([&] { return folder->openChild(name); }), StorageFailure::notAFolder) << ToUtf8(name);
    for (const auto* name : {u"loop", u"dangling", u"nothing"})
        EXPECT_EQ(GetFailure([&] { return folder->openChild(name); }), StorageFailure::missing) << ToUtf8(name);
    for (const auto& name : {ustring(u".."), ustring(u"."), ustring(), ustring(u"a/b"), ustring(u"a\0b", 3)})
        EXPECT_EQ(GetFailure([&] { return folder->openChild(name); }), StorageFailure::invalidLocation);
}

TEST_F(DiskStorage, FoldersThatVanishAreMissing) {
    MakeFolder("a/b");
    const auto parent = Open("a");
    EXPECT_EQ(ListNames(*parent), Names{"b/"});
    const auto child = parent->openChild(u"b");
    const auto before = child->getChangeMark();
    fs::remove(tree.GetRoot() / "a/b");
    EXPECT_EQ(GetFailure([&] { return parent->openChild(u"b"); }), StorageFailure::missing);
    FolderListing listing;
    EXPECT_EQ(GetFailure([&] { child->list(listing); }), StorageFailure::missing);
    EXPECT_FALSE(disk->takeChangeMark(tree.GetIRI("a/b")).present);
    MakeFolder("a/b");
    EXPECT_FALSE(before.ProvesUnchanged(disk->takeChangeMark(tree.GetIRI("a/b"))));
}

TEST_F(DiskStorage, ErrorsCarryTheFoldersMessage) {
    MakeFile("file");
    const auto longName = std::string(256, 'x');
    const std::tuple<AbsoluteIRI, StorageFailure, const char*> cases[] = {
        {tree.GetIRI("none"), StorageFailure::missing, "nameNonexistentOrNotADirectory"},
        {tree.GetIRI("file"), StorageFailure::notAFolder, "nameNonexistentOrNotADirectory"},
        {tree.GetIRI("file/x"), StorageFailure::notAFolder, "nameNonexistentOrNotADirectory"},
        {tree.GetIRI(longName), StorageFailure::invalidLocation, "invalidLocation"},
        {AbsoluteIRI("memory", u"/tmp"), StorageFailure::invalidLocation, "invalidLocation"},
        {AbsoluteIRI(), StorageFailure::invalidLocation, "invalidLocation"},
    };
    for (const auto& [location, failure, key] : cases) {
        try {
            static_cast<void>(disk->openFolder(location));
            ADD_FAILURE() << ToUtf8(location.toString());
        } catch (const StorageError& error) {
            EXPECT_EQ(error.GetFailure(), failure) << ToUtf8(location.toString());
            EXPECT_EQ(error.GetMessageIdentifier(),
                      (MessageIdentifier{"TOLVEX:tpath", key, {ustring(location.getPath())}}));
        }
        EXPECT_FALSE(disk->takeChangeMark(location).present) << ToUtf8(location.toString());
    }
}

/// Runs `check` in a process of its own that has done `prepare`; true when both say so.
bool HoldsAfter(bool (*prepare)(), const std::function<bool()>& check) {
    const auto child = ::fork();
    if (child == 0)
        ::_exit(prepare() && check() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool BecomeNobody() {
    return ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0);
}

bool HoldsForNobody(const std::function<bool()>& check) {
    return HoldsAfter(BecomeNobody, check);
}

/// As some sandboxes do.
template <int error>
bool ForbidOpenat2() {
    sock_filter program[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
                             BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                             BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter{4, program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST_F(DiskStorage, WorksWhereTheSystemCannotOpenWithoutLinks) {
    MakeFolder("real/sub");
    MakeLink("link", "real");
    const auto works = [&] {
        return Canonical("real/./sub") == tree.GetIRI("real/sub") && Canonical("link/sub/..") == tree.GetIRI("real") &&
               ListNames(*Open("real")) == Names{"sub/"} && FailureOf("none") == StorageFailure::missing;
    };
    EXPECT_TRUE(HoldsAfter(ForbidOpenat2<ENOSYS>, works));
    EXPECT_TRUE(HoldsAfter(ForbidOpenat2<EPERM>, works));
}

TEST_F(DiskStorage, FoldersWithoutPermissionAreRefusedAndStillListedByTheirParents) {
    MakeFolder("closed/inner");
    MakeFolder("passable/inner");
    fs::permissions(tree.GetRoot(), fs::perms(0755));
    fs::permissions(tree.GetRoot() / "closed", fs::perms::none);
    fs::permissions(tree.GetRoot() / "passable", fs::perms(0111));
    EXPECT_TRUE(HoldsForNobody([&] { return ListNames(*Open()) == Names{"closed/", "passable/"}; }));
    EXPECT_TRUE(HoldsForNobody([&] { return FailureOf("closed") == StorageFailure::permissionDenied; }));
    EXPECT_TRUE(HoldsForNobody([&] { return FailureOf("closed/inner") == StorageFailure::permissionDenied; }));
    EXPECT_TRUE(HoldsForNobody([&] { return FailureOf("passable") == StorageFailure::permissionDenied; }));
    EXPECT_TRUE(HoldsForNobody([&] { return !disk->takeChangeMark(tree.GetIRI("passable")).present; }));
    EXPECT_TRUE(HoldsForNobody([&] { return Canonical("passable/inner") == tree.GetIRI("passable/inner"); }));
    EXPECT_TRUE(HoldsForNobody([&] { return Canonicalise("closed/inner/../x") == "closed/x"; }));
    fs::permissions(tree.GetRoot() / "closed", fs::perms(0755));
}

/// Makes nested folders below the root, longer together than any one system call takes; returns their relative path.
std::string MakeDeepFolder(const fs::path& root, int depth) {
    const std::string name(250, 'd');
    std::string path;
    int folder = ::open(root.c_str(), O_PATH);
    for (int i = 0; i < depth; ++i) {
        path += (i == 0 ? "" : "/") + name;
        ::mkdirat(folder, name.c_str(), 0755);
        const int next = ::openat(folder, name.c_str(), O_PATH);
        ::close(folder);
        folder = next;
    }
    ::mkdirat(folder, "in", 0755);
    ::symlinkat("in", folder, "tolink");
    ::close(folder);
    return path;
}

TEST_F(DiskStorage, PathsOfAnyLengthWork) {
    const auto deep = MakeDeepFolder(tree.GetRoot(), 40);
    ASSERT_GT(deep.size(), 8192U);
    EXPECT_EQ(ListNames(*Open(deep)), (Names{"in/", "tolink/"}));
    EXPECT_EQ(Canonical(deep + "/./in/.."), tree.GetIRI(deep));
    EXPECT_EQ(Canonical(deep + "/tolink"), tree.GetIRI(deep + "/in"));
    EXPECT_EQ(Canonicalise(deep + "/tolink/x/../none"), deep + "/in/none");
    EXPECT_EQ(disk->takeChangeMark(tree.GetIRI(deep)).inode, Open(deep)->getChangeMark().inode);
    EXPECT_EQ(FailureOf(deep + "/none"), StorageFailure::missing);
    EXPECT_EQ(FailureOf(std::string(5000, 'x')), StorageFailure::invalidLocation);

    MakeLink("short", deep.substr(0, 250));
    EXPECT_EQ(Canonical("short" + deep.substr(250)), tree.GetIRI(deep)) << "a link in a stretch that is stepped over";
    EXPECT_EQ(Open("short" + deep.substr(250))->openChild(u"in")->getCanonicalLocation(), tree.GetIRI(deep + "/in"));
}

TEST_F(DiskStorage, CanonicalLocationsResolveLinksBeforeParents) {
    MakeFolder("real/sub");
    MakeFolder("sub");
    MakeLink("link", "real/sub");
    MakeLink("abs", (tree.GetRoot() / "link").native());
    MakeLink("loop1", "loop2");
    MakeLink("loop2", "loop1");
    MakeLink("ahead", "real/later");
    EXPECT_EQ(Canonical("./real/../sub"), tree.GetIRI("sub"));
    EXPECT_EQ(Canonical("link/.."), tree.GetIRI("real"));
    EXPECT_EQ(Canonical("abs/../../link"), tree.GetIRI("real/sub"));
    const std::pair<const char*, const char*> missing[] = {
        {"none/./x/../y", "none/y"}, {"none/../link/z", "real/sub/z"}, {"loop1/x", "loop1/x"},
        {"ahead/x", "real/later/x"}, {"loop1/../link", "real/sub"},
    };
    for (const auto& [spelled, canonical] : missing)
        EXPECT_EQ(Canonicalise(spelled), canonical) << spelled;
    EXPECT_EQ(CanonicalAbsoluteIRI(tree.GetIRI("abs"), u"../none"), tree.GetIRI("real/none"));
}

TEST_F(DiskStorage, AnOpenFolderReachedByALinkIsNamedByWhatItIsNow) {
    MakeFolder("first");
    MakeLink("link", "first");
    const auto folder = Open("link");
    fs::rename(tree.GetRoot() / "first", tree.GetRoot() / "second");
    EXPECT_EQ(folder->getCanonicalLocation(), tree.GetIRI("second"));
    MakeLink("again", "second");
    const auto removed = Open("again");
    fs::remove(tree.GetRoot() / "second");
    EXPECT_EQ(GetFailure([&] { return removed->getCanonicalLocation(); }), StorageFailure::missing);
}

TEST_F(DiskStorage, AStampProvesNothingUntilTheClockHasMovedOn) {
    using namespace std::chrono_literals;
    const auto stamp = Open()->getChangeMark().changed;
    ASSERT_NE(stamp.time_since_epoch() % 1s, 0ns) << "whole seconds count as coarse";
    ManualClock clock;
    const auto own = CreateDiskStorageSystem(clock);
    const std::pair<std::chrono::nanoseconds, bool> ages[] = {
        {-1h, false}, {0ns, false}, {1ms, false}, {19ms, false}, {3s, true}};
    for (const auto& [age, settled] : ages) {
        clock.Advance(stamp + age - clock.Now());
        const auto opened = own->openFolder(tree.GetIRI())->getChangeMark();
        const auto looked = own->takeChangeMark(tree.GetIRI());
        EXPECT_EQ(opened.settled, settled) << age.count();
        EXPECT_EQ(looked.settled, settled) << age.count();
        EXPECT_EQ(opened.ProvesUnchanged(looked), settled) << age.count();
    }
    MakeFile("new");
    EXPECT_FALSE(own->takeChangeMark(tree.GetIRI()).changed == stamp);
}

TEST(FileSystemRules, TrustAStampOnceNoLaterChangeCanCarryIt) {
    using namespace std::chrono_literals;
    const FileTime stamp(1'700'000'000s + 5ms);
    struct Case {
        std::uint32_t magic;
        std::chrono::nanoseconds leastAge;
        bool ignoresCase;
    };
    const Case cases[] = {{0xEF53, 20ms, false},
                          {0x4d44, 2s, true},
                          {0xFE534D42, 1h, true},
                          {0x6969, 1h, false},      // where another machine stamps
                          {0x12345678, 1h, false}}; // nobody knows whose clock it is
    for (const auto& [magic, leastAge, ignoresCase] : cases) {
        const auto rules = GetRulesOfType(magic);
        EXPECT_EQ(rules.ignoresCase, ignoresCase) << magic;
        EXPECT_FALSE(rules.IsSettled(stamp, stamp + leastAge - 1ns)) << magic;
        EXPECT_TRUE(rules.IsSettled(stamp, stamp + leastAge)) << magic;
        EXPECT_FALSE(rules.IsSettled(stamp, stamp - 2h)) << magic;
    }
    EXPECT_FALSE(GetRulesOfType(0xEF53).IsSettled(stamp - 5ms, stamp + 1s)) << "whole seconds may be all it keeps";
}

TEST(ChangeMark, OfATimeOnlyIsRefutedByAStampOfTheTwoSecondsBefore) {
    using namespace std::chrono_literals;
    const FileTime moment(1'700'000'000s);
    const auto proves = [&](const ChangeMark& mark, std::chrono::nanoseconds age) {
        return mark.ProvesUnchanged({1, 1, moment - age, true, true});
    };
    const auto mark = ChangeMark::AsOf(moment, moment);
    EXPECT_FALSE(proves(mark, 1900ms));
    EXPECT_TRUE(proves(mark, 2100ms));
    EXPECT_FALSE(proves(mark, -1ns));
    EXPECT_FALSE(proves(ChangeMark::AsOf(moment, moment - 1ns), 1h)) << "it is still to come";
    EXPECT_FALSE(mark.ProvesUnchanged({}));
}

TEST_F(DiskStorage, NoDescriptorIsLeftBehind) {
    MakeFolder("a");
    MakeLink("link", "a");
    const auto deep = MakeDeepFolder(tree.GetRoot(), 20);
    const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = count();
    for (const auto& name : {std::string("a"), std::string("link"), deep}) {
        const auto folder = Open(name);
        EXPECT_EQ(count(), before + 1) << "one for an open folder";
        ListNames(*folder);
        static_cast<void>(Canonical(name));
        static_cast<void>(disk->takeChangeMark(tree.GetIRI(name)));
        static_cast<void>(FailureOf(name + "/none"));
    }
    EXPECT_EQ(count(), before);
}

} // namespace
} // namespace Tolvex
