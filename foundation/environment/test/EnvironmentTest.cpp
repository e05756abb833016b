#include "foundation/environment/CodeFiles.h"
#include "foundation/environment/Installation.h"
#include "foundation/environment/PackageDescriptors.h"
#include "foundation/environment/StorageAccess.h"
#include "foundation/environment/WorkingFolder.h"
#include "foundation/storage/StorageError.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Tolvex {
namespace {

namespace fs = std::filesystem;

/// Leaves the working folder and the folders it made as they were.
class WorkingFolderTest : public testing::Test {
protected:
    WorkingFolderTest() : before(fs::current_path()) {
        std::string pattern = (fs::temp_directory_path() / "workingFolderXXXXXX").string();
        scratch = fs::canonical(::mkdtemp(pattern.data()));
    }
    ~WorkingFolderTest() override {
        fs::current_path(before);
        fs::remove_all(scratch);
    }

    fs::path before;
    fs::path scratch;
};

TEST_F(WorkingFolderTest, FollowsTheProcessToAnyName) {
    const fs::path deep = scratch / std::string(200, 'd') / std::string(200, 'e') / "not UTF-8 \xFF";
    fs::create_directories(deep);
    fs::current_path(deep);
    const AbsoluteIRI folder = GetCurrentWorkingFolder().get();
    EXPECT_EQ(folder.getScheme(), "file");
    EXPECT_EQ(ToUtf8(folder.getPath()), deep.string());
}

TEST_F(WorkingFolderTest, ThatIsGoneIsReportedByItsFormerName) {
    const fs::path gone = scratch / "gone";
    fs::create_directory(gone);
    fs::current_path(gone);
    fs::remove(gone);
    try {
        static_cast<void>(GetCurrentWorkingFolder().get());
        FAIL() << "the folder is gone";
    } catch (const StorageError& error) {
        EXPECT_EQ(error.GetFailure(), StorageFailure::missing);
        EXPECT_EQ(ToUtf8(error.GetLocation().getPath()), gone.string());
    }
}

TEST_F(WorkingFolderTest, ChangesAreMadeThenAnnouncedByTheCanonicalName) {
    fs::create_directories(scratch / "real" / "inside");
    fs::create_directory_symlink(scratch / "real", scratch / "link");
    std::ofstream(scratch / "file");
    fs::current_path(scratch);
    const auto events = createEventMgr();
    std::vector<std::string> announced;
    const auto connection =
        events->Subscribe<CurrentWorkingFolderChangedEvent>([&](const CurrentWorkingFolderChangedEvent& event) {
            EXPECT_EQ(event.getNew(), GetCurrentWorkingFolder().get());
            announced.push_back(fs::path(ToUtf8(event.getNew().getPath())).lexically_relative(scratch).string());
            if (announced.size() == 1)
                throw std::runtime_error("the change stands all the same");
        });
    const auto go = [&](const fs::path& to) {
        ChangeCurrentWorkingFolder(toAbsoluteIRI(FromUtf8((scratch / to).string())), *events);
    };
    const auto failureOf = [&](const fs::path& to) {
        try {
            go(to);
        } catch (const StorageError& error) {
            EXPECT_EQ(ToUtf8(error.GetLocation().getPath()), (scratch / to).string());
            return error.GetFailure();
        }
        throw std::logic_error("no failure");
    };

    EXPECT_THROW(go("link/inside"), std::runtime_error);
    go("link/inside"); // a change to the same folder is announced, too
    go("link");
    EXPECT_EQ(failureOf("file"), StorageFailure::notAFolder);
    EXPECT_EQ(failureOf("missing"), StorageFailure::missing);
    EXPECT_THROW(ChangeCurrentWorkingFolder(AbsoluteIRI("memory", u"/"), *events), StorageError);
    EXPECT_EQ(announced, (std::vector<std::string>{"real/inside", "real/inside", "real"}));
    EXPECT_EQ(fs::current_path(), scratch / "real");
}

TEST(Installation, IsTheVariableWhenAbsoluteElseTheFolderAboveTheProgram) {
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const std::string above = program.parent_path().parent_path().string();
    const auto installPathWith = [](const char* root) {
        ::setenv("TOLVEX_ROOT", root, 1);
        return ToUtf8(get_install_path());
    };
    EXPECT_EQ(installPathWith("/opt//tolvex/"), "/opt/tolvex");
    EXPECT_EQ(installPathWith("/"), "/");
    EXPECT_EQ(installPathWith("relative/folder"), above);
    EXPECT_EQ(installPathWith(""), above);
    ::unsetenv("TOLVEX_ROOT");
    EXPECT_EQ(ToUtf8(get_install_path()), above);
}

TEST(Installation, NativeFormAndIRIOfPaths) {
    const auto paths = std::to_array<std::pair<ustring_view, ustring_view>>({{u"", u""},
                                                                             {u"/", u"/"},
                                                                             {u"///", u"/"},
                                                                             {u"a//b/", u"a/b"},
                                                                             {u"//a/./..//", u"/a/./.."},
                                                                             {u"/a b", u"/a b"}});
    for (const auto& [given, native] : paths) {
        EXPECT_EQ(make_native_form(given), native);
        if (given.starts_with(u'/'))
            EXPECT_EQ(toAbsoluteIRI(given).getPath(), native);
        else
            EXPECT_THROW(static_cast<void>(toAbsoluteIRI(given)), std::invalid_argument);
    }
    EXPECT_EQ(toAbsoluteIRI(u"/a", "memory").getScheme(), "memory");
}

TEST(CodeFiles, EveryAcceptedExtensionIsOfAKindThatCanRun) {
    std::vector<ustring> accepted(GetCodeFileExtensions().begin(), GetCodeFileExtensions().end());
    EXPECT_EQ(accepted, (std::vector<ustring>{u".kxa", u".kxp", u".kx"}));
    for (const auto& extension : accepted)
        EXPECT_NE(GetItemKindForExtension(extension), ItemKind::other);
    EXPECT_EQ(GetItemKindForExtension(u".kxa"), ItemKind::native);
    for (const ustring_view other : {u"", u".", u"kx", u".KX", u".kxq", u".kx ", u".txt"})
        EXPECT_EQ(GetItemKindForExtension(other), ItemKind::other);
}

TEST(PackageDescriptors, QualifyNamesByTheirOwners) {
    const auto& factory = TolvexPackages::GetPackageDescriptorFactory();
    const ustring top = factory.CreateQualifiedName(u"", u"plots");
    EXPECT_EQ(top, u"plots");
    EXPECT_EQ(factory.CreateQualifiedName(top, u"axes"), u"plots.axes");
}

TEST(StorageAccess, GivesTheOneStorageSystemOfTheDisks) {
    const auto storage = TolvexStorageSystem::GetStorageSystemReference();
    EXPECT_EQ(storage, GetDiskStorageSystem());
    EXPECT_EQ(storage->getScheme(), "file");
}

} // namespace
} // namespace Tolvex
