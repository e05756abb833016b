#include "PathModel.h"
#include "PathWorld.h"

#include "foundation/text/NameHash.h"
#include "path_model/Path.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

namespace PathManagement {
namespace {

using CaseRule = Tolvex::MemoryStorage::CaseRule;

// Few names, so that they meet: other case, one in two spellings, letters that fold alike, names that begin alike.
const std::vector<std::string> mainNames{"a", "B", "lib", "Lib", "größe"};
const std::vector<std::string> specialNames{"+p", "+P", "+pq", "@c", "@C", "private", "resources", "plain", "@"};
const std::vector<std::string> stems{"x", "X",  "solve", "Solve", "σ",       "ς", "ß",
                                     "ẞ", ".x", "a.b",   "\xff",  "e\u0301", "é"};
const std::vector<std::string> extensions{".kx", ".KX", ".kxp", ".kxa", "", ".", ".txt"};

template <class T>
rc::Gen<T> OneOf(const std::vector<T>& values) {
    return rc::gen::elementOf(values);
}

/// The same without names that a disk which ignores case would take for one.
const std::vector<std::string> specialNamesWithoutTwins{"+p", "+pq", "@c", "private", "resources", "plain", "@"};

std::string FolderUnder(const std::string& main, bool withFoldedTwins) {
    std::string folder = main;
    for (int depth = *rc::gen::weightedElement<int>({{5, 0}, {4, 1}, {2, 2}, {1, 3}}); depth > 0; --depth)
        folder += "/" + *OneOf(withFoldedTwins ? specialNames : specialNamesWithoutTwins);
    return folder;
}

/// A tree of main folders in memory; `roots` keeps the same main name in different places apart.
struct Tree {
    std::vector<std::string> mains;
    std::vector<std::string> files;
};

Tree AnyTree(bool withFoldedTwins) {
    Tree tree;
    const int count = *rc::gen::inRange(1, 7);
    for (int i = 0; i < count; ++i)
        tree.mains.push_back("/r" + std::to_string(i) + "/" + *OneOf(mainNames));
    std::set<std::string> taken;
    for (const std::string& main : tree.mains)
        for (int file = *rc::gen::inRange(0, 12); file > 0; --file) {
            const std::string path = FolderUnder(main, withFoldedTwins) + "/" + *OneOf(stems) + *OneOf(extensions);
            const std::string key = withFoldedTwins ? path : Tolvex::ToUtf8(Tolvex::FoldCase(Tolvex::FromUtf8(path)));
            if (taken.insert(key).second)
                tree.files.push_back(path);
        }
    for (const std::string& main : tree.mains)
        if (taken.insert(main + "/always.kx").second)
            tree.files.push_back(main + "/always.kx");
    return tree;
}

ModelQuestion AnyQuestion() {
    ModelQuestion question;
    std::string name = *OneOf(stems);
    for (int depth = *rc::gen::weightedElement<int>({{6, 0}, {2, 1}, {1, 2}}); depth > 0; --depth)
        name = (*rc::gen::arbitrary<bool>() ? *OneOf(specialNames) : *OneOf(mainNames)) + "/" + name;
    question.name = Tolvex::FromUtf8(*rc::gen::weightedElement<std::string>({{8, ""}, {1, "/"}}) + name);
    for (int i = *rc::gen::inRange(0, 4); i > 0; --i)
        question.extensions.push_back(Tolvex::FromUtf8(*OneOf(extensions)));
    question.policy = static_cast<FilenameMatchingPolicy>(*rc::gen::inRange(0, 3));
    question.scope = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 6));
    return question;
}

SearchScope ScopeOf(const std::vector<int>& types) {
    SearchScope scope;
    for (const int type : types)
        scope.Add(static_cast<PathEntryType>(type));
    return scope;
}

void AskOne(const IPath& path, const ModelPath& model, const ModelQuestion& question, bool ignoresCase) {
    const SearchTarget target(question.name, question.extensions);
    const SearchScope scope = ScopeOf(question.scope);
    const std::vector<std::string> expected = ModelFind(model, question, ignoresCase);
    std::vector<std::string> found;
    for (const FoundItem& item : path.FindAllInScope(scope, target, question.policy))
        found.push_back(File(item));
    RC_ASSERT(found == expected);
    RC_ASSERT(File(path.FindFirstInScope(scope, target, question.policy)) ==
              (expected.empty() ? "-" : expected.front()));
}

