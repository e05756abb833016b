#include "PackageWorld.h"
#include "PathWorld.h"

#include "packages/PackagePathUpdate.h"
#include "path_interfaces/PathAlterationExceptions.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace PathManagement {
namespace {

using TolvexComponents::ComponentIdentifier;
using TolvexPackages::IPackageRegistry;
using TolvexPackages::PackageRecord;
using TolvexPackages::PackageRegistryChanges;
using Texts = std::vector<std::string>;

Tolvex::CanonicalAbsoluteIRI At(const std::string& path) {
    return Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI(path));
}

/// Takes every list of folders as it is.
class CompliantManager final : public IMainSearchPathManager {
public:
    explicit CompliantManager(const Texts& texts) {
        IRIs locations;
        PathEntryVector entries;
        for (const std::string& text : texts) {
            locations.push_back(At(text));
            entries.push_back(world.factory.CreatePathEntry(At(text), world.monitor));
        }
        folders = std::make_shared<const IRIs>(std::move(locations));
        path = world.PathOf(entries);
    }

    [[nodiscard]] Texts GetFolders() const {
        Texts texts;
        for (const auto& folder : *folders)
            texts.push_back(Tolvex::ToUtf8(folder.getPath()));
        return texts;
    }

    int installations = 0;

    [[nodiscard]] std::shared_ptr<const IRIs> GetPathIRIs() const override { return folders; }
    [[nodiscard]] std::shared_ptr<const IPath> GetPath() const override { return path; }
    void SetPathEntries(const CanonicalIRIRange& range, Tolvex::Notification&) override {
        folders = std::make_shared<const IRIs>(range.begin(), range.end());
        ++installations;
    }

    // None of the following is anything that an update may ask for.
    [[nodiscard]] std::shared_ptr<const IPath> GetMonitoredPath() const override { throw std::logic_error("unasked"); }
    [[nodiscard]] std::shared_ptr<const IPath> GetSecondaryPath() const override { throw std::logic_error("unasked"); }
    [[nodiscard]] IFolderMonitor& GetFolderMonitor() const override { throw std::logic_error("unasked"); }
    [[nodiscard]] std::shared_ptr<void> PushMutabilityPolicy(PathManagerMutabilityPolicy) override { return nullptr; }
    [[nodiscard]] std::optional<ComponentIdentifier> GetCurrentFolderComponent() const override { return {}; }
    [[nodiscard]] std::shared_ptr<const Components> GetPathComponents() const override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const PathMemento> CreateMemento() const override { return nullptr; }
    void RefreshPath(RefreshType) override {}
    void SetPathEntries(std::vector<std::shared_ptr<const IPathEntry>>, Tolvex::Notification&) override {}
    void SetPath(std::shared_ptr<const IPath>) override {}
    void SetMutabilityPolicy(PathManagerMutabilityPolicy) override {}
    void SetCurrentFolderPolicy(CurrentFolderPolicy) override {}
    void RebuildPath() override {}

private:
    PathWorld world{std::vector<std::string>{}}; // where no folder is, each gives an empty entry
    std::shared_ptr<const IRIs> folders;
    std::shared_ptr<const IPath> path;
};

/// Another registry that denies some packages and counts what it is asked.
class ForgetfulRegistry final : public IPackageRegistry {
public:
    explicit ForgetfulRegistry(std::shared_ptr<const IPackageRegistry> whole, std::set<std::string> forgotten = {})
        : whole(std::move(whole)), forgotten(std::move(forgotten)) {}

