#include "PathWorld.h"

#include "path_utilities/ConcatenatedPath.h"
#include "path_utilities/DeduplicatedPath.h"
#include "path_utilities/MultiMaskedPath.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <atomic>
#include <set>

namespace PathManagement {
namespace {

using Paths = std::vector<std::shared_ptr<const IPath>>;

/// What a view has to show: entries in their order, each with the path that it comes from.
struct Shown {
    std::shared_ptr<const IPathEntry> entry;
    const IPath* origin;
};

std::vector<Shown> ShowAll(const Paths& paths) {
    std::vector<Shown> shown;
    for (const auto& path : paths)
        path->ForEachEntry(SearchScope::All(), [&](const auto& entry) {
            shown.push_back({entry, path.get()});
            return false;
        });
    return shown;
}

PathEntryVector AllEntriesOf(const IPath& path) {
    PathEntryVector all;
    path.ForEachEntry(SearchScope::All(), [&](const auto& entry) { return all.push_back(entry), false; });
    return all;
}

std::vector<Shown> WithoutRepeats(std::vector<Shown> shown) {
    std::set<Tolvex::AbsoluteIRI> seen;
    std::erase_if(shown, [&](const Shown& one) { return !seen.insert(one.entry->GetIRI()).second; });
    return shown;
}

/// Without entries at and below some locations.
std::vector<Shown> Without(std::vector<Shown> shown, const PathEntryVector& hidden) {
    std::erase_if(shown, [&](const Shown& one) {
        for (const auto& mask : hidden) {
            std::shared_ptr<const IPathEntry> above = one.entry;
            for (; above; above = one.origin->GetParentEntryForEntry(*above))
                if (above->GetIRI() == mask->GetIRI())
                    return true;
        }
        return false;
    });
    return shown;
}

void ExpectShows(const IPath& view, const std::vector<Shown>& shown, const PathEntryVector& everything) {
    PathEntryVector expected;
    PathEntryVector mains;
    PathEntryVector methods;
    PathEntryVector inPackages;
    for (const Shown& one : shown) {
        expected.push_back(one.entry);
        if (std::ranges::count(*one.origin->GetMainEntries(), one.entry) != 0)
            mains.push_back(one.entry);
        if (one.entry->GetPathEntryType() == PathEntryType::methodFolder)
            methods.push_back(one.entry);
        if (one.entry->GetIRI().getBaseName() == u"+p")
            inPackages.push_back(one.entry);
    }
    ASSERT_EQ(AllEntriesOf(view), expected);
    for (std::size_t wanted = 0; wanted < expected.size(); ++wanted) {
        std::atomic<std::size_t> visits = 0;
        const auto stop = [&](const auto&) { return visits++ == wanted; };
        EXPECT_TRUE(view.ForEachEntry(SearchScope::All(), stop));
        EXPECT_EQ(visits, wanted + 1);
        EXPECT_FALSE(view.ConcurrentForEachEntry(SearchScope::All(), [&](const auto&) { return ++visits, false; }));
        EXPECT_EQ(visits, wanted + 1 + expected.size());
    }
    EXPECT_EQ(*view.GetMainEntries(), mains);
    EXPECT_EQ(view.GetMainEntries(), view.GetMainEntries()) << "made once";
    EXPECT_EQ(view.GetMethodEntries(), methods);
    EXPECT_EQ(view.GetMethodEntriesByName(SearchScope::All(), u"c"), methods);
    EXPECT_EQ(view.GetPartiallyMatchingEntries(SearchScope::All(), u"+p"), inPackages);
    const auto placeOf = [&](const IPathEntry& entry) {
        return std::ranges::find(shown, entry.GetIRI(), [](const Shown& one) { return one.entry->GetIRI(); });
    };
    for (const auto& entry : everything) {
        const auto place = placeOf(*entry);
        const bool isThere = place != shown.end();
        EXPECT_EQ(view.IsEntryOnPath(*entry), isThere);
        EXPECT_EQ(view.GetPathEntryFromAbsoluteIRI(entry->GetIRI()), isThere ? place->entry : nullptr);
        EXPECT_EQ(view.GetPathEntryFromAbsoluteIRI(entry->GetIRI(), FilenameMatchingPolicy::exact),
                  isThere ? place->entry : nullptr);
        const auto twin = std::ranges::find(shown, Tolvex::FoldCase(entry->GetIRI().getPath()), [](const Shown& one) {
            return Tolvex::FoldCase(one.entry->GetIRI().getPath());
        });
        EXPECT_EQ(view.GetPathEntryFromAbsoluteIRI(entry->GetIRI(), FilenameMatchingPolicy::ignoreCase),
                  twin == shown.end() ? nullptr : twin->entry);
        EXPECT_EQ(view.GetMainEntryForEntry(*entry), isThere ? place->origin->GetMainEntryForEntry(*entry) : nullptr);
        EXPECT_EQ(view.GetParentEntryForEntry(*entry),
                  isThere ? place->origin->GetParentEntryForEntry(*entry) : nullptr);
        EXPECT_EQ(view.FirstEntryIsBeforeSecondOnPath(*entry, *everything.front()),
                  isThere && place < placeOf(*everything.front()));
    }
    for (const auto* name : {u"a", u"B", u"none", u"+p/a"})
        for (const SearchScope scope : {SearchScope::All(), SearchScope{PathEntryType::packageFolder}}) {
            const ustring_view stem = ustring_view(name).substr(ustring_view(name).rfind(u'/') + 1);
            const SearchTarget target(name, Tolvex::GetCodeFileExtensions());
            std::vector<std::string> files;
            for (const Shown& one : shown)
                if (scope.Contains(one.entry->GetPathEntryType()) &&
                    (stem == name || one.entry->GetIRI().getBaseName() == u"+p"))
                    for (const auto& item : one.entry->FindAll(target.WithName(stem), FilenameMatchingPolicy::exact))
                        files.push_back(File(FoundItem(one.entry, item)));
            std::vector<std::string> found;
            for (const FoundItem& item : view.FindAllInScope(scope, target, FilenameMatchingPolicy::exact))
                found.push_back(File(item));
            EXPECT_EQ(found, files);
            EXPECT_EQ(File(view.FindFirstInScope(scope, target, FilenameMatchingPolicy::exact)),
                      files.empty() ? "-" : files.front());
        }
}

/// Folders of which two environments hold entries: the second after some files have come and gone.
class TwoWorlds {
public:
    TwoWorlds()
        : before({"/m0/a.kx", "/m0/+p/a.kx", "/m0/@c/B.kx", "/m1/B.kx", "/m1/private/a.kx", "/m2/+p/@c/a.kxp",
                  "/m2/a.kxa", "/m3/", "/M0/+p/a.kx"}),
          after(before.storage) {
        for (const auto* folder : folders)
            kept.push_back(before.Entry(folder));
        for (const auto* change : {"/m0/+p/B.kx", "/m1/a.kx", "/m3/a.kx"})
            before.storage->Add(change);
        before.storage->Remove("/m0/a.kx");
        before.storage->GetClock().Advance(std::chrono::seconds(1));
    }