/// Every question about entries, for every entry of the model.
void CompareEntries(const IPath& path, const ModelPath& model, bool ignoresCase) {
    PathEntryVector walked;
    path.ForEachEntry(SearchScope::All(), [&](const auto& entry) { return walked.push_back(entry), false; });
    RC_ASSERT(walked.size() == model.size());
    std::map<std::string, std::size_t> firstPlace;
    for (std::size_t i = 0; i < model.size(); ++i) {
        RC_ASSERT(Where(walked[i]) == Tolvex::ToUtf8(model[i].path));
        RC_ASSERT(walked[i]->GetPathEntryType() == model[i].type);
        firstPlace.emplace(Where(walked[i]), i);
    }
    const auto placeOf = [&](std::size_t i) { return firstPlace.at(Where(walked[i])); };
    std::string methods;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const ModelEntry& first = model[placeOf(i)];
        RC_ASSERT(path.IsEntryOnPath(*walked[i]));
        RC_ASSERT(Where(path.GetPathEntryFromAbsoluteIRI(walked[i]->GetIRI())) == Where(walked[i]));
        RC_ASSERT(path.GetMainEntryForEntry(*walked[i]) == path.GetMainEntries()->at(first.mainPlace));
        // A main entry has no parent, but another object for its folder is told which entry it is.
        const bool isThere = walked[i] == walked[placeOf(i)];
        const std::string parent = first.parent >= 0
                                       ? Tolvex::ToUtf8(model[static_cast<std::size_t>(first.parent)].path)
                                       : (isThere ? "-" : Where(walked[i]));
        RC_ASSERT(Where(path.GetParentEntryForEntry(*walked[i])) == parent);
        const std::size_t other = (i * 7 + 3) % model.size();
        RC_ASSERT(path.FirstEntryIsBeforeSecondOnPath(*walked[i], *walked[other]) == (placeOf(i) < placeOf(other)));
        if (first.type == PathEntryType::methodFolder)
            methods += (methods.empty() ? "" : " ") + Where(walked[i]);
    }
    RC_ASSERT(Where(path.GetMethodEntries()) == methods);
    for (const ustring& name : {ustring(u"c"), ustring(u"C")})
        for (const std::vector<int>& types : std::vector<std::vector<int>>{{2}, {4}, {2, 4}, {0, 1}}) {
            std::string expected;
            for (const ModelEntry& entry : model)
                if (SplitNames(entry.path).back() == u"@" + name && ScopeOf(types).Contains(entry.type))
                    expected += (expected.empty() ? "" : " ") + Tolvex::ToUtf8(entry.path);
            RC_ASSERT(Where(path.GetMethodEntriesByName(ScopeOf(types), name)) == expected);
        }
    const ustring partial = Tolvex::FromUtf8(*OneOf(mainNames) + "/" + *OneOf(specialNames));
    std::string expected;
    for (const ModelEntry& entry : model)
        if (ModelEndsWith(entry.path, SplitNames(partial), ignoresCase))
            expected += (expected.empty() ? "" : " ") + Tolvex::ToUtf8(entry.path);
    RC_ASSERT(Where(path.GetPartiallyMatchingEntries(SearchScope::All(), partial)) == expected);
}

void Compare(const IPath& path, const ModelPath& model, bool ignoresCase) {
    CompareEntries(path, model, ignoresCase);
    for (int i = 0; i < 12; ++i)
        AskOne(path, model, AnyQuestion(), ignoresCase);
}