    [[nodiscard]] const Packages& GetPackages() const override { return whole->GetPackages(); }
    [[nodiscard]] std::shared_ptr<const PackageRecord>
    FindPackage(const ComponentIdentifier& identifier) const override {
        ++questions;
        const std::string version = Tolvex::ToUtf8(identifier.GetVersion().toString());
        const std::string name = Tolvex::ToUtf8(identifier.GetName()) + version.substr(0, version.find('.'));
        return forgotten.contains(name) ? nullptr : whole->FindPackage(identifier);
    }
    [[nodiscard]] std::optional<ComponentIdentifier>
    FindPackageOfFolder(const Tolvex::CanonicalAbsoluteIRI& folder) const override {
        ++questions;
        return whole->FindPackageOfFolder(folder);
    }
    [[nodiscard]] bool IsFolderOfUninstalledPackage(const Tolvex::CanonicalAbsoluteIRI& folder) const override {
        ++questions;
        return whole->IsFolderOfUninstalledPackage(folder);
    }

    mutable std::size_t questions = 0;

private:
    std::shared_ptr<const IPackageRegistry> whole;
    std::set<std::string> forgotten;
};

struct Outcome {
    Texts path;
    Texts messages;
};

Outcome Update(const Texts& path, std::shared_ptr<const IPackageRegistry> before,
               std::shared_ptr<const IPackageRegistry> after) {
    CompliantManager manager(path);
    Outcome outcome;
    int calls = 0;
    const PackagePathUpdate::ReportCallback callback = [&](const Tolvex::Notification& report) {
        outcome.messages = DrawMessages(report);
        ++calls;
    };
    PackagePathUpdate(manager, callback,
                      std::make_shared<const PackageRegistryChanges>(std::move(before), std::move(after)))
        .Run();
    EXPECT_EQ(calls, 1);
    outcome.path = manager.GetFolders();
    return outcome;
}

