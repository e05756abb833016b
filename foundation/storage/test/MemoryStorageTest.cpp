#include "foundation/storage/MemoryStorage.h"
#include "TemporaryTree.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <thread>

namespace Tolvex {
namespace {

using namespace std::chrono_literals;
using Names = std::multiset<std::string>;

Names ListPath(const MemoryStorage& storage, std::string_view path) {
    return ListNames(*storage.openFolder(MemoryStorage::GetIRI(path)));
}

ChangeMark Look(const MemoryStorage& storage, std::string_view path) {
    return storage.takeChangeMark(MemoryStorage::GetIRI(path));
}

std::optional<StorageFailure> FailureOf(const MemoryStorage& storage, std::string_view path) {
    return GetFailure([&] { return storage.openFolder(MemoryStorage::GetIRI(path)); });
}

TEST(MemoryStorage, IgnoringCaseFindsAndKeepsTheFirstSpelling) {
    MemoryStorage storage({"/Größe/File.kx", "/link -> /GRÖßE"}, MemoryStorage::CaseRule::insensitive);
    const auto folder = storage.openFolder(MemoryStorage::GetIRI("/LINK/../größe"));
    EXPECT_EQ(folder->getCanonicalLocation(), MemoryStorage::GetIRI("/Größe"));
    EXPECT_EQ(storage.canonicalise(MemoryStorage::GetIRI("/Link/NEW/x")), MemoryStorage::GetIRI("/Größe/NEW/x"));
    EXPECT_TRUE(folder->getPathComparator().IgnoresCase());
    EXPECT_THROW(storage.Add("/GRÖßE/FILE.KX"), std::invalid_argument);
    storage.Rename("/größe/file.KX", "/Größe/FILE.kx");
    EXPECT_EQ(ListNames(*folder), Names{"FILE.kx"});
    EXPECT_EQ(FailureOf(MemoryStorage({"/a/"}), "/A"), StorageFailure::missing);
}

TEST(MemoryStorage, ChangesStampWhatADiskWouldStamp) {
    struct Case {
        const char* title;
        std::function<void(MemoryStorage&)> change;
        std::set<std::string> stamped;
    };
    const Case cases[] = {
        {"a file comes", [](MemoryStorage& s) { s.Add("/a/new.kx"); }, {"/a"}},
        {"a folder comes", [](MemoryStorage& s) { s.Add("/a/new/"); }, {"/a"}},
        {"a folder that is there comes", [](MemoryStorage& s) { s.Add("/a/in/"); }, {}},
        {"a link comes", [](MemoryStorage& s) { s.Add("/b/new -> /a"); }, {"/b"}},
        {"a file comes through a link", [](MemoryStorage& s) { s.Add("/link/new.kx"); }, {"/a"}},
        {"a file goes", [](MemoryStorage& s) { s.Remove("/a/in/x.kx"); }, {"/a/in"}},
        {"a link goes", [](MemoryStorage& s) { s.Remove("/link"); }, {"/"}},
        {"a file moves", [](MemoryStorage& s) { s.Rename("/a/in/x.kx", "/b/x.kx"); }, {"/a/in", "/b"}},
        {"a folder moves", [](MemoryStorage& s) { s.Rename("/a/in", "/b/in"); }, {"/a", "/a/in", "/b"}},
    };
    for (const auto& [title, change, stamped] : cases) {
        MemoryStorage storage({"/a/in/x.kx", "/b/", "/link -> /a"});
        std::map<std::string, ChangeMark> before;
        for (const auto* path : {"/", "/a", "/a/in", "/b"})
            before.emplace(path, Look(storage, path));
        storage.GetClock().Advance(1s);
        change(storage);
        std::set<std::string> changed;
        for (const auto& [path, mark] : before)
            if (!mark.ProvesUnchanged(Look(storage, path)))
                changed.insert(path);
        EXPECT_EQ(changed, stamped) << title;
    }
}

TEST(MemoryStorage, StampsOfThisMomentAndFoldersMadeAgainProveNothing) {
    MemoryStorage storage({"/a/x.kx"});
    const auto settled = Look(storage, "/a");
    EXPECT_TRUE(settled.settled);
    storage.Remove("/a");
    EXPECT_FALSE(settled.ProvesUnchanged(Look(storage, "/a")));
    storage.Add("/a/x.kx");
    const auto young = Look(storage, "/a");
    EXPECT_NE(young.inode, settled.inode);
    EXPECT_FALSE(young.settled);
    EXPECT_FALSE(young.ProvesUnchanged(Look(storage, "/a")));
    storage.GetClock().Advance(1ns);
    const auto later = Look(storage, "/a");
    EXPECT_TRUE(later.ProvesUnchanged(Look(storage, "/a")));
    EXPECT_NE(later.device, Look(MemoryStorage({"/a/"}), "/a").device);
}

TEST(MemoryStorage, RefusesChangesThatADiskWouldRefuse) {
    MemoryStorage storage({"/a/file", "/b/", "/loop -> loop", "/gone -> /none"});
    for (const auto* path : {"", "a", "/a/file", "/a/file/x", "/a/file/", "/a/../c", "/a/./c", "/loop/x", "/gone/x",
                             "/loop", "/x -> ", " -> /a"})
        EXPECT_THROW(storage.Add(path), std::invalid_argument) << path;
    for (const auto* path : {"/", "/none", "/a/none", "/a/file/x", "b"})
        EXPECT_THROW(storage.Remove(path), std::invalid_argument) << path;
    const std::pair<const char*, const char*> moves[] = {{"/none", "/c"},   {"/b", "/a"},        {"/a", "/a/in"},
                                                         {"/a", "/none/c"}, {"/b", "/a/file/b"}, {"/", "/c"},
                                                         {"/b", "/"}};
    for (const auto& [from, to] : moves)
        EXPECT_THROW(storage.Rename(from, to), std::invalid_argument) << from << " to " << to;
    EXPECT_EQ(ListPath(storage, "/"), (Names{"a/", "b/"}));
}

TEST(MemoryStorage, FaultsLastUntilCleared) {
    MemoryStorage storage({"/a/b/x.kx", "/link -> /a"});
    storage.FailListing("/a");
    storage.VanishWhenOpened("/a/b/");
    storage.DenyAccess("/c");
    storage.Add("/c/");
    const auto folder = storage.openFolder(MemoryStorage::GetIRI("/link"));
    EXPECT_EQ(GetFailure([&] { ListNames(*folder); }), StorageFailure::accessFailure);
    EXPECT_EQ(GetFailure([&] { return folder->openChild(u"b"); }), StorageFailure::missing);
    EXPECT_EQ(FailureOf(storage, "/c"), StorageFailure::permissionDenied);
    EXPECT_FALSE(Look(storage, "/a/b").present);
    EXPECT_FALSE(Look(storage, "/c").present);
    EXPECT_EQ(ListPath(storage, "/"), (Names{"a/", "c/", "link/"}));
    storage.ClearFaults();
    EXPECT_EQ(ListNames(*folder->openChild(u"b")), Names{"x.kx"});
    EXPECT_EQ(storage.GetListings(), (std::vector<std::string>{"/a", "/", "/a/b"}));
    EXPECT_EQ(storage.GetMarkCount(), 2U);
    storage.ClearListings();
    EXPECT_TRUE(storage.GetListings().empty());
    EXPECT_EQ(storage.GetMarkCount(), 0U);
}

TEST(MemoryStorage, AHeldListingWaitsWhileTheTreeCanBeChanged) {
    MemoryStorage storage({"/a/x.kx"});
    storage.HoldListing("/a");
    Names names;
    std::thread lister([&] { names = ListPath(storage, "/a"); });
    while (storage.GetListings().empty())
        std::this_thread::yield();
    storage.Add("/a/y.kx");
    storage.ReleaseListings();
    lister.join();
    EXPECT_EQ(names, (Names{"x.kx", "y.kx"}));
}

TEST(MemoryStorage, OpenFoldersOutliveTheirStorage) {
    auto storage = std::make_unique<MemoryStorage>(std::vector<std::string>{"/a/b/x.kx"});
    const auto folder = storage->openFolder(MemoryStorage::GetIRI("/a"));
    const auto removed = folder->openChild(u"b");
    storage->Remove("/a/b");
    storage.reset();
    EXPECT_EQ(ListNames(*folder), Names{});
    EXPECT_EQ(GetFailure([&] { ListNames(*removed); }), StorageFailure::missing);
}

} // namespace
} // namespace Tolvex
