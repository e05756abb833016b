// On the machine's own disk: the moment after a change a refresh sees it, however small the grain of time stamps is.

#include "Host.h"

#include "path_interfaces/PathAlterationExceptions.h"

namespace PathManagement {
namespace {

class FreshAnswersTest : public testing::Test {
protected:
    std::string Ask(const std::string& name) {
        manager->RefreshPath(RefreshType::knownChanges);
        return host.Find(*manager, name);
    }

    Host host;
    std::unique_ptr<IMainSearchPathManager> manager = host.CreateManager();
};

TEST_F(FreshAnswersTest, EveryKindOfFolderShowsWhatWasJustDoneToIt) {
    host.Write("main/keep.kx");
    host.Set(*manager, {"main"});
    for (const auto& entry : *manager->GetPath()->GetMainEntries())
        EXPECT_EQ(GetPathEntryFactory().GetEntryState(*entry).level, FolderMonitoringLevel::notification);
    for (const std::string folder :
         {"current", "main", "main/+pack", "main/+pack/@Class", "main/@Class", "main/@Class/@Inner",
          "main/@Class/private", "main/private", "main/resources", "current/private", "current/+pack"}) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(Ask("f"), "-");
        host.Write(folder + "/f.kx"); // makes the folder, too
        EXPECT_EQ(Ask("f"), folder + "/f.kx");
        host.Rename(folder + "/f.kx", folder + "/g.kx");
        EXPECT_EQ(Ask("f"), "-");
        EXPECT_EQ(Ask("g"), folder + "/g.kx");
        host.Write(folder + "/g.kxp");
        host.Remove(folder + "/g.kx");
        EXPECT_EQ(Ask("g"), folder + "/g.kxp");
        host.Remove(folder + "/g.kxp");
        host.MakeFolder(folder + "/g.kx"); // not a file
        EXPECT_EQ(Ask("g"), "-");
        host.Remove(folder + "/g.kx");
        if (folder.find('/') == std::string::npos)
            continue;
        host.Write(folder + "/f.kx");
        EXPECT_EQ(Ask("f"), folder + "/f.kx");
        host.Rename(folder, "main/plain"); // the mark is in the name
        EXPECT_EQ(Ask("f"), "-");
        host.Rename("main/plain", folder);
        EXPECT_EQ(Ask("f"), folder + "/f.kx");
        host.Remove(folder);
        EXPECT_EQ(Ask("f"), "-");
    }
}

TEST_F(FreshAnswersTest, AnAnswerThatIsHeldDoesNotChange) {
    host.Write("main/f.kx");
    host.Set(*manager, {"main"});
    const auto held = manager->GetPath();
    host.Remove("main/f.kx");
    EXPECT_EQ(host.Find(*manager, "f"), "main/f.kx") << "not refreshed yet";
    EXPECT_EQ(Ask("f"), "-");
    EXPECT_EQ(held->GetMainEntries()->back()->GetPathItems()->size(), 1U);
}

TEST_F(FreshAnswersTest, TheWorkingFolderStandsInFront) {
    host.Write("main/f.kx");
    host.Write("other/f.kx");
    host.Write("main/private/p.kx");
    host.Set(*manager, {"main", "other"});
    const std::vector<std::pair<std::string, std::string>> steps{
        {"other", "other/f.kx"}, {"current", "main/f.kx"}, {"main/private", "main/f.kx"}, {"other", "other/f.kx"}};
    for (const auto& [folder, answer] : steps) {
        host.Enter(folder);
        EXPECT_EQ(host.Find(*manager, "f"), answer) << "in " << folder;
        const bool isInFront = host.Find(*manager, "p", {PathEntryType::mainFolder}) == "main/private/p.kx";
        EXPECT_EQ(isInFront, folder == "main/private") << "in " << folder;
    }
    host.Remove("other/f.kx");
    EXPECT_EQ(Ask("f"), "main/f.kx");
}

/// What may happen to a folder between two refreshes, and the way back.
struct Absence {
    std::string title;
    std::function<void(const Host&)> begin;
    std::function<void(const Host&)> end;
};

const std::vector<Absence>& GetAbsences() {
    const auto write = [](const Host& host) { host.Write("way/main/f.kx"); };
    static const std::vector<Absence> absences{
        {"removed", [](const Host& host) { host.Remove("way/main"); }, write},
        {"renamed", [](const Host& host) { host.Rename("way/main", "way/gone"); },
         [](const Host& host) { host.Rename("way/gone", "way/main"); }},
        {"removed with the folder above", [](const Host& host) { host.Remove("way"); }, write},
        {"the folder above renamed", [](const Host& host) { host.Rename("way", "detour"); },
         [](const Host& host) { host.Rename("detour", "way"); }},
        {"a file in its place",
         [](const Host& host) {
             host.Remove("way/main");
             host.Write("way/main");
         },
         [write](const Host& host) {
             host.Remove("way/main");
             write(host);
         }},
    };
    return absences;
}

TEST_F(FreshAnswersTest, AFolderThatVanishesKeepsItsPlaceAndComesBackUnderEveryPolicy) {
    host.Write("way/main/f.kx");
    host.Write("other/f.kx");
    host.Set(*manager, {"way/main", "other"});
    for (const auto policy :
         {PathManagerMutabilityPolicy::allAlterations, PathManagerMutabilityPolicy::noAddingOrRemoving}) {
        const auto token = manager->PushMutabilityPolicy(policy);
        for (const Absence& absence : GetAbsences()) {
            SCOPED_TRACE(absence.title + ", policy " + std::to_string(static_cast<int>(policy)));
            EXPECT_EQ(Ask("f"), "way/main/f.kx");
            absence.begin(host);
            EXPECT_EQ(Ask("f"), "other/f.kx");
            EXPECT_EQ(manager->GetPathIRIs()->size(), 2U);
            EXPECT_EQ(host.Set(*manager, {"way/main", "other"}), "") << "what was read may be set again";
            EXPECT_EQ(manager->GetPathIRIs()->size(), 2U);
            absence.end(host);
            EXPECT_EQ(Ask("f"), "way/main/f.kx");
        }
    }
    const auto token = manager->PushMutabilityPolicy(PathManagerMutabilityPolicy::noAddingOrRemoving);
    EXPECT_THROW(host.Set(*manager, {"other"}), PathAlterationNotSupportedException);
}

TEST_F(FreshAnswersTest, AFolderThatWasNotThereMayBeAskedForAgain) {
    host.Write("other/f.kx");
    const std::vector<std::string> wanted{"way/late", "other"};
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(host.Set(*manager, wanted), "nameNonexistentOrNotADirectory ");
        EXPECT_EQ(host.Find(*manager, "f"), "other/f.kx");
        host.Write("way/late/f.kx");
        EXPECT_EQ(Ask("f"), "other/f.kx") << "nobody has asked for it since";
        EXPECT_EQ(host.Set(*manager, wanted), "");
        EXPECT_EQ(host.Find(*manager, "f"), "way/late/f.kx");
        host.Remove("way/late/f.kx");
        EXPECT_EQ(Ask("f"), "other/f.kx");
        host.Set(*manager, {"other"});
        host.Remove("way");
    }
}

} // namespace
} // namespace PathManagement