/// Forwards to an entry of the library and hides what it is, as an entry of another module does.
class ForeignEntry final : public IPathEntry {
public:
    explicit ForeignEntry(std::shared_ptr<const IPathEntry> entry) : entry(std::move(entry)) {}
    PathEntryType GetPathEntryType() const override { return entry->GetPathEntryType(); }
    std::shared_ptr<const PathItemVector> GetPathItems() const override { return entry->GetPathItems(); }
    Tolvex::CanonicalAbsoluteIRI GetIRI() const override { return entry->GetIRI(); }
    ustring GetDescriptor() const override { return entry->GetDescriptor(); }
    std::shared_ptr<const IPathEntry> GetPrivateEntry() const override { return entry->GetPrivateEntry(); }
    std::shared_ptr<const IPathEntry> GetResourcesEntry() const override { return entry->GetResourcesEntry(); }
    std::shared_ptr<const PathEntryVector> GetPackageEntries() const override { return entry->GetPackageEntries(); }
    std::shared_ptr<const PathEntryVector> GetMethodEntries() const override { return entry->GetMethodEntries(); }
    std::shared_ptr<const PathEntryVector> GetUDDClassEntries() const override { return entry->GetUDDClassEntries(); }
    std::shared_ptr<const PathItem> FindFirst(const SearchTarget& target,
                                              FilenameMatchingPolicy policy) const override {
        return entry->FindFirst(target, policy);
    }
    PathItemVector FindAll(const SearchTarget& target, FilenameMatchingPolicy policy) const override {
        return entry->FindAll(target, policy);
    }
    bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override {
        return entry->ForEachEntry(scope, [&](const auto& each) {
            return callback(std::make_shared<const ForeignEntry>(each)); // nobody else holds it
        });
    }
    bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override {
        return ForEachEntry(scope, callback);
    }
    std::shared_ptr<const FilenameMatcher> CreateFilenameMatcher(FilenameMatchingPolicy policy) const override {
        return entry->CreateFilenameMatcher(policy);
    }
    bool IsOutOfDate() const override { return entry->IsOutOfDate(); }
    std::shared_ptr<const IPathEntry> GetUpdatedPathEntry(const IPathEntryFactory& factory,
                                                          const IFolderMonitor& monitor) const override {
        return entry->GetUpdatedPathEntry(factory, monitor);
    }
    const Tolvex::PathComparator& GetPathComparator() const override { return entry->GetPathComparator(); }

private:
    std::shared_ptr<const IPathEntry> entry;
};

/// A main entry and the tree as it was when the entry was made.
struct Snapshot {
    std::shared_ptr<const IPathEntry> entry;
    ustring folder;
    ModelTree tree;
};

ModelPath ModelOf(const std::vector<Snapshot>& mains) {
    ModelPath path;
    for (std::size_t place = 0; place < mains.size(); ++place)
        AppendEntries(mains[place].tree, mains[place].folder, place, -1, path);
    return path;
}

PathEntryVector EntriesOf(const std::vector<Snapshot>& mains) {
    PathEntryVector entries;
    for (const Snapshot& main : mains)
        entries.push_back(main.entry);
    return entries;
}

class Story {
public:
    explicit Story(CaseRule caseRule)
        : ignoresCase(caseRule == CaseRule::insensitive), tree(AnyTree(!ignoresCase)), world(tree.files, caseRule) {}

    /// Builds a path, then derives others from it, one from the other, by random changes of list and disk.
    void Run() {
        for (const std::string& main : tree.mains)
            mains.push_back(Take(main));
        path = world.PathOf(EntriesOf(mains));
        Compare(*path, ModelOf(mains), ignoresCase);
        for (int step = *rc::gen::inRange(0, 9); step > 0; --step) {
            const PathEntryVector before = EntriesOf(mains);
            ChangeList();
            path = Derive(before, EntriesOf(mains));
            Compare(*path, ModelOf(mains), ignoresCase);
        }
    }

private:
    std::shared_ptr<const IPath> Derive(const PathEntryVector& before, const PathEntryVector& after) {
        const std::set<std::shared_ptr<const IPathEntry>> objects(before.begin(), before.end());
        const bool canReplace = before.size() == after.size() && objects.size() == before.size();
        return canReplace && *rc::gen::arbitrary<bool>() ? world.PathWithReplacements(path, before, after)
                                                         : world.PathOf(after, path);
    }

    Snapshot Take(const std::string& main) {
        auto entry = world.Entry(main);
        if (*rc::gen::weightedElement<bool>({{4, false}, {1, true}}))
            entry = std::make_shared<const ForeignEntry>(entry);
        return {entry, Tolvex::FromUtf8(main), MakeTree(tree.files)};
    }

    std::size_t AnyPlace(std::size_t end) { return *rc::gen::inRange<std::size_t>(0, end); }

