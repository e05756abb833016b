#include "foundation/components/PackageManifest.h"

#include "../../storage/test/TemporaryTree.h"

#include <gtest/gtest.h>

#include <fstream>

namespace TolvexPackages {
namespace {

namespace fs = std::filesystem;

class PackageManifestTest : public testing::Test {
protected:
    PackageManifestTest() {
        fs::create_directories(tree.GetRoot() / "package/lib/deep");
        fs::create_directory(tree.GetRoot() / "outside");
    }

    void Write(std::string_view text) { std::ofstream(root / PackageManifest::fileName, std::ios::binary) << text; }

    /// What reading refuses: the line and the reason.
    std::pair<std::size_t, std::string> GetRefusal() {
        try {
            static_cast<void>(ReadPackageManifest(root));
        } catch (const PackageError& error) {
            EXPECT_TRUE(error.GetProblem().file.starts_with(root.native()));
            EXPECT_NE(std::string(error.what()).find(error.GetProblem().file), std::string::npos);
            return {error.GetProblem().line, error.GetProblem().reason};
        }
        return {0, "nothing"};
    }

    Tolvex::TemporaryTree tree;
    fs::path root = tree.GetRoot() / "package";
};

constexpr auto good = R"({
    "name": "signals",
    "version": "1.4.0-beta.2",
    "id": "6f1c9a52-0c7e-4b5e-9d0a-3f6f2a1f8b11",
    "folders": [
        ".",
        "lib",
        "lib/deep"
    ],
    "properties": {
        "PathPosition": "begin",
        "isOld": false,
        "rank": -3,
        "weight": 0.5
    }
}
)";

TEST_F(PackageManifestTest, SaysAllThatItHolds) {
    Write(good);
    const PackageManifest manifest = ReadPackageManifest(root);
    EXPECT_EQ(manifest.identifier.GetName(), u"signals");
    EXPECT_EQ(manifest.identifier.GetVersion().toString(), u"1.4.0-beta.2");
    EXPECT_EQ(manifest.identifier.GetUniqueID().data[0], 0x6f);
    EXPECT_EQ(manifest.folders, (std::vector<std::string>{".", "lib", "lib/deep"}));
    EXPECT_EQ(manifest.properties,
              (std::map<std::string, PropertyValue, std::less<>>{{"PathPosition", Tolvex::ustring(u"begin")},
                                                                 {"isOld", false},
                                                                 {"rank", std::int64_t(-3)},
                                                                 {"weight", 0.5}}));
    Write(R"({"name":"a","version":"0.0.1","id":"6f1c9a52-0c7e-4b5e-9d0a-3f6f2a1f8b11"})");
    EXPECT_EQ(ReadPackageManifest(root).folders, std::vector<std::string>{"."});
}

