#include "foundation/arrays/BuiltInTable.h"
#include "foundation/arrays/HostError.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

namespace TolvexArrays {
namespace {

TEST(Arrays, OnlyOneWholeTextIsAScalarText) {
    struct Case {
        ArrayOwner array;
        ArrayKind kind;
        std::size_t rowCount;
        std::size_t columnCount;
        std::optional<ustring_view> text;
    };
    const std::array<ustring, 2> rows{u"ab", u"cd"};
    std::array<Case, 12> cases{{
        {MakeCharacterVector(u"a\u00E4"), ArrayKind::character, 1, 2, u"a\u00E4"},
        {MakeCharacterVector(u""), ArrayKind::character, 1, 0, u""},
        {MakeCharacterMatrix({}), ArrayKind::character, 0, 0, u""},
        {MakeCharacterMatrix(std::span(rows).first(1)), ArrayKind::character, 1, 2, u"ab"},
        {MakeCharacterMatrix(rows), ArrayKind::character, 2, 2, std::nullopt},
        {MakeStringScalar(u"ab"), ArrayKind::string, 1, 1, u"ab"},
        {MakeStringScalar(u""), ArrayKind::string, 1, 1, u""},
        {MakeStringScalar(std::nullopt), ArrayKind::string, 1, 1, std::nullopt},
        {MakeStringColumn({u"a", std::nullopt}), ArrayKind::string, 2, 1, std::nullopt},
        {MakeStringColumn({}), ArrayKind::string, 0, 1, std::nullopt},
        {MakeNumericScalar(2.5), ArrayKind::numeric, 1, 1, std::nullopt},
        {MakeLogicalScalar(true), ArrayKind::logical, 1, 1, std::nullopt},
    }};
    for (const auto& [array, kind, rowCount, columnCount, text] : cases) {
        SCOPED_TRACE(static_cast<int>(kind));
        EXPECT_EQ(GetKind(*array), kind);
        EXPECT_EQ(GetRowCount(*array), rowCount);
        EXPECT_EQ(GetColumnCount(*array), columnCount);
        EXPECT_EQ(String::isNonMissingScalarText(*array), text.has_value());
        EXPECT_EQ(GetScalarText(*array), text);
        EXPECT_EQ(GetNumber(*array), kind == ArrayKind::numeric ? std::optional(2.5) : std::nullopt);
        EXPECT_EQ(GetTruth(*array), kind == ArrayKind::logical ? std::optional(true) : std::nullopt);
    }
    EXPECT_EQ(GetCharacters(*cases[4].array), u"abcd");
    EXPECT_EQ(GetStrings(*cases[8].array)[1], std::nullopt);
    const std::array<ustring, 2> uneven{u"ab", u"c"};
    EXPECT_THROW((void)MakeCharacterMatrix(uneven), std::invalid_argument);
}

void CountArguments(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    outputs[0] = MakeNumericScalar(outputCount * 100 + inputCount).release();
    if (inputCount > 0 && GetTruth(*inputs[0]) == true)
        error_maxlhs();
}

void DoNothing(int, vxArray*[], int, vxArray*[]) {}

std::string GetError(const auto& call) {
    try {
        call();
    } catch (const HostError& error) {
        return error.GetMessageIdentifier().GetFullName();
    }
    return {};
}

TEST(BuiltInTable, CallsByNameAndOwnsWhatIsPutOut) {
    BuiltInTable table;
    table.Add(std::array<BuiltIn, 2>{{{"Count", &CountArguments}, {"Nothing", &DoNothing}}});
    const std::array<ArrayOwner, 1> one{MakeLogicalScalar(false)};
    for (const std::size_t outputCount : {0U, 1U, 3U}) {
        const auto outputs = table.Call("Count", outputCount, one);
        ASSERT_EQ(outputs.size(), std::max<std::size_t>(outputCount, 1));
        EXPECT_EQ(GetNumber(*outputs.front()), static_cast<double>(outputCount) * 100 + 1);
        EXPECT_EQ(outputs.back() == nullptr, outputCount > 1);
    }
    EXPECT_EQ(table.Call("Nothing", 1, {}).front(), nullptr);
    const std::array<ArrayOwner, 1> failing{MakeLogicalScalar(true)};
    EXPECT_EQ(GetError([&] { table.Call("Count", 1, failing); }), "TOLVEX:arguments:maxlhs");
    EXPECT_EQ(GetError([&] { table.Call("count", 1, {}); }), "TOLVEX:arguments:unknownFunction");
    EXPECT_EQ(GetError(error_maxrhs) + ' ' + GetError(error_minrhs), "TOLVEX:arguments:maxrhs TOLVEX:arguments:minrhs");
}

TEST(BuiltInTable, TakesInAllOrNone) {
    BuiltInTable table;
    for (const BuiltIn wrong : {BuiltIn{"", &DoNothing}, BuiltIn{"Other", nullptr}, BuiltIn{"Good", &DoNothing}})
        EXPECT_THROW(table.Add(std::array<BuiltIn, 2>{{{"Good", &DoNothing}, wrong}}), std::invalid_argument);
    EXPECT_EQ(table.Find("Good"), nullptr);
}

} // namespace
} // namespace TolvexArrays