    void ChangeList() {
        switch (*rc::gen::inRange(0, 6)) {
        case 0: // another of the folders, or the same again, anywhere
            mains.insert(mains.begin() + static_cast<std::ptrdiff_t>(AnyPlace(mains.size() + 1)),
                         Take(*OneOf(tree.mains)));
            return;
        case 1:
            if (!mains.empty())
                mains.erase(mains.begin() + static_cast<std::ptrdiff_t>(AnyPlace(mains.size())));
            return;
        case 2: // another order
            if (!mains.empty())
                std::rotate(mains.begin(), mains.begin() + static_cast<std::ptrdiff_t>(AnyPlace(mains.size())),
                            mains.end());
            return;
        case 3: // the same object twice
            if (!mains.empty())
                mains.push_back(mains[AnyPlace(mains.size())]);
            return;
        default:
            ChangeDisk();
        }
    }

    void ChangeDisk() {
        const std::string main = *OneOf(tree.mains);
        const std::string file =
            FolderUnder(main, !ignoresCase) + "/new" + std::to_string(++added) + *OneOf(stems) + ".kx";
        world.storage->Add(file);
        tree.files.push_back(file);
        const auto removed = std::find_if(tree.files.begin(), tree.files.end(),
                                          [&](const auto& each) { return each.ends_with("/always.kx"); });
        if (removed != tree.files.end() && *rc::gen::arbitrary<bool>()) {
            world.storage->Remove(*removed);
            tree.files.erase(removed);
        }
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        for (Snapshot& each : mains)
            if (each.entry->IsOutOfDate())
                each = {each.entry->GetUpdatedPathEntry(world.factory, world.monitor), each.folder,
                        MakeTree(tree.files)};
    }

    bool ignoresCase;
    Tree tree;
    PathWorld world;
    std::vector<Snapshot> mains;
    std::shared_ptr<const IPath> path;
    int added = 0;
};

RC_GTEST_PROP(PathModel, AnswersAsBruteForceDoesOnAnyPathDerivedOrNot, ()) {
    Story(CaseRule::sensitive).Run();
}

RC_GTEST_PROP(PathModel, AnswersAsBruteForceDoesWhereTheDiskIgnoresCase, ()) {
    Story(CaseRule::insensitive).Run();
}

TEST(Path, ExchangesEntriesAllAtOnce) {
    PathWorld world({"/a/x.kx", "/b/y.kx"});
    PathWorld other(world.storage);
    const auto a = world.Entry("/a");
    const auto b = world.Entry("/b");
    const auto sameFolder = other.Entry("/a");
    for (const PathEntryVector& before : {PathEntryVector{a, b}, PathEntryVector{a, b, sameFolder}}) {
        PathEntryVector after = before;
        std::ranges::rotate(after, after.begin() + 1);
        const auto path = world.PathWithReplacements(world.PathOf(before), before, after);
        EXPECT_EQ(*path->GetMainEntries(), after);
    }
}

TEST(Path, CostsWhatChangedAndKeepsFewLayers) {
    constexpr int folders = 400;
    std::vector<std::string> files;
    for (int folder = 0; folder < folders; ++folder)
        for (int file = 0; file < 40; ++file)
            files.push_back("/m" + std::to_string(folder) + "/f" + std::to_string(folder * 40 + file) + ".kx");
    PathWorld world(files);
    PathEntryVector entries;
    for (int folder = 0; folder < folders; ++folder)
        entries.push_back(world.Entry("/m" + std::to_string(folder)));
    auto path = world.PathOf(entries);
    world.TakeListings();
    std::size_t indexed = 0;
    std::size_t most = 0;
    constexpr int changes = 600;
    for (int change = 0; change < changes; ++change) {
        const auto place = static_cast<std::size_t>(change * 37 % folders);
        const std::string name = "new" + std::to_string(change);
        world.storage->Add("/m" + std::to_string(place) + "/" + name + ".kx");
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        const PathEntryVector before = entries;
        entries[place] = entries[place]->GetUpdatedPathEntry(world.factory, world.monitor);
        // By a list at times, so that lists made of parts are compared with, too.
        path = change % 50 == 0 ? world.PathOf(entries, path) : world.PathWithReplacements(path, before, entries);
        const LayeredIndex& index = static_cast<const Path&>(*path).GetIndex();
        indexed += index.GetIndexedNameCount();
        most = std::max(most, index.GetLayerCount());
        const SearchTarget target(Tolvex::FromUtf8(name), Tolvex::GetCodeFileExtensions());
        const auto found = path->FindFirstInScope({PathEntryType::mainFolder}, target, FilenameMatchingPolicy::exact);
        ASSERT_TRUE(found);
        ASSERT_EQ(found->GetEntry(), entries[place]);
        if (change % 20 == 0) {
            ASSERT_EQ(*path->GetMainEntries(), entries);
        }
    }
    EXPECT_EQ(world.TakeListings(), static_cast<std::size_t>(changes)) << "only the folder that changed is listed";
    EXPECT_LE(most, 9u);
    // Each change brings about 41 names; indexing everything each time would be 16,000 for each change.
    EXPECT_LT(indexed / changes, 1000u);
}

