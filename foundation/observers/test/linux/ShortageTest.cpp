#include "../../src/linux/StorageTypes.h"
#include "../ObservedTree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <new>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr long unlimited = -1;
thread_local long allocationsLeft = unlimited;

void* Allocate(std::size_t size) {
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    allocationsLeft -= allocationsLeft > 0 ? 1 : 0;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Tolvex {
namespace {

/// Lets the process open no further file while it lives.
class NoMoreFiles {
public:
    NoMoreFiles() {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{0, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;
    ~NoMoreFiles() { ::setrlimit(RLIMIT_NOFILE, &before); }

private:
    rlimit before{};
};

TEST(WatchedFolders, NeedNoQueueAsLongAsThereIsNone) {
    ObservedTree tree;
    tree.MakeFolder("a");
    tree.MakeFolder("b");
    const auto a = tree.Observe("a");
    const auto b = tree.Observe("b");
    tree.MakeFolder("a/new");
    {
        const NoMoreFiles shortage;
        EXPECT_EQ(tree.TakeChanges(), Names{"a"});
        EXPECT_NE(tree.factory->takeChangeHandleWarning().find("ulimit -n"), std::string::npos);
        tree.MakeFolder("b/new");
        EXPECT_EQ(tree.TakeChanges(), Names{"b"});
    }
    const auto later = tree.Observe("b");
    EXPECT_EQ(tree.TakeChanges(), Names());
    static_cast<void>(tree.storage->TakeLooks());
    tree.MakeFile("b/newer");
    static_cast<void>(tree.storage->TakeLooks());
    EXPECT_EQ(tree.TakeChanges(), Names{"b"});
    EXPECT_EQ(tree.storage->TakeLooks(), 0U) << "watched now";
    EXPECT_TRUE(later->hasChanged());
}

/// Runs `check`, which returns what is wrong, in a process of its own that has done `prepare`.
std::string RunAfter(const std::function<bool()>& prepare, const std::function<std::string()>& check) {
    int ends[2];
    if (::pipe(ends) != 0)
        return "no pipe";
    const auto child = ::fork();
    if (child == 0) {
        const auto text = prepare() ? check() : "cannot be prepared";
        ::_exit(::write(ends[1], text.data(), text.size()) < 0 ? 1 : 0);
    }
    ::close(ends[1]);
    std::string text(4096, ' ');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::read(ends[0], text.data(), text.size()))));
    ::close(ends[0]);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : "ended before its time";
}

/// The warning; or what is wrong with the answers beside it.
std::string AnswerAndWarn() {
    ObservedTree tree;
    tree.MakeFolder("a/b");
    const auto observer = tree.Observe("a/b");
    if (!tree.TakeChanges().empty())
        return "changed at once";
    const auto text = tree.factory->takeChangeHandleWarning();
    tree.MakeFile("a/b/new");
    return tree.TakeChanges() == Names{"a/b"} ? text : "not seen";
}

template <int error>
bool RefuseWatches() {
    sock_filter program[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_inotify_add_watch, 0, 1),
                             BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                             BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter{4, program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(WatchedFolders, WarningsNameWhatRefused) {
    const auto full = RunAfter(RefuseWatches<ENOSPC>, AnswerAndWarn);
    EXPECT_NE(full.find("sysctl fs.inotify.max_user_watches="), std::string::npos) << full;
    EXPECT_NE(full.find("share one limit"), std::string::npos) << full;
    const auto noMemory = RunAfter(RefuseWatches<ENOMEM>, AnswerAndWarn);
    EXPECT_NE(noMemory.find("Cannot allocate memory"), std::string::npos) << noMemory;
    EXPECT_EQ(noMemory.find("sysctl"), std::string::npos) << noMemory;
    EXPECT_EQ(RunAfter(RefuseWatches<EACCES>, AnswerAndWarn), "") << "no limit was met";
}

TEST(WatchedFolders, TakeHalfOfTheUsersWatches) {
    const TemporaryTree settings;
    const auto setting = settings.GetRoot() / "limit";
    std::ofstream(setting) << 6;
    const auto prepare = [&] {
        return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               ::mount(setting.c_str(), "/proc/sys/fs/inotify/max_user_watches", nullptr, MS_BIND, nullptr) == 0;
    };
    const auto text = RunAfter(prepare, AnswerAndWarn);
    if (text == "cannot be prepared")
        GTEST_SKIP() << "this user may not attach storage";
    EXPECT_EQ(text.find("All 3 folder watches"), 0U) << text;
    EXPECT_NE(text.find("fs.inotify.max_user_watches is 6"), std::string::npos) << text;
}

/// Nothing that was told is lost when handling it fails for want of memory, wherever that is.
TEST(WatchedFolders, NeedNoMemoryToRememberThatTheyChanged) {
    struct Case {
        const char* name;
        std::function<void(const ObservedTree&)> happen;
        Names changed;
    };
    bool isMounted = false;
    const Case cases[] = {
        {"file made", [](const auto& tree) { tree.MakeFile("d/new"); }, {"d"}},
        {"ancestor moved", [](const auto& tree) { tree.Move("a", "z"); }, {"a", "a/b", "a/b/c"}},
        {"storage attached",
         [&](const auto& tree) { isMounted = ::mount("none", tree.At("a").c_str(), "tmpfs", 0, nullptr) == 0; },
         {"a", "a/b", "a/b/c"}}};
    for (const auto& [name, happen, changed] : cases) {
        SCOPED_TRACE(name);
        bool isShort = true;
        for (long left = 0; isShort && left < 1000; ++left) {
            ObservedTree tree;
            tree.MakeFolder("a/b/c");
            tree.MakeFolder("d");
            std::vector<std::unique_ptr<IFileFolderObserver>> observers;
            for (const auto* const path : {"a", "a/b", "a/b/c", "d"})
                observers.push_back(tree.Watch(path));
            isMounted = false;
            happen(tree);
            allocationsLeft = left;
            const auto report = tree.factory->getChangesSince({});
            allocationsLeft = unlimited;
            isShort = report.askEachObserver;
            EXPECT_EQ(tree.TakeChanges(),
                      isMounted || !std::string_view(name).ends_with("attached") ? changed : Names())
                << left;
            if (isMounted) {
                EXPECT_EQ(::umount2(tree.At("a").c_str(), MNT_DETACH), 0);
            }
        }
        EXPECT_FALSE(isShort);
    }
}

TEST(StorageTypes, AreWatchedWhenKnownToTell) {
    const std::pair<const char*, StorageKind> kinds[] = {
        {"ext4", StorageKind::notifying},  {"overlay", StorageKind::notifying},
        {"tmpfs", StorageKind::notifying}, {"nfs4", StorageKind::remote},
        {"fuse", StorageKind::remote},     {"fuse.sshfs", StorageKind::remote},
        {"vfat", StorageKind::silent},     {"proc", StorageKind::silent},
        {"fuseblk", StorageKind::silent},  {"of the next year", StorageKind::silent}};
    for (const auto& [type, kind] : kinds)
        EXPECT_EQ(GetKindOfType(type), kind) << type;
}

} // namespace
} // namespace Tolvex
