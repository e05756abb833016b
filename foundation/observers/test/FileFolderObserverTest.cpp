#include "foundation/observers/IFileFolderObserverFactory.h"
#include "foundation/storage/MemoryStorage.h"

#include <gtest/gtest.h>

#include <thread>

namespace Tolvex {
namespace {

using namespace std::chrono_literals;

CanonicalAbsoluteIRI Locate(std::string_view path) {
    return CanonicalAbsoluteIRI::fromCanonical(MemoryStorage::GetIRI(path));
}

class FileFolderObserver : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<IFileFolderObserver> Observe(std::string_view path, ObservationLevel level) const {
        return factory.createObserver(Locate(path), storage->takeChangeMark(Locate(path)), level);
    }

    std::shared_ptr<MemoryStorage> storage =
        std::make_shared<MemoryStorage>(std::initializer_list<std::string_view>{"/a/b/", "/c/"});
    IFileFolderObserverFactory& factory = GetFileFolderObserverFactory(storage);
};

TEST_F(FileFolderObserver, SeesTheChangesOfItsFolderAndRemembersThem) {
    for (const auto level : {ObservationLevel::timeCheck, ObservationLevel::notification}) {
        storage->GetClock().Advance(1s);
        const auto observer = Observe("/a", level);
        const auto other = Observe("/c", level);
        EXPECT_FALSE(observer->hasChanged());
        storage->Add("/a/b/" + std::to_string(static_cast<int>(level)) + ".kx");
        EXPECT_FALSE(observer->hasChanged()) << "a folder below is another's";
        storage->Add("/a/" + std::to_string(static_cast<int>(level)) + ".kx");
        EXPECT_TRUE(observer->hasChanged());
        factory.setObservationLevel(Locate("/a"), ObservationLevel::none);
        storage->ClearListings();
        EXPECT_TRUE(observer->hasChanged());
        EXPECT_EQ(storage->GetMarkCount(), 0U) << "what is known is not looked at again";
        EXPECT_FALSE(other->hasChanged());
        EXPECT_FALSE(observer->observesChildFoldersToo());
    }
}

TEST_F(FileFolderObserver, ARaisedLevelSeesWhatChangedSinceTheFirstMark) {
    const auto observer = Observe("/a", ObservationLevel::none);
    const auto twin = Observe("/a", ObservationLevel::none);
    const auto other = Observe("/c", ObservationLevel::none);
    storage->Add("/a/new.kx");
    storage->Add("/c/new.kx");
    storage->ClearListings();
    EXPECT_FALSE(observer->hasChanged());
    EXPECT_EQ(storage->GetMarkCount(), 0U);
    factory.setObservationLevel(Locate("/a"), ObservationLevel::timeCheck);
    EXPECT_TRUE(observer->hasChanged());
    EXPECT_TRUE(twin->hasChanged());
    EXPECT_FALSE(other->hasChanged());
}

TEST_F(FileFolderObserver, OneLookSpeaksToFrozenObserversAndLeavesTheLevelsAlone) {
    const auto frozen = Observe("/a", ObservationLevel::none);
    const auto watching = Observe("/a", ObservationLevel::notification);
    const std::vector folders{CanonicalAbsoluteIRI::fromCanonical(MemoryStorage::GetIRI("/a"))};
    factory.lookAt(folders);
    EXPECT_FALSE(frozen->hasChanged());
    storage->Add("/a/new.kx");
    storage->GetClock().Advance(1s);
    EXPECT_FALSE(frozen->hasChanged());
    factory.lookAt(folders);
    EXPECT_TRUE(frozen->hasChanged());
    EXPECT_TRUE(watching->hasChanged());
    const auto later = Observe("/a", ObservationLevel::notification);
    factory.lookAt(folders);
    storage->Remove("/a/new.kx");
    storage->GetClock().Advance(1s);
    EXPECT_TRUE(later->hasChanged());
}

TEST_F(FileFolderObserver, TheEndOfOneObserverLeavesItsTwinWatching) {
    const auto kept = Observe("/a", ObservationLevel::none);
    Observe("/a", ObservationLevel::none).reset();
    storage->Add("/a/new.kx");
    factory.setObservationLevel(Locate("/a"), ObservationLevel::timeCheck);
    EXPECT_TRUE(kept->hasChanged());
}

TEST_F(FileFolderObserver, FoldersComeAndGo) {
    const auto missing = Observe("/later", ObservationLevel::timeCheck);
    const auto present = Observe("/c", ObservationLevel::timeCheck);
    EXPECT_FALSE(missing->hasChanged());
    storage->Add("/later/");
    storage->Rename("/c", "/d");
    EXPECT_TRUE(missing->hasChanged());
    EXPECT_TRUE(present->hasChanged());
    storage->Rename("/d", "/c");
    EXPECT_TRUE(present->hasChanged());
}

TEST_F(FileFolderObserver, AMarkTooYoungToProveAnythingCountsAsChanged) {
    storage->Add("/a/first.kx");
    const auto observer = Observe("/a", ObservationLevel::timeCheck);
    storage->Add("/a/second.kx"); // the same stamp
    storage->GetClock().Advance(1s);
    EXPECT_TRUE(observer->hasChanged());
}

TEST_F(FileFolderObserver, EachStorageSystemHasOneFactoryOfItsOwn) {
    EXPECT_EQ(&GetFileFolderObserverFactory(storage), &factory);
    factory.setRemotePathPolicy(RemotePathPolicy::none);
    const auto other = std::make_shared<const MemoryStorage>();
    EXPECT_NE(&GetFileFolderObserverFactory(other), &factory);
    EXPECT_EQ(GetFileFolderObserverFactory(other).getRemotePathPolicy(), RemotePathPolicy::timecheckDir);
    EXPECT_EQ(GetFileFolderObserverFactory(other).getChangeHandleWarning(), ChangeHandleWarning::once);
    EXPECT_EQ(factory.getRemotePathPolicy(), RemotePathPolicy::none);
    EXPECT_FALSE(factory.getChangesSince({}).askEachObserver) << "time checks are made on the spot";
}

TEST_F(FileFolderObserver, ObserversOutliveTheirStorageSystem) {
    const auto present = Observe("/a", ObservationLevel::timeCheck);
    const auto missing = Observe("/none", ObservationLevel::timeCheck);
    storage.reset();
    static_cast<void>(GetFileFolderObserverFactory(std::make_shared<const MemoryStorage>())); // drops dead factories
    EXPECT_TRUE(present->hasChanged());
    EXPECT_FALSE(missing->hasChanged());
}

TEST(FileFolderObserverFactory, IsNotInheritedByAStorageSystemAtTheSameAddress) {
    MemoryStorage memory({"/a/"});
    const auto refer = [&] { return StorageSystemReference(&memory, [](const StorageSystem*) {}); };
    GetFileFolderObserverFactory(refer()).setRemotePathPolicy(RemotePathPolicy::reload);
    const auto second = refer();
    auto& factory = GetFileFolderObserverFactory(second);
    EXPECT_EQ(factory.getRemotePathPolicy(), RemotePathPolicy::timecheckDir);
    const auto observer =
        factory.createObserver(Locate("/a"), memory.takeChangeMark(Locate("/a")), ObservationLevel::timeCheck);
    EXPECT_FALSE(observer->hasChanged());
}

TEST_F(FileFolderObserver, ComeAndGoInAllThreadsWhileLevelsChange) {
    const auto shared = Observe("/a", ObservationLevel::timeCheck);
    const auto work = [&] {
        for (int i = 0; i < 300; ++i) {
            const auto own = Observe("/a", ObservationLevel::none);
            factory.setObservationLevel(Locate("/a"), ObservationLevel::timeCheck);
            EXPECT_FALSE(own->hasChanged());
            EXPECT_FALSE(shared->hasChanged());
        }
    };
    std::thread threads[] = {std::thread(work), std::thread(work), std::thread(work)};
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace Tolvex