    /// A path of some folders, none twice nor below another, as the first or the second environment sees it.
    std::shared_ptr<const IPath> AnyPath() {
        const bool isLater = *rc::gen::arbitrary<bool>();
        PathEntryVector entries;
        std::set<std::string> taken;
        for (int count = *rc::gen::inRange(0, 5); count > 0; --count) {
            const auto folder = *rc::gen::inRange<std::size_t>(0, folders.size());
            if (taken.insert(std::string(folders[folder], 3)).second)
                entries.push_back(isLater ? after.Entry(folders[folder]) : kept[folder]);
        }
        return before.PathOf(entries);
    }

    PathEntryVector Everything() {
        PathEntryVector all;
        for (const auto* folder : folders)
            after.Entry(folder)->ForEachEntry(SearchScope::All(), [&](const auto& entry) {
                all.push_back(entry);
                return false;
            });
        return all;
    }

    // A package and a private folder stand by themselves here and below a main folder as well.
    const std::vector<const char*> folders{"/m0", "/M0", "/m1", "/m2", "/m3", "/m0/+p", "/m1/private"};
    PathWorld before;
    PathWorld after;
    PathEntryVector kept;
};

RC_GTEST_PROP(PathViews, ShowWhatTheirDefinitionSays, ()) {
    TwoWorlds worlds;
    const Paths paths{worlds.AnyPath(), worlds.AnyPath(), worlds.AnyPath()};
    const PathEntryVector everything = worlds.Everything();
    ExpectShows(ConcatenatedPath(paths[0], paths[1]), ShowAll({paths[0], paths[1]}), everything);
    ExpectShows(DeduplicatedPath(Paths(paths)), WithoutRepeats(ShowAll(paths)), everything);
    PathEntryVector hidden;
    for (const auto& entry : everything)
        if (*rc::gen::weightedElement<bool>({{8, false}, {1, true}}))
            hidden.push_back(entry);
    ExpectShows(MultiMaskedPath(paths[0], hidden), Without(ShowAll({paths[0]}), hidden), everything);

    // Views of views; a path whose repeats are dropped has none by itself.
    const auto masked = std::make_shared<const MultiMaskedPath>(paths[2], hidden);
    const auto rest = std::make_shared<const MultiMaskedPath>(paths[1], AllEntriesOf(*paths[0]));
    const auto joined = std::make_shared<const ConcatenatedPath>(paths[0], rest);
    const Paths combined{masked, joined};
    const auto merged = std::make_shared<const DeduplicatedPath>(Paths(combined));
    ExpectShows(*merged, WithoutRepeats(ShowAll(combined)), everything);
    ExpectShows(MultiMaskedPath(merged, hidden), Without(ShowAll({merged}), hidden), everything);
}

} // namespace
} // namespace PathManagement
