#include "../ObservedTree.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

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

} // namespace
} // namespace Tolvex
