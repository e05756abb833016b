#include "foundation/storage/MemoryStorage.h"
#include "foundation/storage/StorageError.h"
#include "path_utilities/PartialPathname.h"
#include "path_utilities/PathEntryTypeRules.h"
#include "path_utilities/PathText.h"

#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using Tolvex::AbsoluteIRI;
using Tolvex::FromUtf8;
using Tolvex::ToUtf8;

TEST(PathEntryTypeRules, TheLastTwoNamesDecide) {
    struct {
        std::string_view path;
        int type;
        std::string_view nameWithoutMark;
    } const cases[] = {{"/", 0, ""},
                       {"/lib", 0, "lib"},
                       {"/lib/+a", 1, "a"},
                       {"/+a", 1, "a"},
                       {"/+", 0, "+"},
                       {"/@", 0, "@"},
                       {"/@c", 2, "c"},
                       {"/+p/@c", 2, "c"},
                       {"/@c/@d", 4, "d"},
                       {"/@/@d", 2, "d"},
                       {"/@c/x/@d", 2, "d"},
                       {"/@c/@d/@e", 4, "e"},
                       {"/a/private", 3, "private"},
                       {"/private", 3, "private"},
                       {"/Private", 0, "Private"},
                       {"/a/resources", 5, "resources"},
                       {"/a/resources2", 0, "resources2"},
                       {"/@c/+p", 1, "p"}};
    for (const auto& [path, type, name] : cases) {
        const AbsoluteIRI location = Tolvex::MemoryStorage::GetIRI(path);
        EXPECT_EQ(static_cast<int>(GetPathEntryTypeFromLocation(location)), type) << path;
        EXPECT_EQ(ToUtf8(GetNameWithoutMark(location.getBaseName())), name) << path;
    }
}

TEST(PartialPathname, MatchesTheLastNamesByTheFileSystemsRule) {
    struct {
        std::string_view partial;
        std::string_view path;
        bool exact;
        bool ignoringCase;
    } const cases[] = {{"b/c", "/a/b/c", true, true},       {"a/b/c", "/a/b/c", true, true},
                       {"x/a/b/c", "/a/b/c", false, false}, {"B/c", "/a/b/c", false, true},
                       {"/b//c/", "/a/b/c", true, true},    {"b", "/a/b/c", false, false},
                       {"c", "/a/bc", false, false},        {"", "/a", true, true},
                       {"größe", "/GRÖSSE", false, false},  {"größe", "/GRÖẞE", false, true}};
    for (const auto& [partial, path, exact, ignoringCase] : cases) {
        const Tolvex::ustring text = FromUtf8(partial);
        const PathnameComponents names = SplitPartialPathname(text);
        const AbsoluteIRI location = Tolvex::MemoryStorage::GetIRI(path);
        EXPECT_EQ(DoesPartialPathnameMatchPathEntryIRI(names, location, Tolvex::PathComparator(false)), exact)
            << partial;
        EXPECT_EQ(DoesPartialPathnameMatchPathEntryIRI(names, location, Tolvex::PathComparator(true)), ignoringCase)
            << partial;
    }
}

TEST(PathText, TextsAndLocationsAnswerToEachOther) {
    for (const std::string_view path : {"/", "/a b/c<&>", "/\xff/é", "/a%20b"}) {
        const AbsoluteIRI location = GetIRIFromString(FromUtf8(path));
        EXPECT_EQ(ToUtf8(GetStringFromIRI(location)), path);
        EXPECT_EQ(GetIRIFromString(location.toString()), location);
    }
    EXPECT_EQ(GetIRIFromString(u"//a///b/"), AbsoluteIRI("file", u"/a/b"));
    EXPECT_EQ(ToUtf8(GetStringFromIRI(Tolvex::MemoryStorage::GetIRI("/a b"))), "memory:///a%20b");
}

TEST(PathText, RefusedTextsAreNamedInTheMessage) {
    for (const std::string_view text :
         {std::string_view(), std::string_view("relative/path"), std::string_view("/a\0b", 4)})
        try {
            static_cast<void>(GetIRIFromString(FromUtf8(text)));
            ADD_FAILURE() << text;
        } catch (const Tolvex::StorageError& error) {
            EXPECT_EQ(error.GetMessageIdentifier().GetFullName(), "TOLVEX:tpath:invalidLocation");
            ASSERT_EQ(error.GetMessageIdentifier().arguments.size(), 1u);
            EXPECT_EQ(ToUtf8(error.GetMessageIdentifier().arguments.front()), text);
        }
}

TEST(PathText, RelativePathsAreTakenAgainstTheWorkingFolder) {
    const AbsoluteIRI home = Tolvex::MemoryStorage::GetIRI("/home/me");
    struct {
        std::u16string_view path;
        std::string_view location;
    } const cases[] = {{u"lib", "/home/me/lib"}, {u"./lib/", "/home/me/lib"},
                       {u"../you", "/home/you"}, {u"/lib/../bin", "/bin"},
                       {u"..", "/home"},         {u"../../../x", "/x"}};
    for (const auto& [path, location] : cases)
        EXPECT_EQ(ToUtf8(CanonicalizeRelativePathAgainstCWD(path, home).getPath()), location);
    EXPECT_THROW(static_cast<void>(CanonicalizeRelativePathAgainstCWD(u"", home)), Tolvex::StorageError);
}

} // namespace
} // namespace PathManagement