Texts Split(const std::string& line) {
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

std::string Advice(const std::string& root) {
    return "To use the package, put its root folder 'memory://" + root + "' on the path.";
}

std::string Removed(const std::string& folder, const std::string& advice, const std::string& package) {
    return "packageMemberFolderRemovedFromPath(memory://" + folder + "; " + advice + "; '" + package.substr(0, 1) +
           "@" + package.substr(1) + ".0.0')";
}

std::string Several(const std::string& versions) {
    std::string text;
    for (const std::string& name : Split(versions))
        text += (text.empty()                  ? ""
                 : text.find(';') == text.npos ? "; "
                                               : ", ") +
                ("'" + name.substr(0, 1) + "@" + name.substr(1) + ".0.0'");
    return "MultiplePackageVersionsOnPath(" + text + ")";
}

TEST(PackagePathUpdate, FollowsTheRegistry) {
    struct Case {
        std::string what;
        Texts before;
        Texts after;
        std::string path;
        std::string expected;
        Texts messages;
    };
    const std::vector<Case> cases{
        {"nothing changes", {"a1 /a manual"}, {"a1 /a manual"}, "/x /a /y", "/x /a /y", {}},
        {"nothing on the path is concerned", {}, {"a1 /a"}, "/x /y", "/x /y", {}},
        // Updates.
        {"keeps its place, its other folders vanish",
         {"a1 /a /a/old /kept /b"},
         {"a1 /a /a/new /kept /b"},
         "/x /a /a/old /kept /y /b",
         "/x /a /y",
         {Removed("/a/old", Advice("/a"), "a1")}},
        {"moves to another root folder in its place", {"a1 /a local"}, {"a1 /c local"}, "/x /a /y", "/x /c /y", {}},
        {"keeps its place when nobody wants it any more", {"a1 /a manual"}, {"a1 /a notManual"}, "/a /x", "/a /x", {}},
        {"stays off the path when it was wanted before", {"a1 /a manual"}, {"a1 /a manual watched"}, "/x", "/x", {}},
        {"two of one root folder take one place after the other",
         {"a1 /a", "b1 /a"},
         {"a1 /a watched", "b1 /c watched"},
         "/a /x /a",
         "/a /x /c",
         {}},
        {"comes on it when it was not", {"a1 /a notManual"}, {"a1 /a manual"}, "/x", "/x /a", {}},
        {"also with a property that was missing", {"a1 /a"}, {"a1 /a manual at=begin"}, "/x", "/a /x", {}},
        {"also with the flag of what is not managed", {"a1 /a local"}, {"a1 /a local forPath"}, "/x", "/x /a", {}},
        {"also by being managed no more", {"a1 /a forPath"}, {"a1 /a forPath local"}, "/x", "/x /a", {}},
        {"not when it changes only why it is wanted", {"a1 /a manual"}, {"a1 /a forPath local"}, "/x", "/x", {}},
        {"not when it stops being wanted", {"a1 /a forPath local"}, {"a1 /a local"}, "/x", "/x", {}},
        // What came.
        {"came and is wanted", {}, {"a1 /a /a/m manual", "b1 /b local forPath"}, "/x", "/x /a /b", {}},
        {"came and is not wanted",
         {},
         {"a1 /a", "b1 /b notManual forPath", "c1 /c local", "d1 /d local manual"},
         "/x",
         "/x",
         {}},
        {"its folders leave their old places",
         {},
         {"a1 /a /a/m manual"},
         "/a/m /x /a /y",
         "/x /y /a",
         {Removed("/a/m", Advice("/a"), "a1")}},
        {"even when it is not wanted",
         {},
         {"a1 /a /a/m local"},
         "/a/m /x /a",
         "/x",
         {Removed("/a", "", "a1"), Removed("/a/m", "", "a1")}},
        {"what is only below stays", {}, {"a1 /a manual"}, "/a/below /x", "/a/below /x /a", {}},
        {"the front group stands in reverse of its order, the others behind in order",
         {},
         {"a1 /a manual at=begin #1", "b1 /b manual #2", "c1 /c manual at=begin #2", "d1 /d manual at=end #1",
          "e1 /e manual at=Begin #3"},
         "/x",
         "/c /a /x /d /b /e",
         {}},
        {"equal ones keep the order of the registry",
         {},
         {"a1 /a manual", "b1 /b manual", "c1 /c manual at=begin", "d1 /d manual at=begin"},
         "/x",
         "/d /c /x /a /b",
         {}},
        {"the greatest of orders is the last",
         {},
         {"a1 /a manual #18446744073709551615", "b1 /b manual #9223372036854775808"},
         "",
         "/b /a",
         {}},
        {"what came stands before what was updated in the same order",
         {"b1 /b"},
         {"b1 /b manual", "a1 /a manual"},
         "",
         "/a /b",
         {}},
        // What went.
        {"nobody is told of folders without an owner", {"a1 /a /a/m"}, {}, "/a/m /x /a", "/x", {}},
        {"one is told when another package owns them now",
         {"a1 /a /c/m", "c1 /c"},
         {"c1 /c"},
         "/c/m /a /c",
         "/c",
         {Removed("/c/m", Advice("/c"), "c1")}},
        {"a new version in the folder of the old one", {"a1 /a manual"}, {"a2 /a manual"}, "/a /x", "/x /a", {}},
        {"a new version that nobody wants",
         {"a1 /a manual"},
         {"a2 /a"},
         "/a /x",
         "/x",
         {Removed("/a", Advice("/a"), "a2")}},
        // Several versions.
        {"two", {"a1 /a"}, {"a1 /a", "a2 /b manual"}, "/a /x", "/a /x /b", {Several("a1 a2")}},
        {"three, the newest in front",
         {"a1 /a", "a2 /b"},
         {"a1 /a", "a2 /b", "a3 /c manual at=begin"},
         "/b /x /a",
         "/c /b /x /a",
         {Several("a3 a2 a1")}},
        {"one on neighbouring folders, even with others between",
         {"a1 /a /a/m /a/n", "b1 /b"},
         {"a1 /a /a/m /a/n", "b1 /b"},
         "/a /a/m /x /b /a/n",
         "/a /a/m /x /b /a/n",
         {}},
        {"one that another version parts",
         {"a1 /a /a/m", "a2 /b"},
         {"a1 /a /a/m", "a2 /b"},
         "/a /b /a/m",
         "/a /b /a/m",
         {Several("a1 a2 a1")}},
        {"one that another version parts, in front",
         {"a1 /a", "a2 /b"},
         {"a1 /a manual at=begin", "a2 /b"},
         "/b /a/below",
         "/a /b /a/below",
         {Several("a1 a2 a1")}},
        {"one on neighbouring folders in front",
         {"a1 /a", "a2 /b"},
         {"a1 /a manual at=begin", "a2 /b"},
         "/a/below /b",
         "/a /a/below /b",
         {Several("a1 a2")}},
        {"none when the other one goes", {"a1 /a manual", "b1 /b"}, {"a2 /c manual", "b1 /b"}, "/a /b", "/b /c", {}},
    };
    for (const auto& [what, before, after, path, expected, messages] : cases) {
        SCOPED_TRACE(what);
        const Outcome outcome = Update(Split(path), MakeRegistry(before), MakeRegistry(after));
        EXPECT_EQ(outcome.path, Split(expected));
        EXPECT_EQ(outcome.messages, messages);
    }
}

// ---------------------------------------------------------------------------------------------------------------------

/// The rules once more, on texts, with nothing but walks over lists.
class Model {
public:
    Model(std::vector<DrawnPackage> before, std::vector<DrawnPackage> after, std::set<std::string> forgottenAfter)
        : before(std::move(before)), after(std::move(after)), forgotten(std::move(forgottenAfter)) {}

    Outcome Update(const Texts& path) {
        Sort();
        Texts next;
        for (const std::string& folder : path) {
            if (IsLeaving(folder))
                continue;
            if (const DrawnPackage* owner = FindOwner(before, folder))
                Record(owner->name, false);
            const auto taken = std::ranges::find_if(
                pending, [&folder](const auto& waiting) { return waiting.package.folders[0] == folder; });
            if (taken == pending.end()) {
                next.push_back(folder);
                continue;
            }
            if (const DrawnPackage* now = FindAfter(taken->package.name))
                next.push_back(now->folders[0]);
            pending.erase(taken);
        }
        PlacePending(next);
        return {next, ReportRemoved(path, next)};
    }

    /// As messages, in no particular order.
    std::multiset<std::string> GetVersionMessages() const {
        std::multiset<std::string> messages;
        for (const auto& [letter, names] : versions)
            if (names.size() > 1)
                messages.insert(Several(Join(names)));
        return messages;
    }

private:
    struct Waiting {
        DrawnPackage package;
        bool isAdded;
    };

    void Sort() {
        for (const DrawnPackage& package : after)
            if (Find(before, package.name) == nullptr) {
                if (FindAfter(package.name) != nullptr)
                    added.push_back(package);
            }
        for (const DrawnPackage& package : before)
            if (FindAfter(package.name) == nullptr)
                removed.push_back(package);
        for (const DrawnPackage& package : after)
            if (const DrawnPackage* former = Find(before, package.name); former != nullptr && *former != package)
                updated.push_back(*former);
        for (const DrawnPackage& package : added)
            pending.push_back({package, true});
        for (const DrawnPackage& package : updated)
            pending.push_back({package, false});
    }

    bool IsLeaving(const std::string& folder) const {
        const auto holds = [&folder](const DrawnPackage& package, std::ptrdiff_t from) {
            return std::find(package.folders.begin() + from, package.folders.end(), folder) != package.folders.end();
        };
        for (const auto* packages : {&added, &removed})
            for (const DrawnPackage& package : *packages)
                if (holds(package, 0))
                    return true;
        for (const DrawnPackage& package : updated) {
            const DrawnPackage* now = FindAfter(package.name);
            if (holds(package, 1) || (now != nullptr && holds(*now, 1)))
                return true;
        }
        return false;
    }

    void PlacePending(Texts& next) {
        std::vector<DrawnPackage> placed;
        for (const auto& [package, isAdded] : pending) {
            const DrawnPackage* now = FindAfter(package.name);
            if (now != nullptr && IsWanted(*now) && (isAdded || !IsWanted(package)))
                placed.push_back(*now);
        }
        Texts behind;
        while (!placed.empty()) {
            const auto least = std::ranges::min_element(placed, {}, &DrawnPackage::order);
            const DrawnPackage package = *least;
            placed.erase(least);
            (package.position == "begin" ? next.insert(next.begin(), package.folders[0])
                                         : behind.insert(behind.end(), package.folders[0]));
            if (package.position == "begin")
                Record(package.name, true);
            else
                waitingVersions.push_back(package.name);
        }
        next.insert(next.end(), behind.begin(), behind.end());
        for (const std::string& name : waitingVersions)
            Record(name, false);
    }

    Texts ReportRemoved(const Texts& path, const Texts& next) const {
        Texts candidates;
        for (const auto* packages : {&removed, &added})
            for (const DrawnPackage& package : *packages)
                candidates.insert(candidates.end(), package.folders.begin(), package.folders.end());
        for (const DrawnPackage& package : updated)
            for (const std::string& folder : package.folders)
                if (const DrawnPackage* now = FindAfter(package.name); now == nullptr || !Holds(now->folders, folder))
                    candidates.push_back(folder);
        Texts messages;
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            const std::string& folder = candidates[i];
            const bool isRepeated = std::find(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(i),
                                              folder) != candidates.begin() + static_cast<std::ptrdiff_t>(i);
            const DrawnPackage* owner = FindOwner(after, folder);
            if (isRepeated || !Holds(path, folder) || Holds(next, folder) || owner == nullptr ||
                forgotten.contains(owner->name))
                continue;
            messages.push_back(Removed(folder, owner->isLocal ? "" : Advice(owner->folders[0]), owner->name));
        }
        return messages;
    }

    void Record(const std::string& name, bool inFront) {
        auto& names = versions[name[0]];
        if (names.empty() || (inFront ? names.front() : names.back()) != name)
            names.insert(inFront ? names.begin() : names.end(), name);
    }

    static bool IsWanted(const DrawnPackage& package) {
        return package.isLocal ? package.isForPath : package.manualInstall == "manual";
    }

    static bool Holds(const Texts& texts, const std::string& text) {
        return std::ranges::find(texts, text) != texts.end();
    }

    static std::string Join(const Texts& texts) {
        std::string joined;
        for (const auto& text : texts)
            joined += text + " ";
        return joined;
    }

    static const DrawnPackage* Find(const std::vector<DrawnPackage>& packages, const std::string& name) {
        const auto found = std::ranges::find(packages, name, &DrawnPackage::name);
        return found == packages.end() ? nullptr : &*found;
    }

    const DrawnPackage* FindAfter(const std::string& name) const {
        return forgotten.contains(name) ? nullptr : Find(after, name);
    }

    static const DrawnPackage* FindOwner(const std::vector<DrawnPackage>& packages, const std::string& folder) {
        const DrawnPackage* owner = nullptr;
        std::size_t nearest = 0;
        for (const DrawnPackage& package : packages)
            for (const std::string& member : package.folders)
                if ((folder == member || folder.starts_with(member + "/")) && member.size() > nearest) {
                    owner = &package;
                    nearest = member.size();
                }
        return owner;
    }

    std::vector<DrawnPackage> before;
    std::vector<DrawnPackage> after;
    std::set<std::string> forgotten;
    std::vector<DrawnPackage> added;
    std::vector<DrawnPackage> removed;
    std::vector<DrawnPackage> updated; // as before the change
    std::vector<Waiting> pending;
    Texts waitingVersions;
    std::map<char, Texts> versions;
};

