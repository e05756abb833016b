#include "../ObservedTree.h"
#include "foundation/storage/MemoryStorage.h"

#include <poll.h>

namespace Tolvex {
namespace {

bool IsReady(WaitHandle handle) {
    pollfd waiting{static_cast<int>(handle), POLLIN, 0};
    return ::poll(&waiting, 1, 0) == 1;
}

TEST(WaitHandleTest, IsReadyFromAChangeUntilTheQuestion) {
    ObservedTree tree;
    for (const auto* const folder : {"box", "other", "plain"})
        tree.MakeFolder(folder);
    const auto early = tree.factory->getWaitHandle(); // before anything is watched
    ASSERT_TRUE(early);
    const auto observer = tree.Watch("box");
    const auto handle = tree.factory->getWaitHandle();
    ASSERT_EQ(early, handle);
    EXPECT_EQ(Names{}, tree.TakeChanges());
    EXPECT_FALSE(IsReady(*handle));

    tree.MakeFile("plain/f"); // is watched by nobody
    EXPECT_FALSE(IsReady(*handle));
    tree.MakeFile("box/f");
    EXPECT_TRUE(IsReady(*handle));
    EXPECT_TRUE(IsReady(*handle));
    EXPECT_EQ(Names{"box"}, tree.TakeChanges());
    EXPECT_FALSE(IsReady(*handle));

    const auto second = tree.Watch("other");
    EXPECT_EQ(Names{}, tree.TakeChanges());
    EXPECT_FALSE(IsReady(*handle)) << "watching more tells of no change";
    tree.Move("other", "moved");
    EXPECT_TRUE(IsReady(*handle));
    EXPECT_EQ(Names{"other"}, tree.TakeChanges());
}

TEST(WaitHandleTest, SaysWhenWaitingIsNotEnough) {
    ObservedTree tree({3, {}}); // less than the way to one folder
    tree.MakeFolder("box");
    const auto observer = tree.Observe("box", ObservationLevel::notification);
    EXPECT_TRUE(tree.factory->getChangesSince({}).hasLookedAtFolders);

    ObservedTree watched;
    watched.MakeFolder("box");
    const auto seen = watched.Watch("box");
    EXPECT_FALSE(watched.factory->getChangesSince({}).hasLookedAtFolders);
    const auto checked = watched.Observe("box", ObservationLevel::timeCheck);
    watched.factory->setObservationLevel(watched.Locate("box"), ObservationLevel::timeCheck);
    EXPECT_TRUE(watched.factory->getChangesSince({}).hasLookedAtFolders);

    const auto memory = std::make_shared<MemoryStorage>();
    EXPECT_FALSE(CreateFileFolderObserverFactory(memory)->getWaitHandle());
}

} // namespace
} // namespace Tolvex
