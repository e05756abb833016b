#include "PathWorld.h"

#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace PathManagement {
namespace {

using enum PathEntryType;
using Tolvex::FromUtf8;
using CaseRule = Tolvex::MemoryStorage::CaseRule;

std::vector<ustring> Extensions(const std::vector<std::string_view>& texts) {
    std::vector<ustring> extensions;
    for (const auto text : texts)
        extensions.push_back(FromUtf8(text));
    return extensions;
}

struct LookUp {
    std::string_view name;
    std::vector<std::string_view> extensions;
    FilenameMatchingPolicy policy;
    std::string_view all; // what FindAll gives; FindFirst has to give the first of it
};

/// Names the case in test reports.
void PrintTo(const LookUp& lookUp, std::ostream* out) {
    *out << lookUp.name << " gives " << lookUp.all;
}

class PathEntryLookUp : public testing::TestWithParam<std::pair<CaseRule, LookUp>> {};

TEST_P(PathEntryLookUp, FindsByWantedExtensionsFirstAndItemOrderSecond) {
    const auto& [caseRule, lookUp] = GetParam();
    PathWorld world({"/m/Solve.kx", "/m/Solve.kxp", "/m/plot", "/m/.hidden", "/m/dots.in.name.kx", "/m/größe.kx",
                     "/m/end.", caseRule == CaseRule::sensitive ? "/m/solve.KX" : "/m/other.kx"},
                    caseRule);
    const auto entry = world.Entry("/m");
    const SearchTarget target(FromUtf8(lookUp.name), Extensions(lookUp.extensions));
    EXPECT_EQ(Names(entry->FindAll(target, lookUp.policy)), lookUp.all);
    const auto first = entry->FindFirst(target, lookUp.policy);
    EXPECT_EQ(first ? Names({first}) : "", lookUp.all.substr(0, lookUp.all.find(' ')));
}

constexpr auto exact = FilenameMatchingPolicy::exact;
constexpr auto ignoreCase = FilenameMatchingPolicy::ignoreCase;
constexpr auto native = FilenameMatchingPolicy::native;
constexpr auto sensitive = CaseRule::sensitive;
constexpr auto insensitive = CaseRule::insensitive;

INSTANTIATE_TEST_SUITE_P(
    Cases, PathEntryLookUp,
    testing::Values(std::pair{sensitive, LookUp{"Solve", {".kx", ".kxp"}, exact, "Solve.kx Solve.kxp"}},
                    std::pair{sensitive, LookUp{"Solve", {".kxp", ".kx"}, exact, "Solve.kxp Solve.kx"}},
                    std::pair{sensitive, LookUp{"solve", {".kx"}, exact, ""}},
                    std::pair{sensitive, LookUp{"solve", {".KX"}, exact, "solve.KX"}},
                    std::pair{sensitive, LookUp{"SOLVE", {".kx"}, ignoreCase, "Solve.kx solve.KX"}},
                    std::pair{sensitive, LookUp{"SOLVE", {".kx"}, native, ""}},
                    std::pair{insensitive, LookUp{"SOLVE", {".Kx"}, native, "Solve.kx"}},
                    std::pair{insensitive, LookUp{"SOLVE", {".kx"}, exact, ""}},
                    std::pair{sensitive, LookUp{"Solve", {".kx", ".kx"}, exact, "Solve.kx Solve.kx"}},
                    std::pair{sensitive, LookUp{"Solve", {}, ignoreCase, ""}},
                    std::pair{sensitive, LookUp{"plot", {".kx", ""}, exact, "plot"}},
                    std::pair{sensitive, LookUp{".hidden", {""}, exact, ".hidden"}},
                    std::pair{sensitive, LookUp{"", {".hidden"}, exact, ""}},
                    std::pair{sensitive, LookUp{"dots.in.name", {".kx"}, exact, "dots.in.name.kx"}},
                    std::pair{sensitive, LookUp{"dots", {".in.name.kx"}, exact, ""}},
                    std::pair{sensitive, LookUp{"end", {"."}, exact, "end."}},
                    std::pair{sensitive, LookUp{"GRÖSSE", {".kx"}, ignoreCase, ""}},
                    std::pair{sensitive, LookUp{"GRÖẞE", {".kx"}, ignoreCase, "größe.kx"}}));

TEST(PathEntry, SortsItemsByNormalisedStemThenStemThenExtension) {
    PathWorld world({"/m/b.kx", "/m/a.kx", "/m/A.txt", "/m/A.kx", "/m/a", "/m/B.kx", "/m/aa.kx", "/m/_.kx"});
    EXPECT_EQ(Names(*world.Entry("/m")->GetPathItems()), "_.kx A.kx A.txt a a.kx aa.kx B.kx b.kx");
}

TEST(PathEntry, HandsOutItemsAndMatchersThatOutliveIt) {
    PathWorld world({"/m/solve.kx"});
    auto entry = world.Entry("/m");
    const auto items = entry->GetPathItems();
    const auto matcher = entry->CreateFilenameMatcher(ignoreCase);
    entry.reset();
    EXPECT_EQ(Tolvex::ToUtf8(items->front()->GetIRI().toString()), "memory:///m/solve.kx");
    EXPECT_TRUE((*matcher)(u"Solve", u"sOLVE"));
    EXPECT_FALSE((*matcher)(u"Solve", u"Solv"));
}

TEST(PathEntry, WalksInFixedOrderAndStopsWhereToldTo) {
    PathWorld world({"/m/resources/r.xml", "/m/private/p.kx", "/m/@c/c.kx", "/m/@c/@d/d.kx", "/m/@c/private/cp.kx",
                     "/m/+q/q.kx", "/m/+p/x.kx", "/m/+p/+n/n.kx", "/m/+p/@k/k.kx", "/m/plain/no.kx"});
    const auto entry = world.Entry("/m");
    const auto walk = [&](SearchScope scope, std::string_view stopAt = "") {
        std::string visited;
        const bool stopped = entry->ForEachEntry(scope, [&](const auto& each) {
            visited += (visited.empty() ? "" : " ") + Where(each);
            return Where(each) == stopAt;
        });
        return visited + (stopped ? " stop" : "");
    };
    EXPECT_EQ(walk(SearchScope::All()), "/m /m/+p /m/+p/+n /m/+p/@k /m/+q /m/@c /m/@c/@d /m/@c/private /m/private "
                                        "/m/resources");
    EXPECT_EQ(walk({privateFolder, packageFolder}, "/m/@c/private"), "/m/+p /m/+p/+n /m/+q /m/@c/private stop");
    EXPECT_EQ(walk({}), "");
    EXPECT_THROW(entry->ForEachEntry({uddClassFolder}, [](const auto&) -> bool { throw std::runtime_error("no"); }),
                 std::runtime_error);
}

TEST(PathEntry, AnnouncesItsEndOnceWhileItIsWhole) {
    PathWorld world({"/m/a.kx", "/m/+p/b.kx"});
    std::vector<std::string> ends;
    const auto connection = world.events->Subscribe<PathEntryWillBeDestroyedEvent>([&](const auto& event) {
        ends.push_back(Tolvex::ToUtf8(event.GetCanonicalIRI().getPath()) + ":" +
                       Names(*event.GetEntry().GetPathItems()));
        if (event.GetEntry().GetPathEntryType() == mainFolder)
            throw std::runtime_error("a listener that fails must not keep the others from hearing");
    });
    auto entry = world.Entry("/m");
    auto copy = entry;
    entry.reset();
    EXPECT_TRUE(ends.empty());
    copy.reset();
    EXPECT_EQ(ends, (std::vector<std::string>{"/m:a.kx", "/m/+p:b.kx"}));
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 0u);
}

