#include "search_path/BuiltIns.h"

#include "Host.h"
#include "foundation/arrays/HostError.h"
#include "foundation/components/ComponentFeature.h"
#include "foundation/components/IPackageRegistrar.h"
#include "foundation/components/PackageRegistry.h"
#include "foundation/environment/RequiredContext.h"
#include "foundation/environment/StorageAccess.h"
#include "path_utilities/PathText.h"
#include "search_path/PathManagerCanonicalFilePath.h"

#include <regex>

namespace PathManagement {
namespace {

using namespace TolvexArrays;
using Inputs = std::vector<ArrayOwner>;

ArrayOwner Text(const std::string& text) {
    return MakeCharacterVector(Tolvex::FromUtf8(text));
}

ArrayOwner StringOf(const std::string& text) {
    return MakeStringScalar(Tolvex::FromUtf8(text));
}

template <class... Arrays>
Inputs List(Arrays... arrays) {
    Inputs inputs;
    (inputs.push_back(std::move(arrays)), ...);
    return inputs;
}

/// What a script sees of an array: characters in single quotes, a string in double quotes, several or none in brackets.
std::string Show(const ArrayOwner& array) {
    if (array == nullptr)
        return "nothing";
    if (GetKind(*array) == ArrayKind::character)
        return '\'' + Tolvex::ToUtf8(GetCharacters(*array)) + '\'';
    std::string shown;
    for (const auto& text : GetStrings(*array))
        shown += '"' + Tolvex::ToUtf8(*text) + '"';
    return GetRowCount(*array) == 1 ? shown : '[' + shown + ']';
}

/// A script: calls built-in functions by name and sees answers or identifiers of errors.
class BuiltInsTest : public testing::Test {
protected:
    BuiltInsTest() { table.Add(builtIns); }
    ~BuiltInsTest() override {
        observers.setRemotePathPolicy(policyBefore);
        observers.setChangeHandleWarning(warningBefore);
    }

    std::string Call(const std::string& name, const Inputs& inputs, std::size_t outputCount = 1) const {
        try {
            std::string shown;
            for (const ArrayOwner& output : table.Call(name, outputCount, inputs))
                shown += (shown.empty() ? "" : " ") + Show(output);
            return shown;
        } catch (const Tolvex::MessageIdentifierException& error) {
            return error.GetMessageIdentifier().GetFullName();
        }
    }