TEST(Path, KeepsFewLayersOfFoldersThatHoldNothing) {
    PathWorld world({"/full/a.kx", "/empty/"});
    PathEntryVector entries{world.Entry("/full"), world.Entry("/empty")};
    auto path = world.PathOf(entries);
    for (int change = 0; change < 300; ++change) {
        world.storage->Add("/empty/x");
        world.storage->Remove("/empty/x");
        world.storage->GetClock().Advance(std::chrono::seconds(1));
        entries[1] = entries[1]->GetUpdatedPathEntry(world.factory, world.monitor);
        path = world.PathOf(entries, path);
        ASSERT_LE(static_cast<const Path&>(*path).GetIndex().GetLayerCount(), 3u);
    }
}

TEST(Path, FindsEachFileOnceThoughTwoNamesOfAFolderHaveOneHash) {
    std::map<std::uint32_t, ustring> byHash;
    std::pair<ustring, ustring> pair;
    for (int number = 0; pair.first.empty(); ++number) {
        const ustring name = Tolvex::FromUtf8("f" + std::to_string(number));
        const auto [known, isNew] = byHash.emplace(Tolvex::HashName(name), name);
        if (!isNew)
            pair = {known->second, name};
    }
    PathWorld world({"/m/" + Tolvex::ToUtf8(pair.first) + ".kx", "/m/" + Tolvex::ToUtf8(pair.second) + ".kx"});
    const auto path = world.PathOf({"/m"});
    for (const ustring& name : {pair.first, pair.second}) {
        const SearchTarget target(name, Tolvex::GetCodeFileExtensions());
        const std::string file = "/m/" + Tolvex::ToUtf8(name) + ".kx";
        const auto all = path->FindAllInScope(SearchScope::All(), target, FilenameMatchingPolicy::exact);
        ASSERT_EQ(all.size(), 1u);
        EXPECT_EQ(File(all.front()), file);
        EXPECT_EQ(File(path->FindFirstInScope(SearchScope::All(), target, FilenameMatchingPolicy::exact)), file);
    }
}

TEST(Path, LetsGoOfEntriesThatLeftIt) {
    PathWorld world({"/a/a.kx", "/b/b.kx", "/b/+p/c.kx"});
    auto path = world.PathOf({"/a", "/b"});
    const std::weak_ptr<const IPathEntry> child = path->GetMainEntries()->at(1)->GetPackageEntries()->front();
    path = world.PathOf({path->GetMainEntries()->front()}, path);
    world.queue->WaitUntilIdle();
    EXPECT_TRUE(child.expired()) << "layers that are shared must not own";
    EXPECT_EQ(world.factory.GetCounters().entriesKept, 1u);
}

TEST(Path, AnAnswerKeepsItsEntryAlive) {
    PathWorld world({"/m/+p/+q/solve.kx"});
    auto path = world.PathOf({"/m"});
    const SearchTarget target(u"solve", Tolvex::GetCodeFileExtensions());
    auto found = path->FindFirstInScope(SearchScope::All(), target, FilenameMatchingPolicy::exact);
    path.reset();
    world.queue->WaitUntilIdle();
    ASSERT_TRUE(found);
    EXPECT_EQ(Tolvex::ToUtf8(found->GetEntry()->GetDescriptor()), "p.q");
    const auto item = found->GetItemHandle();
    found.reset();
    EXPECT_EQ(item->GetStem(), u"solve");
}

} // namespace
} // namespace PathManagement