std::vector<std::string> AnyFolders(std::size_t least, std::size_t most) {
    std::vector<std::string> folders(*rc::gen::inRange(least, most + 1));
    for (auto& folder : folders)
        folder = *rc::gen::element<std::string>("/a", "/a/m", "/a/m/n", "/b", "/b/m", "/c", "/d");
    return folders;
}

DrawnPackage AnyPackage(const std::string& name) {
    return {.name = name,
            .folders = AnyFolders(1, 3),
            .isLocal = *rc::gen::arbitrary<bool>(),
            .isForPath = *rc::gen::arbitrary<bool>(),
            .isWatched = *rc::gen::arbitrary<bool>(),
            .manualInstall = *rc::gen::element<std::string>("", "manual", "manual", "notManual"),
            .position = *rc::gen::element<std::string>("", "begin", "end"),
            .order = *rc::gen::inRange<std::uint64_t>(0, 3)};
}

RC_GTEST_PROP(PackagePathUpdate, DoesAsTheModelSays, ()) {
    std::vector<DrawnPackage> before;
    std::vector<DrawnPackage> after;
    std::set<std::string> forgotten;
    for (const std::string& name : *rc::gen::arbitrary<bool>() ? Texts{"a1", "a2", "a3", "b1", "b2"}
                                                               : Texts{"b2", "c1", "a2", "a1", "d1", "e1"}) {
        const int fate = *rc::gen::inRange(0, 6);
        if (fate == 0) // never there
            continue;
        if (fate != 1)
            before.push_back(AnyPackage(name));
        if (fate == 2)
            after.push_back(before.back());
        else if (fate != 3)
            after.push_back(AnyPackage(name));
        if (*rc::gen::inRange(0, 8) == 0)
            forgotten.insert(name);
    }
    if (*rc::gen::arbitrary<bool>())
        std::ranges::reverse(after);
    const Texts path = AnyFolders(0, 10);

    Model model(before, after, forgotten);
    const Outcome expected = model.Update(path);
    const Outcome outcome =
        Update(path, MakeRegistry(before), std::make_shared<const ForgetfulRegistry>(MakeRegistry(after), forgotten));

    RC_ASSERT(outcome.path == expected.path);
    RC_ASSERT(outcome.messages.size() >= expected.messages.size());
    const auto ofVersions = outcome.messages.begin() + static_cast<std::ptrdiff_t>(expected.messages.size());
    RC_ASSERT(Texts(outcome.messages.begin(), ofVersions) == expected.messages);
    RC_ASSERT(std::multiset<std::string>(ofVersions, outcome.messages.end()) == model.GetVersionMessages());
}