    std::string Call(const std::string& name, const std::string& text) const { return Call(name, List(Text(text))); }

    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
    Tolvex::IFileFolderObserverFactory& observers = Tolvex::GetFileFolderObserverFactory(storage);
    const Tolvex::RemotePathPolicy policyBefore = observers.getRemotePathPolicy();
    const Tolvex::ChangeHandleWarning warningBefore = observers.getChangeHandleWarning();
    BuiltInTable table;
};

TEST_F(BuiltInsTest, WrongCallsRaiseTheirErrorAndChangeNothing) {
    observers.setRemotePathPolicy(Tolvex::RemotePathPolicy::timecheckDir);
    observers.setChangeHandleWarning(Tolvex::ChangeHandleWarning::never);
    const std::string maxlhs = "TOLVEX:arguments:maxlhs";
    const std::string maxrhs = "TOLVEX:arguments:maxrhs";
    const std::string minrhs = "TOLVEX:arguments:minrhs";
    const std::string unknownPolicy = "TOLVEX:RemotePolicy:UnknownPolicy";
    const std::string invalidWarning = "TOLVEX:ChangeHandleWarning:InvalidOption";
    const std::string noText = "TOLVEX:string:MustBeStringScalarOrCharacterVector";
    const std::string badPoint = "TOLVEX:tpath:invalidInstallationPoint";
    const std::vector<ustring> twoRows{u"None", u"None"};
    struct Case {
        std::string name;
        std::size_t outputCount;
        Inputs inputs;
        std::string error;
    };
    std::vector<Case> cases;
    const auto add = [&](const std::string& name, std::size_t outputCount, Inputs inputs, const std::string& error) {
        cases.push_back({name, outputCount, std::move(inputs), error});
    };
    for (const std::string name : {"FeatureRemotePathPolicy", "HiddenCanonicalizepath", "FeatureCachePath"}) {
        add(name, 2, {}, maxlhs); // the count of outputs comes first
        add(name, 1, List(Text("None"), Text("None"), Text("None")), maxrhs);
        add(name, 1, {}, minrhs);
    }
    add("FeatureRemotePathPolicy", 1, List(Text("Nothing")), unknownPolicy);
    add("FeatureRemotePathPolicy", 1, List(Text("None ")), unknownPolicy);
    add("FeatureRemotePathPolicy", 1, List(Text("")), unknownPolicy);
    add("FeatureRemotePathPolicy", 1, List(MakeNumericScalar(0)), unknownPolicy);
    add("FeatureRemotePathPolicy", 1, List(MakeStringScalar(std::nullopt)), unknownPolicy);
    add("FeatureRemotePathPolicy", 1, List(MakeCharacterMatrix(twoRows)), unknownPolicy);
    add("FeatureDirChangeHandleWarn", 2, {}, maxlhs);
    add("FeatureDirChangeHandleWarn", 1, List(Text("once"), Text("once")), maxrhs);
    add("FeatureDirChangeHandleWarn", 1, {}, "TOLVEX:ChangeHandleWarning:notEnoughInputs");
    add("FeatureDirChangeHandleWarn", 1, List(Text("sometimes")), invalidWarning);
    add("FeatureDirChangeHandleWarn", 1, List(MakeLogicalScalar(true)), invalidWarning);
    add("HiddenCanonicalizepath", 1, List(MakeNumericScalar(1)), noText);
    add("HiddenCanonicalizepath", 1, List(MakeStringScalar(std::nullopt)), noText);
    add("HiddenCanonicalizepath", 1, List(MakeStringColumn({u"a", u"b"})), noText);
    add("HiddenCanonicalizepath", 1, List(MakeCharacterMatrix(twoRows)), noText);
    add("HiddenCanonicalizepath", 1, List(Text("")), "TOLVEX:tpath:invalidLocation");
    add("FeatureDumpMainSearchPath", 2, {}, maxlhs);
    add("FeatureDumpMainSearchPath", 1, List(Text("all")), maxrhs);
    add("FeatureCachePath", 1, List(Text("keep")), "TOLVEX:CachePath:InvalidOption");
    add("FeatureCachePath", 1, List(Text("status"), Text("file")), maxrhs);
    add("FeatureCachePath", 1, List(Text("drop"), Text("file")), maxrhs);
    for (const std::string option : {"write", "load"}) {
        add("FeatureCachePath", 1, List(Text(option), Text("")), "TOLVEX:CachePath:InvalidFile");
        add("FeatureCachePath", 1, List(Text(option), MakeNumericScalar(1)), "TOLVEX:CachePath:InvalidFile");
        add("FeatureCachePath", 1, List(Text(option), Text(std::string("a\0b", 3))), "TOLVEX:CachePath:InvalidFile");
    }
    add("GetPathForPackagesInstalledAfter", 3, {}, maxlhs);
    add("GetPathForPackagesInstalledAfter", 1, List(Text("1"), Text("1")), maxrhs);
    add("GetPathForPackagesInstalledAfter", 1, {}, minrhs);
    add("GetPathForPackagesInstalledAfter", 1, List(Text("1")), "TOLVEX:tpath:TPMFeatureOff");
    for (const auto& [name, outputCount, inputs, error] : cases)
        EXPECT_EQ(Call(name, inputs, outputCount), error) << name << " with " << inputs.size() << " inputs";

    TolvexComponents::ComponentFeature::Set(true);
    for (const double number : {-1.0, 0.5, 9007199254740994.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(Call("GetPathForPackagesInstalledAfter", List(MakeNumericScalar(number))), badPoint) << number;
    for (const std::string text : {"", "-1", " 1", "1x", "18446744073709551616"})
        EXPECT_EQ(Call("GetPathForPackagesInstalledAfter", text), badPoint) << text;
    EXPECT_EQ(Call("GetPathForPackagesInstalledAfter", List(MakeLogicalScalar(true))), badPoint);
    TolvexComponents::ComponentFeature::Set(false);

    EXPECT_EQ(observers.getRemotePathPolicy(), Tolvex::RemotePathPolicy::timecheckDir);
    EXPECT_EQ(observers.getChangeHandleWarning(), Tolvex::ChangeHandleWarning::never);
}

TEST_F(BuiltInsTest, SettingsAnswerWithTheWordBefore) {
    struct Step {
        const char* option;
        unsigned value;
    };
    const auto walk = [this](const std::string& name, const std::vector<Step>& steps, std::vector<const char*> words,
                             const auto& get) {
        unsigned before = steps.back().value;
        for (const auto& [option, value] : steps) {
            SCOPED_TRACE(name + ' ' + option);
            EXPECT_EQ(Call(name, List(before % 2 == 0 ? Text(option) : StringOf(option)), value % 2),
                      std::string("'") + words[before] + '\'');
            EXPECT_EQ(static_cast<unsigned>(get()), value);
            before = value;
        }
    };
    observers.setRemotePathPolicy(Tolvex::RemotePathPolicy::reload);
    walk("FeatureRemotePathPolicy",
         {{"Reload", 0},
          {"timecheckdir", 1},
          {"STATUS", 1},
          {"NONE", 2},
          {"status", 2},
          {"TimecheckDir", 1},
          {"None", 2},
          {"reload", 0}},
         {"Reload", "TimecheckDir", "None"}, [this] { return observers.getRemotePathPolicy(); });
    observers.setChangeHandleWarning(Tolvex::ChangeHandleWarning::always);
    walk("FeatureDirChangeHandleWarn",
         {{"always", 0},
          {"ONCE", 1},
          {"status", 1},
          {"Never", 2},
          {"Status", 2},
          {"once", 1},
          {"never", 2},
          {"Always", 0}},
         {"always", "once", "never"}, [this] { return observers.getChangeHandleWarning(); });

    observers.setRemotePathPolicy(static_cast<Tolvex::RemotePathPolicy>(3));
    EXPECT_EQ(Call("FeatureRemotePathPolicy", "status"), "nothing");
    EXPECT_EQ(Call("FeatureRemotePathPolicy", "none"), "nothing");
    EXPECT_EQ(Call("FeatureRemotePathPolicy", "status"), "'None'");
    observers.setChangeHandleWarning(static_cast<Tolvex::ChangeHandleWarning>(9));
    EXPECT_EQ(Call("FeatureDirChangeHandleWarn", "status"), "'never'");
}

TEST_F(BuiltInsTest, APathIsCanonicalisedAgainstTheWorkingFolder) {
    Host host;
    host.Write("current/inner/f.kx");
    fs::create_directory_symlink("inner", host.At("current/link"));
    const std::vector<std::pair<std::string, std::string>> cases{
        {"inner", "current/inner"},
        {"link/f.kx", "current/inner/f.kx"},
        {"link/../g.kx", "current/g.kx"},
        {"./missing//deep/./x", "current/missing/deep/x"},
        {"../current/link/", "current/inner"},
        {host.At("current/link"), "current/inner"},
        {".", "current"},
        {"z\xC3\xA4", "current/z\xC3\xA4"},
    };
    for (const auto& [path, expected] : cases) {
        EXPECT_EQ(Call("HiddenCanonicalizepath", path), '\'' + host.At(expected).native() + '\'');
        EXPECT_EQ(Call("HiddenCanonicalizepath", List(StringOf(path)), 0), '"' + host.At(expected).native() + '"');
    }
    EXPECT_EQ(Call("HiddenCanonicalizepath", "/.."), "'/'");
    host.Enter("doomed");
    host.Remove("doomed");
    EXPECT_EQ(Call("HiddenCanonicalizepath", "f"), "TOLVEX:tpath:nameNonexistentOrNotADirectory");
}

TEST_F(BuiltInsTest, AFileHasItsFoldersCanonicalLocationAndItsOwnName) {
    Host host;
    host.Write("folder/f.kx");
    fs::create_directory_symlink("folder", host.At("link"));
    fs::create_symlink("f.kx", host.At("folder/alias.kx"));
    const std::string root = host.At("").parent_path();
    struct Case {
        std::string path;
        std::string canonical;
        std::string cleaned; ///< without the required context
    };
    const std::vector<Case> cases{
        {root + "/link/f.kx", root + "/folder/f.kx", root + "/link/f.kx"},
        {root + "/link/alias.kx", root + "/folder/alias.kx", root + "/link/alias.kx"},
        {root + "/link/./missing/../new.kx", root + "/folder/new.kx", root + "/link/new.kx"},
        {root + "/nowhere/x/new.kx", root + "/nowhere/x/new.kx", root + "/nowhere/x/new.kx"},
        {root + "/link/sub/..", root + "/folder", root + "/link"},
        {root + "/link/.", root + "/folder", root + "/link"},
        {"/../f", "/f", "/f"},
    };
    for (const auto& [path, canonical, cleaned] : cases) {
        const Tolvex::AbsoluteIRI location("file", Tolvex::FromUtf8(path));
        EXPECT_EQ(Tolvex::ToUtf8(PathManagerCanonicalFilePath(location).getPath()), canonical);
        Tolvex::setRequiredContextActive(false);
        EXPECT_EQ(Tolvex::ToUtf8(PathManagerCanonicalFilePath(location).getPath()), cleaned);
        Tolvex::setRequiredContextActive(true);
    }
    const Tolvex::AbsoluteIRI elsewhere("memory", u"/a/../b/f");
    EXPECT_EQ(PathManagerCanonicalFilePath(elsewhere), Tolvex::AbsoluteIRI("memory", u"/b/f"));
    for (const bool active : {true, false}) {
        Tolvex::setRequiredContextActive(active);
        for (const ustring path : {u"/", u"/..", u"/a/..", u"/."})
            EXPECT_THROW((void)PathManagerCanonicalFilePath(Tolvex::AbsoluteIRI("file", path)), NoParentIRIException);
        EXPECT_THROW((void)PathManagerCanonicalFilePath(Tolvex::AbsoluteIRI()), NoParentIRIException);
    }
    Tolvex::setRequiredContextActive(true);
}

/// The process's installation, which the path-entry factory asks for once, and its user's folder for caches.
class InstallationTest : public BuiltInsTest {
protected:
    InstallationTest() {
        GetTree(); // before the factory is made
        SetVariable("XDG_CACHE_HOME", caches.GetRoot());
        Call("FeatureCachePath", "drop");
    }

    static const Tolvex::TemporaryTree& GetTree() {
        static const Tolvex::TemporaryTree tree;
        SetVariable("TOLVEX_ROOT", tree.GetRoot());
        return tree;
    }

    static void SetVariable(const char* name, const fs::path& value) { ::setenv(name, value.c_str(), 1); }

    static std::shared_ptr<const IPathEntry> MakeEntry(const std::string& folder) {
        return GetPathEntryFactory().CreatePathEntry(GetTree().GetIRI(folder), GetFolderMonitor());
    }

    static PathEntrySource GetSource(const IPathEntry& entry) {
        return GetPathEntryFactory().GetEntryState(entry).source;
    }

    std::string GetStatus(const std::string& name) const {
        const std::string status = Call("FeatureCachePath", "STATUS");
        std::smatch line;
        return std::regex_search(status, line, std::regex(name + ": (.*)")) ? line.str(1) : status;
    }

    Tolvex::TemporaryTree caches;
};

TEST_F(InstallationTest, TheCacheIsWrittenLoadedAndDropped) {
    Host host;
    const auto manager = host.CreateManager();
    fs::create_directories(GetTree().GetRoot() / "toolbox");
    std::ofstream(GetTree().GetRoot() / "toolbox/f.kx") << "text";
    auto entry = MakeEntry("toolbox");
    const std::string file = GetStatus("file");
    EXPECT_TRUE(file.starts_with((caches.GetRoot() / "tolvex/path-cache-").native())) << file;
    EXPECT_EQ(GetStatus("exists") + ' ' + GetStatus("loaded"), "no none");
    EXPECT_NE(GetStatus("kept"), "0");
    EXPECT_EQ(Call("FeatureCachePath", "load"), "TOLVEX:CachePath:FailedToLoad") << "there is none yet";

    EXPECT_EQ(Call("FeatureCachePath", "Write"), '\'' + file + '\'');
    const std::string own = host.At("current/own.xml");
    EXPECT_EQ(Call("FeatureCachePath", List(StringOf("WRITE"), StringOf("own.xml")), 0), '\'' + own + '\'');
    EXPECT_EQ(fs::file_size(own), fs::file_size(file));
    EXPECT_EQ(GetStatus("exists") + ' ' + GetStatus("loaded"), "yes none");

    entry.reset();
    EXPECT_EQ(Call("FeatureCachePath", List(Text("LOAD"), Text("own.xml"))), '\'' + own + '\'');
    EXPECT_EQ(GetStatus("loaded"), own);
    entry = MakeEntry("toolbox");
    EXPECT_EQ(GetSource(*entry), PathEntrySource::cacheFile);
    EXPECT_EQ(entry->GetPathItems()->size(), 1U);

    std::ofstream(host.At("current/broken.xml")) << "<Harrowfen";
    EXPECT_EQ(Call("FeatureCachePath", List(Text("load"), Text("broken.xml"))), "TOLVEX:CachePath:FailedToLoad");
    EXPECT_EQ(GetStatus("loaded"), own) << "what was loaded stays";
    EXPECT_EQ(Call("FeatureCachePath", List(Text("write"), Text("own.xml/x.xml"))), "TOLVEX:CachePath:FailedToSave");

    EXPECT_EQ(Call("FeatureCachePath", "Drop"), '\'' + own + '\'');
    EXPECT_EQ(Call("FeatureCachePath", "drop"), "'none'");
    entry.reset();
    Call("FeatureCachePath", List(Text("load"), Text("own.xml")));
    Call("FeatureCachePath", "drop");
    EXPECT_EQ(GetSource(*MakeEntry("toolbox")), PathEntrySource::disk);
}

TEST_F(InstallationTest, TheCacheNeverLiesInsideTheInstallationByDefault) {
    const std::string usual = GetStatus("file");
    const auto tryHome = [this](const fs::path& cacheHome, const fs::path& home) {
        SetVariable("XDG_CACHE_HOME", cacheHome);
        const std::string before = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
        SetVariable("HOME", home);
        const std::string result = GetStatus("file") + ' ' + Call("FeatureCachePath", "write");
        SetVariable("HOME", before);
        return result;
    };
    const fs::path inside = GetTree().GetRoot() / "caches";
    const std::string none = "none TOLVEX:CachePath:NoCacheFolder";
    EXPECT_EQ(tryHome(inside, "/root"), none);
    fs::create_directory_symlink(GetTree().GetRoot(), caches.GetRoot() / "link");
    EXPECT_EQ(tryHome(caches.GetRoot() / "link/caches", "/root"), none);
    EXPECT_EQ(tryHome("relative", "relative"), none);
    EXPECT_FALSE(fs::exists(inside));

    const std::string file = caches.GetRoot() / ".cache/tolvex" / fs::path(usual).filename();
    EXPECT_EQ(tryHome("", caches.GetRoot()), file + " '" + file + '\'');
    std::ofstream(caches.GetRoot() / "file") << "in the way";
    EXPECT_TRUE(tryHome(caches.GetRoot() / "file", "").ends_with("TOLVEX:CachePath:FailedToSave"));
}

TEST_F(InstallationTest, TheDumpTellsOfEveryEntry) {
    EXPECT_TRUE(Call("FeatureDumpMainSearchPath", List()).starts_with("'There is no search path manager"));
    Host host;
    host.Write("main/f.kx");
    host.Write("main/g.kx");
    host.Write("main/+pack/h.kx");
    host.Write("main/+pack/@kind/k.kx");
    auto manager = host.CreateManager();
    host.Set(*manager, {"main"});
    std::string dump = Call("FeatureDumpMainSearchPath", List(), 0);
    const auto expectLine = [&dump](const std::string& pattern) {
        EXPECT_TRUE(std::regex_search(dump, std::regex("(^|\n)" + pattern + "\n"))) << pattern << "\n" << dump;
    };
    expectLine("'?search path: 2 main folders, 1 set by the user");
    // A folder as young as the clock's grain may still count as changed.
    const std::string state = " +(up to|out of) date +";
    const std::string watched = "(time check|notification)";
    expectLine("  main +disk +" + watched + state + "2  " + host.At("main").native());
    expectLine("    package +disk +" + watched + state + "1  " + host.At("main").native() + "/\\+pack");
    expectLine("    method +disk +" + watched + state + "1  " + host.At("main").native() + "/\\+pack/@kind");
    expectLine("  main +disk +" + watched + state + "0  " + host.At("current").native());
    expectLine("current folder: " + host.At("current").native());
    expectLine("working folder: " + host.At("current").native());
    expectLine("installation folder: " + GetTree().GetRoot().native());
    expectLine("packages on the path: none");
    expectLine("remote path policy: (Reload|TimecheckDir|None)");
    expectLine("entries built: [1-9][0-9]*");

    host.Write("main/new.kx");
    const auto newer = GetPathEntryFactory().CreatePathEntry(host.Locate("main"), GetFolderMonitor());
    dump = Call("FeatureDumpMainSearchPath", List());
    expectLine("  main +unknown +" + watched + " +out of date +2  " + host.At("main").native());

    const auto second = host.CreateManager();
    manager.reset();
    EXPECT_TRUE(Call("FeatureDumpMainSearchPath", List()).starts_with("'search path: 1 main folders, 0 set"))
        << "the end of an earlier manager concerns nobody";
    host.Enter("doomed");
    host.Remove("doomed");
    EXPECT_THROW((void)host.CreateManager(), Tolvex::StorageError);
    EXPECT_TRUE(Call("FeatureDumpMainSearchPath", List()).starts_with("'There is no search path manager"));
}

TEST_F(BuiltInsTest, PackagesAreListedFromAPointOnInTheOrderOfTheirInstallation) {
    using namespace TolvexPackages;
    Host host;
    IPackageRegistry::Packages packages;
    const std::uint64_t large = (std::uint64_t{1} << 53) + 1;
    for (const auto& [name, order] :
         std::vector<std::pair<const char*, std::uint64_t>>{{"c", 7}, {"a", 3}, {"d", large}, {"b", 7}}) {
        boost::uuids::uuid identity{};
        identity.data[0] = static_cast<std::uint8_t>(*name);
        PackageRecord record{ComponentIdentifier(Tolvex::FromUtf8(name), {}, identity), {host.Locate(name)}};
        record.order = order;
        packages.push_back(std::make_shared<const PackageRecord>(std::move(record)));
    }
    GetPackageRegistrar().ReplaceRegistry(std::make_shared<const PackageRegistry>(packages), *host.bus);
    TolvexComponents::ComponentFeature::Set(true);
    const auto list = [&](ArrayOwner point, std::size_t outputCount = 2) {
        const std::string shown = Call("GetPathForPackagesInstalledAfter", List(std::move(point)), outputCount);
        return std::regex_replace(shown, std::regex(host.At("").native()), "");
    };
    const std::string largeText = std::to_string(large);
    EXPECT_EQ(list(MakeNumericScalar(0)), R"(["a""c""b""d"] ')" + largeText + '\'');
    EXPECT_EQ(list(MakeNumericScalar(3), 1), R"(["c""b""d"])");
    EXPECT_EQ(list(StringOf("6"), 0), R"(["c""b""d"])");
    EXPECT_EQ(list(MakeNumericScalar(9007199254740992.0), 1), R"("d")");
    EXPECT_EQ(list(Text(largeText)), "[] '" + largeText + '\'');
    EXPECT_EQ(list(Text("18446744073709551615")), "[] '18446744073709551615'");

    GetPackageRegistrar().ReplaceRegistry(std::make_shared<const PackageRegistry>(), *host.bus);
    EXPECT_EQ(list(MakeNumericScalar(5)), "[] '5'");
    TolvexComponents::ComponentFeature::Set(false);
}

} // namespace
} // namespace PathManagement
