#include "PathWorld.h"

#include "foundation/diagnostics/ThreadName.h"
#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"

#include <gtest/gtest.h>

namespace PathManagement {
namespace {

using CaseRule = Tolvex::MemoryStorage::CaseRule;

TEST(Path, FindsAnEntryBySpellingAsThePolicyCompares) {
    PathWorld elsewhere({"/elsewhere/m/b.kx"}, CaseRule::insensitive);
    for (const auto& [caseRule, isMixed] : {std::pair{CaseRule::sensitive, false}, std::pair{CaseRule::sensitive, true},
                                            std::pair{CaseRule::insensitive, false}}) {
        PathWorld world({"/Lib/m/a.kx", "/other/m/b.kx"}, caseRule);
        const auto path =
            world.PathOf({isMixed ? elsewhere.Entry("/elsewhere/m") : world.Entry("/other/m"), world.Entry("/Lib/m")});
        const auto find = [&](const Tolvex::AbsoluteIRI& location, FilenameMatchingPolicy policy) {
            return Where(path->GetPathEntryFromAbsoluteIRI(location, policy));
        };
        const std::string_view ifIgnored = caseRule == CaseRule::insensitive ? "/Lib/m" : "-";
        for (const auto* spelling : {"/lib/m", "/Lib/M"}) {
            const auto location = Tolvex::MemoryStorage::GetIRI(spelling);
            EXPECT_EQ(find(location, FilenameMatchingPolicy::exact), "-");
            EXPECT_EQ(find(location, FilenameMatchingPolicy::ignoreCase), "/Lib/m");
            EXPECT_EQ(find(location, FilenameMatchingPolicy::native), ifIgnored);
        }
        for (std::uint32_t policy = 0; policy < 3; ++policy) {
            const auto each = static_cast<FilenameMatchingPolicy>(policy);
            EXPECT_EQ(find(Tolvex::MemoryStorage::GetIRI("/Lib/m"), each), "/Lib/m");
            EXPECT_EQ(find(Tolvex::AbsoluteIRI("file", u"/Lib/m"), each), "-") << "of another storage system";
        }
    }
}

TEST(Path, WalksUntilToldToStopWhicheverWalkIsAsked) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx", "/n/c.kx"});
    const auto path = world.PathOf({"/m", "/n"});
    for (const auto walk : {&IPath::ForEachEntry, &IPath::ConcurrentForEachEntry})
        for (const auto* stop : {"/m/+p", "nowhere"}) {
            const auto isStop = [&](const auto& entry) { return Where(entry) == stop; };
            EXPECT_EQ((*path.*walk)(SearchScope::All(), isStop), stop == std::string_view("/m/+p"));
        }
}

TEST(Path, LetsItsEntriesDieOnTheWorker) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx", "/n/c.kx"});
    std::string ends;
    const auto connection = world.events->Subscribe<PathEntryWillBeDestroyedEvent>(
        [&](const auto&) { ends += Tolvex::getCurrentThreadName() + ";"; });
    static_cast<void>(world.PathOf({"/m", "/n"}));
    world.queue->WaitUntilIdle();
    const std::string worker = "PathManager async worker;";
    EXPECT_EQ(ends, worker + worker + worker);
}

} // namespace
} // namespace PathManagement