TEST(PackagePathUpdate, AsksTheRegistriesAFewQuestionsForEachFolderAndEachChange) {
    constexpr int folderCount = 10'000;
    constexpr int changeCount = 1'000; // half of them updated, a quarter came, a quarter went
    Texts path;
    std::vector<DrawnPackage> before;
    std::vector<DrawnPackage> after;
    for (int i = 0; i < folderCount; ++i)
        path.push_back("/folder" + std::to_string(i));
    for (int i = 0; i < changeCount; ++i) {
        const DrawnPackage package =
            DrawnPackage::Parse("a" + std::to_string(i) + " " + path[static_cast<std::size_t>(i) * 7] + " /member" +
                                std::to_string(i) + " manual #" + std::to_string(i % 3));
        if (i % 4 != 0)
            before.push_back(package);
        if (i % 4 != 1)
            after.push_back(package);
        if (i % 4 > 1)
            after.back().isWatched = true;
    }
    const auto registryBefore = std::make_shared<const ForgetfulRegistry>(MakeRegistry(before));
    const auto registryAfter = std::make_shared<const ForgetfulRegistry>(MakeRegistry(after));
    const auto changes = std::make_shared<const PackageRegistryChanges>(registryBefore, registryAfter);
    registryBefore->questions = registryAfter->questions = 0;
    CompliantManager manager(path);
    int messages = 0;
    const PackagePathUpdate::ReportCallback callback = [&messages](const Tolvex::Notification& report) {
        messages = static_cast<int>(report.GetCount());
    };
    PackagePathUpdate(manager, callback, changes).Run();

    EXPECT_EQ(manager.GetFolders().size(), folderCount - changeCount / 4U);
    EXPECT_EQ(messages, 1); // all are versions of one package
    EXPECT_LE(registryBefore->questions, folderCount + 3U * changeCount);
    EXPECT_LE(registryAfter->questions, 6U * changeCount);
}

} // namespace
} // namespace PathManagement
