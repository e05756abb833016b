#include "shell/BuiltInCall.h"

#include "Output.h"
#include "UsageError.h"
#include "shell/ArrayText.h"

#include "foundation/text/ustring.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <limits>

namespace TolvexPath {
namespace {

using namespace TolvexArrays;

/// "c:" a row of characters, "s:" a string, "n:" a number, "l:" true or false.
std::string Draw(const vxArray& input) {
    if (const auto number = GetNumber(input))
        return fmt::format("n:{}", *number);
    if (const auto truth = GetTruth(input))
        return fmt::format("l:{}", *truth);
    return (GetKind(input) == ArrayKind::character ? "c:" : "s:") + Tolvex::ToUtf8(GetScalarText(input).value_or(u"?"));
}

/// "outputs = name(inputs)", and "json" behind it.
std::string Draw(const BuiltInCall& call) {
    std::string drawn;
    for (const auto& output : call.outputs)
        drawn.append(output).append(" ");
    drawn.append(drawn.empty() ? "" : "= ").append(call.name).append("(");
    for (const auto& input : call.inputs)
        drawn.append(&input == call.inputs.data() ? "" : "|").append(Draw(*input));
    return drawn.append(call.wantsJson ? ")json" : ")");
}

TEST(BuiltInCallTest, ReadsCalls) {
    const std::pair<std::string_view, std::string_view> calls[] = {
        {"F()", "F()"},
        {"  F_2 (  )  ", "no call"},
        {"  F_2(  )  ", "F_2()"},
        {"F('a b', \"c\",2)", "F(c:a b|s:c|n:2)"},
        {"F('it''s', \"say \"\"x\"\"\", '', \"\")", "F(c:it's|s:say \"x\"|c:|s:)"},
        {R"(F('a\n#,)', "(' "))", R"(F(c:a\n#,)|s:(' ))"},
        {"F(' a ', '''', '\xC3\xA4\xFF')", "F(c: a |c:'|c:\xC3\xA4\xFF)"},
        {"F(-1.5e3,+.5,0,1.,true,false)", "F(n:-1500|n:0.5|n:0|n:1|l:true|l:false)"},
        {"F(9007199254740993)", "F(n:9007199254740992)"},
        {"F() --json", "F()json"},
        {"F(1)--json# why", "F(n:1)json"},
        {"F()# --json", "F()"},
        {" [a,b_1] = F('x')", "a b_1 = F(c:x)"},
        {"[a]=F()", "a = F()"},
        {"F g()", "no call"},
        {"2F()", "no call"},
        {"-F()", "no call"},
        {"", "no call"},
    };
    for (const auto& [line, drawn] : calls)
        EXPECT_EQ(drawn, IsBuiltInCall(line) ? Draw(ReadBuiltInCall(line)) : "no call") << line;
}

TEST(BuiltInCallTest, SaysWhereALineIsNoCall) {
    const std::pair<std::string_view, std::string_view> faults[] = {
        {"F(", "an input is missing at the end of the line"},
        {"F('a'", "',' or ')' is missing at the end of the line"},
        {"F('a' 'b')", "',' or ')' is missing; found ''b')'"},
        {"F(,1)", "an input is missing; found ',1)'"},
        {"F(1,)", "an input is missing; found ')'"},
        {"F('a)", "the line ends inside a quoted text"},
        {"F('a'')", "the line ends inside a quoted text"},
        {"F(\"a')", "the line ends inside a quoted text"},
        {"F(word)", "'word' is no input: texts need quotes, else it has to be a number, true or false"},
        {"F(1x)", "'1x' is no input: texts need quotes, else it has to be a number, true or false"},
        {"F(+-1)", "'+-1' is no input: texts need quotes, else it has to be a number, true or false"},
        {"F(inf)", "'inf' is no input: texts need quotes, else it has to be a number, true or false"},
        {"F(1e999)", "'1e999' is no input: texts need quotes, else it has to be a number, true or false"},
        {"F() x", "the call has ended; only --json may follow; found 'x'"},
        {"F() --jsonx", "the call has ended; only --json may follow; found 'x'"},
        {"F();", "the call has ended; only --json may follow; found ';'"},
        {"[a b] = F()", "']' is missing; found 'b] = F()'"},
        {"[a, a] = F()", "two outputs are called 'a'"},
        {"[] = F()", "an output's name is missing; found '] = F()'"},
        {"[a] F()", "'=' is missing; found 'F()'"},
        {"[a] = 1", "a function's name is missing; found '1'"},
        {"[a] = F", "'(' is missing at the end of the line"},
    };
    for (const auto& [line, fault] : faults) {
        ASSERT_TRUE(IsBuiltInCall(line)) << line;
        try {
            ADD_FAILURE() << line << " is read as " << Draw(ReadBuiltInCall(line));
        } catch (const UsageError& error) {
            EXPECT_EQ(fault, error.what()) << line;
        }
    }
}

RC_GTEST_PROP(BuiltInCallTest, AnyTextInQuotesIsReadAsItIs, (const std::string& text, bool isDouble)) {
    const char quote = isDouble ? '"' : '\'';
    std::string written(1, quote);
    for (const char character : text)
        written.append(character == quote ? 2 : 1, character);
    const BuiltInCall call = ReadBuiltInCall("F(1, " + written + quote + ")");
    RC_ASSERT(call.inputs.size() == 2U);
    RC_ASSERT(Tolvex::ToUtf8(*GetScalarText(*call.inputs[1])) == text);
}

TEST(BuiltInCallTest, KnowsTheInputThatIsBeingTypedIn) {
    const std::pair<std::string_view, std::string_view> lines[] = {
        {"F(", "F@2"},
        {"F( ", "F@3"},
        {"F('", "F@2'"},
        {"F( \"ab", "F@3\"ab"},
        {"[a, b] = F('x", "F@11'x"},
        {"F('ab'", "none"},
        {"F('ab', 'c", "none"},
        {"F(12", "none"},
        {"F", "none"},
        {"[a", "none"},
        {"", "none"},
        {"[", "none"},
    };
    for (const auto& [line, expected] : lines) {
        const auto open = ReadOpenCall(line);
        const std::string quote(open && open->quote != 0 ? 1 : 0, open ? open->quote : ' ');
        EXPECT_EQ(expected, open ? fmt::format("{}@{}{}{}", open->name, open->inputStart, quote, open->text) : "none")
            << line;
    }
}

/// What goes to the standard output.
template <class Write>
std::string Capture(const Write& write) {
    testing::internal::CaptureStdout();
    Output output;
    write(output);
    output.Flush();
    return testing::internal::GetCapturedStdout();
}

TEST(ArrayTextTest, ShowsArraysOfEveryKind) {
    const auto check = [](ArrayOwner array, std::string_view shown, std::string_view json) {
        const ArrayOwner arrays[] = {std::move(array)};
        EXPECT_EQ(shown, Capture([&](Output& output) { ShowArrays(output, {}, arrays); }));
        EXPECT_EQ(json, Capture([&](Output& output) { WriteArraysJson(output, {}, arrays); }));
    };
    const ustring rows[] = {u"ab", u"c\""};
    check(MakeCharacterVector(u"a\nb\n\nc\x1b"), "a\nb\n\nc\\x1b\n", "\"a\\nb\\n\\nc\\u001b\"\n");
    check(MakeCharacterVector(u""), "", "\"\"\n");
    check(MakeCharacterMatrix({}), "", "\"\"\n");
    check(MakeCharacterMatrix(rows), "ab\nc\"\n", "[\"ab\",\"c\\\"\"]\n");
    check(MakeStringScalar(u"x"), "x\n", "\"x\"\n");
    check(MakeStringScalar(std::nullopt), "<missing>\n", "null\n");
    check(MakeStringColumn({u"x", std::nullopt}), "x\n<missing>\n", "[\"x\",null]\n");
    check(MakeStringColumn({}), "", "[]\n");
    check(MakeNumericScalar(0.1), "0.1\n", "0.1\n");
    check(MakeNumericScalar(-std::numeric_limits<double>::infinity()), "-inf\n", "null\n");
    check(MakeLogicalScalar(true), "true\n", "true\n");
    check(nullptr, "", "null\n");
}

TEST(ArrayTextTest, ShowsSeveralOutputsByTheirNames) {
    std::vector<ArrayOwner> arrays;
    arrays.push_back(MakeStringColumn({u"x", u"y"}));
    arrays.push_back(MakeNumericScalar(3));
    arrays.emplace_back();
    const std::string names[] = {"a", "b", "c"};
    EXPECT_EQ("a:\n  x\n  y\nb:\n  3\n", Capture([&](Output& output) { ShowArrays(output, names, arrays); }));
    EXPECT_EQ("{\"a\":[\"x\",\"y\"],\"b\":3,\"c\":null}\n",
              Capture([&](Output& output) { WriteArraysJson(output, names, arrays); }));
}

} // namespace
} // namespace TolvexPath