TEST_F(PackageManifestTest, IsRefusedWithLineAndReason) {
    fs::create_directory_symlink("../outside", root / "away");
    fs::create_directory_symlink("lib", root / "same");
    std::ofstream(root / "file");
    const std::string longVersion = "1.4.0-" + std::string(59, 'a');
    const std::string hundredsOfZeros(400, '0');
    struct Case {
        std::string_view text; // in the good one
        std::string instead;
        std::size_t line;
        std::string_view reason; // part of it
    };
    const std::vector<Case> cases{
        {R"("signals",)", R"("signals")", 3, "no JSON"},
        {"}\n}\n", "}\n", 15, "no JSON"},
        {"}\n}\n", "}\n}\n\n[]", 18, "no JSON"},
        {"signals", "sig\nnals", 2, "no JSON"},
        {"signals", "sig\xFFnals", 2, "no JSON"},
        {R"("signals")", "7", 2, "'name' has to be text"},
        {R"("signals")", "[\n7]", 2, "'name' has to be text"},
        {"signals", "a/b", 2, "no name"},
        {"signals", "a@1", 2, "no name"},
        {"signals", "", 2, "no name"},
        {"signals", "../a", 2, "no name"},
        {R"("name": "signals",)", "", 1, "'name' is missing"},
        {R"("name")", R"("nome")", 2, "'nome' is not known"},
        {R"("version")", R"("name")", 3, "'name' stands there twice"},
        {"1.4.0-beta.2", "1.4", 3, "no version"},
        {"1.4.0-beta.2", "1.04.0", 3, "no version"},
        {"1.4.0-beta.2", "1.4.0-beta..2", 3, "no version"},
        {"1.4.0-beta.2", "1.4.0-02", 3, "no version"},
        {"1.4.0-beta.2", "1.4.0+build", 3, "no version"},
        {"1.4.0-beta.2", longVersion, 3, "no version"},
        {"6f1c9a52-", "", 4, "unique identifier"},
        {"6f1c9a52-0c7e-4b5e-9d0a-3f6f2a1f8b11", "00000000-0000-0000-0000-000000000000", 4, "unique identifier"},
        {R"("lib",)", R"("",)", 7, "not empty"},
        {R"("lib",)", R"(7,)", 7, "has to be a text"},
        {R"(".",)", "", 7, "the package's root"},
        {R"("lib",)", R"(".",)", 7, "the package's root"},
        {R"("lib",)", R"("lib/deep",)", 8, "twice"},
        {R"("lib",)", R"("lib/../../outside",)", 7, "inside"},
        {R"("lib",)", R"("/tmp",)", 7, "inside"},
        {R"("lib",)", R"("missing",)", 7, "not there"},
        {R"("lib",)", R"("file",)", 7, "not there"},
        {R"("lib",)", R"("away",)", 7, "leads out"},
        {R"("lib/deep")", R"("same")", 8, "by another way"},
        {R"("begin")", "true", 11, "'PathPosition' has to be text"},
        {"isOld", "ManualInstall", 12, "set by installing"},
        {": -3", ": null", 13, "'rank' has to be"},
        {"0.5", "{}", 14, "'weight' has to be"},
        {"0.5", "1e400", 14, "too large"},
        {"0.5", "-1e400", 14, "too large"},
        {"0.5", "1" + hundredsOfZeros + ".5", 14, "too large"},
    };
    for (const Case& one : cases) {
        std::string text = good;
        text.replace(text.find(one.text), one.text.size(), one.instead);
        Write(text);
        const auto [line, reason] = GetRefusal();
        EXPECT_EQ(line, one.line) << one.instead << ": " << reason;
        EXPECT_NE(reason.find(one.reason), std::string::npos) << one.instead << ": " << reason;
    }
    for (const std::string_view text : {"", "[]", "7", "\n\n", "nul"}) {
        Write(text);
        EXPECT_NE(GetRefusal().second, "nothing") << text;
    }
    fs::remove(root / PackageManifest::fileName);
    EXPECT_NE(GetRefusal().second.find("missing"), std::string::npos);
    fs::remove_all(root);
    EXPECT_NE(GetRefusal().second.find("no folder"), std::string::npos);
}

TEST_F(PackageManifestTest, NumbersAreReadToTheLastBit) {
    for (const std::string number :
         {"5.231104702840217e-60", "0.1", "-2.5e-8", "123456789.123456789", "1.7976931348623157e308",
          "9223372036854775808", "18446744073709551616", "4.9e-324"}) {
        std::string text = good;
        text.replace(text.find("0.5"), 3, number);
        Write(text);
        EXPECT_EQ(std::get<double>(ReadPackageManifest(root).properties.at("weight")),
                  std::strtod(number.c_str(), nullptr))
            << number;
    }
}

TEST_F(PackageManifestTest, OneThatTheDiskCannotReadIsNamed) {
    fs::create_symlink("/proc/self/mem", root / PackageManifest::fileName); // reading at its beginning fails
    EXPECT_NE(GetRefusal().second.find("cannot be read"), std::string::npos);
}

// Cut anywhere, a manifest is refused, and no cut sends the reader elsewhere.
TEST_F(PackageManifestTest, CutOffIsNeverTaken) {
    const std::string_view whole(good);
    for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
        Write(whole.substr(0, length));
        EXPECT_NE(GetRefusal().second, "nothing") << length;
    }
}

} // namespace
} // namespace TolvexPackages
