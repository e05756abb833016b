#include "PathAlteration.h"
#include "Session.h"

#include "path_interfaces/PathAlterationExceptions.h"
#include "path_interfaces/events/PathChangeEvent.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace TolvexPath {
namespace {

using Tolvex::Notification;

std::vector<std::string> GetNames(const Notification& problems) {
    std::vector<std::string> names;
    problems.ForEach([&names](const Notification::Entry& problem) {
        names.push_back(problem.message.GetFullName());
        EXPECT_TRUE(problem.message.arguments.empty());
        EXPECT_EQ(Tolvex::MessageSeverity::error, problem.severity);
        return false;
    });
    return names;
}

TEST(PathAlterationTest, TellsARefusalBehindWhatTheChangeTold) {
    const auto alter = [](const auto& refusal) {
        return GetNames(AlterPath([&](Notification& problems) {
            problems.Add({"TOLVEX:tpath", "packagesMustBeLastOnPath", {}});
            throw refusal;
        }));
    };
    using Names = std::vector<std::string>;
    const std::string told = "TOLVEX:tpath:packagesMustBeLastOnPath";
    EXPECT_EQ((Names{told, "TOLVEX:tpath:PathAlterationNotSupported"}),
              alter(PathManagement::PathAlterationNotSupportedException()));
    EXPECT_EQ((Names{told, "TOLVEX:tpath:UnableToModifyTolvexpath"}),
              alter(PathManagement::RecursivePathChangeException()));
    EXPECT_EQ((Names{told, "TOLVEX:legacy_two_part:nomem"}), alter(std::bad_alloc()));
    EXPECT_THROW(static_cast<void>(alter(std::runtime_error("another"))), std::runtime_error);
    EXPECT_TRUE(AlterPath([](Notification&) {}).IsEmpty());
}

TEST(PathAlterationTest, AChangeInsideAChangeIsToldAndTheOuterOneIsMade) {
    Session session(PathManagement::CurrentFolderPolicy::noCurrentFolder);
    const auto root = Tolvex::CanonicalAbsoluteIRI(Tolvex::AbsoluteIRI("file", u"/"), u"");
    const auto set = [&](const std::vector<Tolvex::CanonicalAbsoluteIRI>& folders) {
        return GetNames(AlterPath([&](Notification& problems) {
            session.GetManager().SetPathEntries(PathManagement::CanonicalIRIRange(folders), problems);
        }));
    };
    std::vector<std::string> inner;
    const auto connection = session.GetEvents().Subscribe<PathManagement::PathChangeEvent>([&](const auto& event) {
        if (event.GetStage() == PathManagement::PathChangeEvent::Stage::afterChange)
            inner = set({});
    });
    EXPECT_TRUE(set({root}).empty());
    EXPECT_EQ(std::vector<std::string>{"TOLVEX:tpath:UnableToModifyTolvexpath"}, inner);
    EXPECT_EQ(std::vector{root}, *session.GetManager().GetPathIRIs());
}

} // namespace
} // namespace TolvexPath