class ScriptedObserver : public Tolvex::IFileFolderObserver {
public:
    ScriptedObserver(bool changed, bool coversChildren) : changed(changed), coversChildren(coversChildren) {}
    bool hasChanged() const noexcept override { return changed; }
    bool observesChildFoldersToo() const noexcept override { return coversChildren; }

private:
    bool changed;
    bool coversChildren;
};

TEST(PathEntry, AsksItsChildrenOnlyWhenItsObserverDoesNotCoverThem) {
    const auto events = Tolvex::createEventMgr();
    const auto make = [&](PathEntryType type, bool changed, bool covers, PathEntryChildren children = {}) {
        return std::make_shared<const PathEntry>(PathWorld::At("/m"), ustring(), type, std::move(children),
                                                 std::span<const ustring_view>(), Tolvex::PathComparator(),
                                                 std::make_unique<ScriptedObserver>(changed, covers), events);
    };
    for (const PathEntryType kind : {packageFolder, methodFolder, uddClassFolder, privateFolder, resourcesFolder})
        for (const bool childChanged : {false, true}) {
            PathEntryChildren children;
            PathEntryFactory::PushChildEntryToCurrentPathEntry(children, make(kind, childChanged, false));
            EXPECT_EQ(make(mainFolder, false, false, children)->IsOutOfDate(), childChanged);
            EXPECT_FALSE(make(mainFolder, false, true, children)->IsOutOfDate());
            EXPECT_TRUE(make(mainFolder, true, true, children)->IsOutOfDate());
        }
}

using PathEntryDeathTest = testing::Test;

TEST(PathEntryDeathTest, UnknownPolicyEndsTheProcess) {
    PathWorld world({"/m/a.kx"});
    const auto entry = world.Entry("/m");
    const auto path = world.PathOf({entry});
    const auto unknown = static_cast<FilenameMatchingPolicy>(3);
    const auto text =
        "Unrecognized FilenameMatchingPolicy passed to GetFilenameMatcher\n"
        "  in PathEntry, line [0-9]+, .*PathEntry::GetFilenameMatcher\\(.*FilenameMatchingPolicy\\) const\n";
    const SearchTarget target(u"a", Tolvex::GetCodeFileExtensions());
    EXPECT_DEATH(static_cast<void>(entry->FindFirst(target, unknown)), text);
    EXPECT_DEATH(static_cast<void>(entry->FindAll(target, unknown)), text);
    EXPECT_DEATH(static_cast<void>(entry->CreateFilenameMatcher(unknown)), text);
    EXPECT_DEATH(static_cast<void>(path->FindFirstInScope({mainFolder}, target, unknown)), text);
    EXPECT_DEATH(static_cast<void>(path->GetPathEntryFromAbsoluteIRI(entry->GetIRI(), unknown)), text);
}

} // namespace
} // namespace PathManagement
