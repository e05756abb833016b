#include "PathWorld.h"

#include "foundation/components/PackageRegistry.h"
#include "main_manager/SearchPathPublicFunctions.h"

#include <gtest/gtest.h>

namespace PathManagement::detail {
namespace {

using Tolvex::Notification;
using Tolvex::ToUtf8;
using TolvexPackages::PackageRecord;
using TolvexPackages::PackageRegistry;

std::shared_ptr<const PackageRecord> Package(char letter, const std::vector<std::string>& folders,
                                             const char16_t* position = nullptr) {
    PackageRecord record{.identifier = {ustring(1, static_cast<char16_t>(letter)),
                                        TolvexComponents::ComponentVersion({1, 2, 0}, u"rc"),
                                        {{static_cast<std::uint8_t>(letter)}}}};
    for (const auto& folder : folders)
        record.memberFolders.push_back(PathWorld::At(folder));
    if (position != nullptr)
        record.properties.emplace(TolvexPackages::pathPositionProperty, ustring(position));
    return std::make_shared<const PackageRecord>(std::move(record));
}

/// "key(argument, argument)" of each message.
std::vector<std::string> Draw(const Notification& notification) {
    std::vector<std::string> drawn;
    notification.ForEach([&drawn](const Notification::Entry& entry) {
        std::string arguments;
        for (const auto& argument : entry.message.arguments)
            arguments += (arguments.empty() ? "" : ", ") + ToUtf8(argument);
        EXPECT_EQ(entry.message.component, "TOLVEX:tpath");
        drawn.push_back(entry.message.key + "(" + arguments + ")");
        return false;
    });
    return drawn;
}

class PathAlterationRulesTest : public testing::Test {
protected:
    struct Outcome {
        std::string entries;
        std::string components;
        std::vector<std::string> messages;
    };

    Outcome Request(const std::vector<std::string_view>& folders) {
        PathEntryVector requested;
        for (const auto folder : folders)
            requested.push_back(folder.empty() ? nullptr : world.Entry(folder));
        Notification notification;
        const AcceptedEntries accepted = ApplyPathAlterationRules(requested, registry, notification);
        Outcome outcome{Where(accepted.entries), "", Draw(notification)};
        for (const auto& component : accepted.components)
            outcome.components += ToUtf8(component.GetName());
        return outcome;
    }

    PathWorld world{{"/one/+pack/", "/one/@Class/@Inner/", "/one/private/", "/one/resources/", "/two/", "/p/member/",
                     "/p/+pack/", "/q/", "/front/", "/last/", "/gone/inside/"}};
    PackageRegistry registry{{Package('p', {"/p", "/p/member"}), Package('q', {"/q"}),
                              Package('f', {"/front"}, u"begin"), Package('l', {"/last"}, u"end")},
                             {PathWorld::At("/gone")}};
};

const std::string lastMessage = "packagesMustBeLastOnPath()";

TEST_F(PathAlterationRulesTest, DecideAboutEachEntryInTheOrderOfTheRequest) {
    struct Case {
        std::vector<std::string_view> request;
        Outcome expected;
    };
    const std::vector<Case> cases{
        {{}, {"", "", {}}},
        {{"/two", "/one", "/two"}, {"/two /one /two", "", {}}},
        {{"/two", "", "/one"}, {"/two /one", "", {}}}, // a folder that could not be read
        {{"/one/resources", "/one/+pack", "/one", "/one/private"},
         {"/one",
          "",
          {"resourcesDirectoriesNotAllowedOnPath(memory:///one/resources)",
           "packageDirectoriesNotAllowedOnPath(memory:///one/+pack)",
           "privateDirectoriesNotAllowedOnPath(memory:///one/private)"}}},
        {{"/one/@Class", "/one/@Class/@Inner"},
         {"",
          "",
          {"methodDirectoriesNotAllowedOnPath(memory:///one/@Class)",
           "methodDirectoriesNotAllowedOnPath(memory:///one/@Class/@Inner)"}}},
        // The kind of a folder goes before the package it lies in; a package gets one message for a folder, not two.
        {{"/p/+pack", "/p/member", "/p"},
         {"/p",
          "p",
          {"packageDirectoriesNotAllowedOnPath(memory:///p/+pack)",
           "packageMemberFoldersNotAllowedOnPath(memory:///p/member, 'p@1.2.0-rc', memory:///p)"}}},
        {{"/p/unlisted"},
         {"", "", {"packageMemberFoldersNotAllowedOnPath(memory:///p/unlisted, 'p@1.2.0-rc', memory:///p)"}}},
        {{"/gone", "/two", "/gone/inside"},
         {"/two",
          "",
          {"uninstalledPackagesNotAllowedOnPath(memory:///gone)",
           "uninstalledPackagesNotAllowedOnPath(memory:///gone/inside)"}}},
        {{"/one", "/q", "/p"}, {"/one /q /p", "qp", {}}},
        {{"/q", "/one", "/p", "/two"}, {"/q /one /p /two", "qp", {lastMessage}}},
        {{"/last", "/two"}, {"/last /two", "l", {lastMessage}}},
        {{"/front", "/two", "/q", "/front", "/q"}, {"/front /two /q /front /q", "fq", {}}},
        // What is left out breaks no order.
        {{"/q", "/p/member", "/gone", ""},
         {"/q",
          "q",
          {"packageMemberFoldersNotAllowedOnPath(memory:///p/member, 'p@1.2.0-rc', memory:///p)",
           "uninstalledPackagesNotAllowedOnPath(memory:///gone)"}}},
        {{"/q", "/one/private", "/two"},
         {"/q /two", "q", {"privateDirectoriesNotAllowedOnPath(memory:///one/private)", lastMessage}}},
    };
    for (const auto& [request, expected] : cases) {
        const Outcome outcome = Request(request);
        SCOPED_TRACE(testing::PrintToString(request));
        EXPECT_EQ(outcome.entries, expected.entries);
        EXPECT_EQ(outcome.components, expected.components);
        EXPECT_EQ(outcome.messages, expected.messages);
    }
}

TEST(PathAlterationRulesDeathTest, AnEntryThatIsNoSpecialFolderEndsTheProcess) {
    for (const int type : {0, 6}) {
        Notification notification;
        EXPECT_DEATH(
            AddErrorToNotificationForProcessingNonMainEntry(notification, static_cast<PathEntryType>(type), u"/folder"),
            "All illegal path entry types for addpath should have been handled\\.\n"
            "  in SearchPathPublicFunctions, line [0-9]+, "
            ".*AddErrorToNotificationForProcessingNonMainEntry\\(.*Notification.*PathEntryType.*\\)");
    }
}

} // namespace
} // namespace PathManagement::detail
