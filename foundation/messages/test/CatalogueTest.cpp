#include "foundation/messages/Catalogue.h"
#include "foundation/messages/Exceptions.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace Tolvex {
namespace {

struct Contract {
    std::string component;
    std::string key;
    std::size_t argumentCount;
};

// What the callers of the environment rely on; the texts themselves may be rewritten at will.
const std::vector<Contract>& GetContracts() {
    static const std::string path = "TOLVEX:tpath";
    static const std::vector<Contract> contracts{
        {path, "packageDirectoriesNotAllowedOnPath", 1},
        {path, "methodDirectoriesNotAllowedOnPath", 1},
        {path, "privateDirectoriesNotAllowedOnPath", 1},
        {path, "resourcesDirectoriesNotAllowedOnPath", 1},
        {path, "packageMemberFoldersNotAllowedOnPath", 3},
        {path, "uninstalledPackagesNotAllowedOnPath", 1},
        {path, "packagesMustBeLastOnPath", 0},
        {path, "uninstalledPackageRemovedFromPath", 1},
        {path, "packageMemberFolderRemovedFromPath", 3},
        {path, "MultiplePackageVersionsOnPath", 2},
        {path, "AddPackageToPathInfo", 1},
        {path, "packageFolderMonitoringChange", 1},
        {path, "PathAlterationNotSupported", 0},
        {path, "UnableToModifyTolvexpath", 0},
        {"TOLVEX:legacy_two_part", "nomem", 0},
        {path, "TPMFeatureOff", 0},
        {path, "nameNonexistentOrNotADirectory", 1},
        {path, "directoryPermissionDenied", 1},
        {path, "directoryAccessFailure", 2},
        {path, "invalidLocation", 1},
        {"TOLVEX:RemotePolicy", "UnknownPolicy", 0},
        {"TOLVEX:ChangeHandleWarning", "notEnoughInputs", 0},
        {"TOLVEX:ChangeHandleWarning", "InvalidOption", 0},
        {"TOLVEX:string", "MustBeStringScalarOrCharacterVector", 0},
        {"TOLVEX:CachePath", "FailedToSave", 2},
        {"TOLVEX:CachePath", "FailedToLoad", 2},
        {"TOLVEX:CachePath", "InvalidOption", 0},
        {"TOLVEX:CachePath", "InvalidFile", 0},
        {"TOLVEX:CachePath", "NoCacheFolder", 0},
        {"TOLVEX:arguments", "maxlhs", 0},
        {"TOLVEX:arguments", "maxrhs", 0},
        {"TOLVEX:arguments", "minrhs", 0},
        {"TOLVEX:arguments", "unknownFunction", 1},
        {path, "noParentFolder", 1},
        {path, "invalidInstallationPoint", 0},
    };
    return contracts;
}

bool IsMentioned(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(Catalogue, EachMessageHasATextThatUsesEachArgument) {
    for (const auto& [component, key, argumentCount] : GetContracts()) {
        SCOPED_TRACE(component + ':' + key);
        MessageIdentifier message{component, key, {}};
        for (std::size_t i = 0; i != argumentCount; ++i)
            message.arguments.push_back(u"{argument" + FromUtf8(std::to_string(i)) + u"}");

        const std::string text = GetMessageText(message);
        EXPECT_FALSE(IsMentioned(text, key)); // a sentence, not the name it is kept under
        for (std::size_t i = 0; i != argumentCount; ++i)
            EXPECT_TRUE(IsMentioned(text, "{argument" + std::to_string(i) + "}")) << text;

        message.arguments.push_back(u"surplus");
        EXPECT_TRUE(IsMentioned(GetMessageText(message), "surplus"));
    }
}

TEST(Catalogue, LosesNothingOfWhatItDoesNotKnow) {
    EXPECT_EQ(GetMessageText({"TOLVEX:other", "news", {u"one", u"zw\u00F6lf"}}),
              "TOLVEX:other:news: one, zw\xC3\xB6lf");
    EXPECT_EQ(GetMessageText({"TOLVEX:other", "news", {}}), "TOLVEX:other:news");
    EXPECT_EQ(GetMessageText({"TOLVEX:tpath", "directoryAccessFailure", {u"/a"}}),
              "TOLVEX:tpath:directoryAccessFailure: /a"); // an argument is missing
}

TEST(Catalogue, AnEmptyAdviceLeavesNoTrace) {
    const std::string text = GetMessageText({"TOLVEX:tpath", "packageMemberFolderRemovedFromPath", {u"/a", u"", u"P"}});
    EXPECT_TRUE(text.ends_with("P.")) << text;
}

TEST(Exceptions, TellTheirMessageAndCarryWhatIsAttachedOnTheWay) {
    using Hint = boost::error_info<struct HintTag, int>;
    const MessageIdentifier message{"TOLVEX:tpath", "invalidLocation", {u"a//b"}};
    try {
        MessageIdentifierException thrown(message);
        thrown << Hint(7);
        throw thrown; // NOLINT: the copy is what is tested
    } catch (const Exception& caught) {
        EXPECT_EQ(caught.what(), GetMessageText(message));
        ASSERT_NE(boost::get_error_info<Hint>(caught), nullptr);
        EXPECT_EQ(*boost::get_error_info<Hint>(caught), 7);
        EXPECT_EQ(dynamic_cast<const MessageIdentifierException&>(caught).GetMessageIdentifier(), message);
    }
    EXPECT_STREQ(InternalException("broken").what(), "broken");
}

} // namespace
} // namespace Tolvex
