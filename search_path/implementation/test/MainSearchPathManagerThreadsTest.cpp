#include "ManagerWorld.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace PathManagement {
namespace {

/// Readers take everything that can be taken, ask it and are sometimes its last owners, while the path, its folders and
/// the working folder change. Meant for the thread sanitizer; what is seen is checked anyway.
TEST(MainSearchPathManagerThreads, ReadersSeeWholePathsWhileChangesRun) {
    ManagerWorld world({"/work/w.kx", "/m0/f.kx", "/m1/f.kx", "/m2/f.kx", "/m3/+p/f.kx", "/work/f.kx"});
    world.Set({"/m0", "/m1"});
    std::atomic<bool> stop = false;
    std::atomic<std::size_t> answers = 0;
    const auto read = [&] {
        const std::vector<ustring> extensions{u".kx"};
        while (!stop || answers < 100) {
            const auto memento = world.manager.CreateMemento();
            ASSERT_EQ(memento->storedPath->GetMainEntries()->size(), memento->pathIRIs->size());
            for (const auto& path :
                 {world.manager.GetPath(), world.manager.GetMonitoredPath(), world.manager.GetSecondaryPath()})
                if (path->FindFirstInScope(SearchScope::All(), SearchTarget(u"f", extensions),
                                           FilenameMatchingPolicy::exact))
                    ++answers;
            static_cast<void>(world.manager.GetCurrentFolderComponent());
            static_cast<void>(world.manager.GetPathComponents());
        }
    };
    std::vector<std::jthread> readers;
    for (int reader = 0; reader < 3; ++reader)
        readers.emplace_back(read);
    for (int change = 0; change < 200; ++change) {
        const std::string number = std::to_string(change % 4);
        world.OnDisk([&](auto& storage) { storage.Add("/m" + number + "/n" + std::to_string(change) + ".kx"); });
        world.manager.RefreshPath(RefreshType::knownChanges);
        world.Set({"/m" + number, "/m3"});
        world.ChangeFolder(change % 2 == 0 ? "/m0" : "/work");
        if (change % 20 == 0)
            world.manager.SetCurrentFolderPolicy(change % 40 == 0 ? CurrentFolderPolicy::noCurrentFolder
                                                                  : CurrentFolderPolicy::trackWorkingFolder);
    }
    stop = true;
    readers.clear();
    EXPECT_GE(answers, 100u);
}

} // namespace
} // namespace PathManagement
