#include "foundation/components/PackageStore.h"
#include "foundation/components/PackageRegistryHasBeenChanged.h"

#include "../../storage/test/TemporaryTree.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace TolvexPackages {
namespace {

namespace fs = std::filesystem;

using Tolvex::FromUtf8;
using Tolvex::ToUtf8;
using TolvexComponents::ComponentVersion;

/// A package of the test: a letter says which, a digit its version; `tag` tells its states apart.
struct Sample {
    char letter = 'a';
    int version = 1;
    std::string tag = "0";

    bool operator==(const Sample&) const = default;
    [[nodiscard]] std::string GetName() const { return letter + ("@" + std::to_string(version)) + ".0.0"; }
};

ComponentIdentifier Identify(const Sample& sample) {
    return {FromUtf8(std::string(1, sample.letter)),
            ComponentVersion({static_cast<std::uint32_t>(sample.version), 0, 0}),
            {{static_cast<std::uint8_t>(sample.letter)}}};
}

std::ostream& operator<<(std::ostream& out, const Sample& sample) {
    return out << sample.GetName() << '#' << sample.tag;
}

void WriteManifest(const fs::path& root, const Sample& sample) {
    char id[] = "00000000-0000-0000-0000-000000000000";
    id[0] = static_cast<char>('0' + sample.letter / 16);
    id[1] = static_cast<char>('0' + sample.letter % 16);
    std::ofstream(root / PackageManifest::fileName)
        << "{\"name\": \"" << sample.letter << "\", \"version\": \"" << sample.version << ".0.0\", \"id\": \"" << id
        << "\", \"folders\": [\".\", \"lib\"], \"properties\": {\"tag\": \"" << sample.tag << "\"}}";
}

void MakePackage(const fs::path& root, const Sample& sample) {
    fs::create_directories(root / "lib");
    std::ofstream(root / "lib" / (std::string(1, sample.letter) + ".kx")) << sample;
    WriteManifest(root, sample);
}

std::string ReadText(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A store with what it announced last.
class Host {
public:
    explicit Host(const fs::path& folder) : store(folder, *registrar, *events) {}

    PackageStore& operator*() { return store; }
    PackageStore* operator->() { return &store; }
    [[nodiscard]] const IPackageRegistry& GetRegistry() const { return *(registry = registrar->GetRegistry()); }

    /// "+a@1.0.0 -a@2.0.0 ~b@1.0.0 ", and forgets it; "none" when nothing was announced.
    std::string TakeNews() { return std::exchange(news, "none"); }

private:
    void Write(char sign, std::span<const ComponentIdentifier> identifiers) {
        for (const auto& identifier : identifiers)
            news += sign + ToUtf8(GetPackageText(identifier)) + ' ';
    }

    std::unique_ptr<IPackageRegistrar> registrar = CreatePackageRegistrar();
    boost::shared_ptr<Tolvex::EventMgr> events = Tolvex::createEventMgr();
    mutable std::shared_ptr<const IPackageRegistry> registry;
    PackageStore store;
    std::string news = "none";
    Tolvex::ScopedConnection connection =
        events->Subscribe<PackageRegistryHasBeenChanged>([this](const PackageRegistryHasBeenChanged& event) {
            news.clear();
            Write('+', event.GetChanges()->GetAdded());
            Write('-', event.GetChanges()->GetRemoved());
            Write('~', event.GetChanges()->GetChanged(PackageChangeKind::any));
        });
};

/// The plain model of a store: a list.
struct Expected {
    Sample sample;
    std::uint64_t order;
    bool isManaged;
    bool isBroken = false;
};

class RandomStore {
public:
    void Step() {
        ++step;
        const int choice = *rc::gen::inRange(0, 9);
        if (choice < 3)
            Install();
        else if (choice < 5)
            Update();
        else if (choice < 7)
            Remove();
        else
            ChangeFromOutside(choice == 7);
        Check();
    }

private:
    static Sample Any(int step) { return {*rc::gen::inRange('a', 'd'), *rc::gen::inRange(1, 4), std::to_string(step)}; }

    fs::path MakeSource(const Sample& sample) {
        const fs::path source = tree.GetRoot() / ("source" + std::to_string(step));
        MakePackage(source, sample);
        return source;
    }

    [[nodiscard]] auto Find(const Sample& sample) {
        return std::find_if(model.begin(), model.end(), [&sample](const Expected& one) {
            return one.sample.letter == sample.letter && one.sample.version == sample.version;
        });
    }

    /// `isAccepted` is what the model says.
    template <class Operation>
    void Try(bool isAccepted, Operation operation) {
        host.TakeNews();
        try {
            operation();
            RC_ASSERT(isAccepted);
        } catch (const PackageError&) {
            RC_ASSERT(!isAccepted);
            RC_ASSERT(host.TakeNews() == "none");
        }
    }

    void Install() {
        const Sample sample = Any(step);
        const bool inPlace = *rc::gen::inRange(0, 3) == 0;
        const bool isNew = Find(sample) == model.end();
        const fs::path source = MakeSource(sample);
        Try(isNew, [&] {
            RC_ASSERT(host->Install(source, {.inPlace = inPlace}) == Identify(sample));
            RC_ASSERT(host.TakeNews() == '+' + sample.GetName() + ' ');
            const std::uint64_t order = host->Read().Get().back().order;
            RC_ASSERT(order > std::exchange(lastOrder, order)); // also than those that are gone
            model.push_back({sample, lastOrder, !inPlace});
        });
    }

    void Update() {
        const Sample sample = Any(step);
        std::vector<Expected*> same;
        for (Expected& one : model) {
            if (one.sample.letter == sample.letter)
                same.push_back(&one);
        }
        const bool isTaken = Find(sample) != model.end();
        const bool isAccepted = same.size() == 1;
        const bool isNamed = !isAccepted && !same.empty();
        const fs::path source = MakeSource(sample);
        if (isNamed) {
            Try(false, [&] { host->Update(source); });
            const Sample& old = same.front()->sample;
            Try(!isTaken || old.version == sample.version,
                [&] { Replace(*same.front(), sample, [&] { host->Update(source, Identify(old).GetVersion()); }); });
            return;
        }
        Try(isAccepted, [&] {
            if (isAccepted)
                Replace(*same.front(), sample, [&] { host->Update(source); });
            else
                host->Update(source);
        });
    }

    template <class Operation>
    void Replace(Expected& old, const Sample& sample, Operation operation) {
        operation();
        const std::string gone = old.isBroken ? "" : '-' + old.sample.GetName() + ' ';
        const bool isSame = old.sample.version == sample.version && !old.isBroken;
        RC_ASSERT(host.TakeNews() == (isSame ? '~' + sample.GetName() + ' ' : '+' + sample.GetName() + ' ' + gone));
        old.sample = sample;
        old.isBroken = false;
    }

    void Remove() {
        const Sample sample = Any(step);
        const auto found = Find(sample);
        Try(found != model.end(), [&] {
            host->Remove(Identify(sample));
            RC_ASSERT(host.TakeNews() == (found->isBroken ? "" : '-' + sample.GetName() + ' '));
            model.erase(found);
        });
    }

    /// Somebody edits, or spoils, the manifest of a package.
    void ChangeFromOutside(bool spoil) {
        if (model.empty())
            return;
        Expected& one = model[*rc::gen::inRange<std::size_t>(0, model.size())];
        const InstalledPackages packages = host->Read();
        const fs::path root =
            packages.Find(FromUtf8(std::string(1, one.sample.letter)), Identify(one.sample).GetVersion()).at(0)->root;
        const std::string name = one.sample.GetName();
        const bool wasBroken = std::exchange(one.isBroken, spoil);
        if (spoil) {
            std::ofstream(root / PackageManifest::fileName) << "{\n";
        } else {
            one.sample.tag = std::to_string(step);
            WriteManifest(root, one.sample);
            std::ofstream(root / "lib" / (std::string(1, one.sample.letter) + ".kx")) << one.sample;
        }
        host.TakeNews();
        const InstalledPackages seen = host->Rescan();
        if (spoil)
            RC_ASSERT(host.TakeNews() == (wasBroken ? "" : '-' + name + ' '));
        else
            RC_ASSERT(host.TakeNews() == (wasBroken ? '+' : '~') + name + ' ');
    }

    void Check() {
        Host other(tree.GetRoot() / "store"); // as another process sees it
        const InstalledPackages packages = other->Announce();
        RC_ASSERT(packages.Get().size() == model.size());
        std::size_t copies = 0;
        std::size_t usable = 0;
        for (std::size_t i = 0; i < model.size(); ++i) {
            CheckPackage(packages.Get()[i], model[i]);
            copies += model[i].isManaged;
            usable += !model[i].isBroken;
        }
        RC_ASSERT(other.GetRegistry().GetPackages().size() == usable);
        if (!fs::exists(tree.GetRoot() / "store"))
            return;
        std::size_t beside = 0; // the registry and its lock
        for (const auto& item : fs::directory_iterator(tree.GetRoot() / "store"))
            item.is_directory() ? copies -= 1 : beside += 1;
        RC_ASSERT(copies == 0U);
        RC_ASSERT(beside <= 2U);
    }

    void CheckPackage(const InstalledPackage& package, const Expected& expected) {
        RC_ASSERT(package.manifest.identifier == Identify(expected.sample));
        RC_ASSERT(package.order == expected.order);
        RC_ASSERT(package.isManaged == expected.isManaged);
        RC_ASSERT(package.problem.has_value() == expected.isBroken);
        RC_ASSERT(!package.isChanged);
        if (expected.isBroken)
            RC_ASSERT(package.problem->line == 1U);
        std::ostringstream content;
        content << expected.sample;
        RC_ASSERT(ReadText(package.root / "lib" / (std::string(1, expected.sample.letter) + ".kx")) == content.str());
    }

    Tolvex::TemporaryTree tree;
    Host host{tree.GetRoot() / "store"};
    std::vector<Expected> model;
    std::uint64_t lastOrder = 0;
    int step = 0;
};

RC_GTEST_PROP(PackageStore, DoesWhatAListDoes, ()) {
    RandomStore store;
    for (int steps = *rc::gen::inRange(0, 12); steps > 0; --steps)
        store.Step();
}

class PackageStoreTest : public testing::Test {
protected:
    fs::path Make(const std::string& name, const Sample& sample) {
        MakePackage(tree.GetRoot() / name, sample);
        return tree.GetRoot() / name;
    }

    static Tolvex::CanonicalAbsoluteIRI Locate(const fs::path& folder) {
        return {Tolvex::AbsoluteIRI("file", FromUtf8(folder.native())), {}};
    }

    /// The reason of a refusal, after which one package is installed as before.
    template <class Operation>
    std::string GetRefusal(Operation operation) {
        host.TakeNews();
        std::string reason = "nothing";
        try {
            operation();
        } catch (const PackageError& error) {
            reason = error.what();
        } catch (const fs::filesystem_error& error) {
            reason = error.what();
        }
        EXPECT_EQ(host.TakeNews(), "none");
        EXPECT_EQ(host->Read().Get().size(), 1U);
        return reason;
    }

    Tolvex::TemporaryTree tree;
    fs::path folder = tree.GetRoot() / "store";
    Host host{folder};
};

TEST_F(PackageStoreTest, TellsTheRegistryWhatAPackageIs) {
    const fs::path source = Make("copied", {'a'});
    fs::create_directory_symlink("lib", source / "link");
    fs::permissions(source / "lib", fs::perms::owner_write, fs::perm_options::remove);
    host->Install(source);
    fs::permissions(source / "lib", fs::perms::owner_write, fs::perm_options::add);
    host->Install(Make("needed", {'b'}), {.isAskedFor = false});
    const fs::path work = Make("work", {'c'});
    host->Install(work, {.inPlace = true});
    const InstalledPackages installed = host->Read();
    const IPackageRegistry& registry = host.GetRegistry();
    const auto copied = registry.FindPackage(Identify({'a'}));
    const auto needed = registry.FindPackage(Identify({'b'}));
    const auto worked = registry.FindPackage(Identify({'c'}));
    EXPECT_EQ(*copied->FindProperty(manualInstallProperty), PropertyValue(true));
    EXPECT_EQ(*needed->FindProperty(manualInstallProperty), PropertyValue(false));
    EXPECT_EQ(*copied->FindProperty("tag"), PropertyValue(Tolvex::ustring(u"0")));
    EXPECT_TRUE(copied->isManaged && needed->isManaged && !copied->isWatchedClosely);
    EXPECT_TRUE(!worked->isManaged && worked->isForPath && worked->isWatchedClosely);
    EXPECT_LT(copied->order, needed->order);
    EXPECT_LT(needed->order, worked->order);
    EXPECT_EQ(worked->memberFolders, (std::vector{Locate(work), Locate(work / "lib")}));
    const fs::path copy = installed.Get()[0].root;
    EXPECT_EQ(registry.FindPackageOfFolder(Locate(copy / "lib")), Identify({'a'}));
    EXPECT_NE(fs::status(copy / "lib").permissions() & fs::perms::owner_write, fs::perms::none); // so it can be removed
    EXPECT_EQ(fs::read_symlink(copy / "link"), "lib");

    fs::remove(work / PackageManifest::fileName);
    host->Rescan();
    EXPECT_TRUE(host.GetRegistry().IsFolderOfUninstalledPackage(Locate(work / "lib")));
    WriteManifest(work, {'a'}); // two say that they are one
    const auto seen = host->Rescan();
    EXPECT_FALSE(seen.Get()[0].problem);
    EXPECT_NE(seen.Get()[2].problem->reason.find("a@1.0.0"), std::string::npos);
}

TEST_F(PackageStoreTest, RefusesWhatCannotBeInstalled) {
    const fs::path work = Make("work", {'a'});
    host->Install(work, {.inPlace = true});
    const auto install = [this](const fs::path& package, bool inPlace) {
        return GetRefusal([&] { host->Install(package, {.inPlace = inPlace}); });
    };
    WriteManifest(work, {'b'});
    EXPECT_NE(install(work, true).find("installed already"), std::string::npos); // now as b
    EXPECT_NE(install(Make("store/inside", {'c'}), true).find("or around it"), std::string::npos);
    fs::remove_all(folder / "inside");
    WriteManifest(tree.GetRoot(), {'c'});
    fs::create_directory(tree.GetRoot() / "lib");
    EXPECT_NE(install(tree.GetRoot(), false).find("or around it"), std::string::npos);
    EXPECT_NE(install(Make("bad\xFFname", {'c'}), true).find("UTF-8"), std::string::npos);

    const fs::path linked = Make("linked", {'d'});
    fs::rename(linked / "lib", linked / "real");
    fs::create_directory_symlink(linked / "real", linked / "lib"); // in the copy it leads out
    EXPECT_NE(install(linked, false).find("leads out"), std::string::npos);
    const fs::path linking = Make("linking", {'f'});
    for (const fs::path& target :
         {tree.GetRoot() / "elsewhere.kx", fs::path("../../elsewhere.kx"), fs::path("../lib/../../x")}) {
        fs::create_symlink(target, linking / "lib" / "link.kx");
        const std::string refusal = install(linking, false);
        EXPECT_NE(refusal.find((linking / "lib" / "link.kx").native()), std::string::npos) << refusal;
        fs::remove(linking / "lib" / "link.kx");
    }
    const fs::path odd = Make("odd", {'e'});
    ASSERT_EQ(::mkfifo((odd / "pipe").c_str(), 0600), 0);
    EXPECT_NE(install(odd, false), "nothing");
    for (const auto& item : fs::directory_iterator(folder))
        EXPECT_FALSE(item.is_directory()) << item; // nothing of the attempts
    fs::create_symlink("../lib/other.kx", linking / "lib" / "link.kx");
    EXPECT_NO_THROW(host->Install(linking, {})) << "a link within the package";
}

TEST_F(PackageStoreTest, NeverTouchesWhatABrokenRegistryNames) {
    fs::create_directories(folder);
    const fs::path precious = Make("precious", {'p'});
    const std::string manifest = R"({"name":"a","version":"1.0.0","id":"00000000-0000-0000-0000-000000000001"})";
    const auto package = [&manifest](const std::string& place, const std::string& rest) {
        return "{\"manifest\":" + manifest + ",\"folder\":\"" + place + "\",\"order\":" + rest + ",\"askedFor\":true}";
    };
    const std::string good = package("a-1.0.0.1", "1,\"managed\":true");
    struct Case {
        std::string packages;
        std::string leftovers;
        std::size_t line;
    };
    const std::vector<Case> cases{
        {"", "\"../precious\"", 5},
        {"", "\".\"", 5},
        {"", "\"..\"", 5},
        {"", "\"\"", 5},
        {"", "7", 5},
        {package("../precious", "1,\"managed\":true"), "", 4},
        {package("work", "1,\"managed\":false"), "", 4},
        {package("a-1.0.0.9", "9,\"managed\":true"), "", 4},
        {package("a-1.0.0.1", "-1,\"managed\":true"), "", 4},
        {good + ",\n" + good, "", 5},
        {"7", "", 4},
    };
    for (const Case& one : cases) {
        const std::string text = "{\"format\": 1,\n\"nextNumber\": 5,\n\"packages\": [\n" + one.packages +
                                 "],\n\"leftovers\": [" + one.leftovers + "]}";
        std::ofstream(folder / "registry.json") << text;
        try {
            host->Rescan();
            ADD_FAILURE() << text;
        } catch (const PackageError& error) {
            EXPECT_EQ(error.GetProblem().line, one.line) << error.what();
            EXPECT_EQ(error.GetProblem().file, (folder / "registry.json").native());
        }
        EXPECT_EQ(ReadText(folder / "registry.json"), text);
        EXPECT_TRUE(fs::exists(precious / "lib"));
    }
    std::ofstream(folder / "registry.json") << R"({"format": 2})";
    EXPECT_THROW(host->Rescan(), PackageError);
}

} // namespace
} // namespace TolvexPackages
