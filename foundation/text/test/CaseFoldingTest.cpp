#include "foundation/text/CaseFolding.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <utf8proc.h>

#include <cctype>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>

namespace Tolvex {
namespace {

constexpr auto unicodeDataFile = "/usr/share/unicode/CaseFolding.txt"; // Debian package unicode-data

struct UnicodeFoldings {
    std::string version; // "15.0.0"
    std::map<char32_t, char32_t> simple;
};

UnicodeFoldings ReadUnicodeFoldings(std::istream& data) {
    UnicodeFoldings foldings;
    std::string line;
    std::getline(data, line); // "# CaseFolding-15.0.0.txt"
    foldings.version = line.substr(line.find('-') + 1);
    foldings.version.resize(foldings.version.rfind(".txt"));
    while (std::getline(data, line)) { // "0041; C; 0061; # LATIN CAPITAL LETTER A"
        std::istringstream fields(line);
        std::uint32_t from = 0;
        std::uint32_t to = 0;
        char semicolon = 0;
        char status = 0;
        if (fields >> std::hex >> from >> semicolon >> status >> semicolon >> to && (status == 'C' || status == 'S'))
            foldings.simple.emplace(from, to);
    }
    return foldings;
}

TEST(CaseFolding, IsWhatTheUnicodeDataSays) {
    std::ifstream data(unicodeDataFile);
    if (!data)
        GTEST_SKIP() << unicodeDataFile << " is not installed; nothing was compared";
    const UnicodeFoldings foldings = ReadUnicodeFoldings(data);
    ASSERT_GT(foldings.simple.size(), 1000U);

    // Characters that only one of the two Unicode versions has cannot be compared.
    const bool sameVersion = foldings.version == utf8proc_unicode_version();
    std::size_t compared = 0;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        const auto found = foldings.simple.find(c);
        const bool known = utf8proc_category(static_cast<utf8proc_int32_t>(c)) != UTF8PROC_CATEGORY_CN;
        if (!sameVersion && (found == foldings.simple.end() || !known))
            continue;
        ++compared;
        const char32_t expected = found == foldings.simple.end() ? c : found->second;
        ASSERT_EQ(static_cast<std::uint32_t>(FoldCase(c)), static_cast<std::uint32_t>(expected))
            << std::hex << static_cast<std::uint32_t>(c);
    }
    EXPECT_GE(compared, sameVersion ? 0x110000U : 1000U);
}

TEST(CaseFolding, NeverChangesTheNumberOfCodeUnitsAndIsStable) {
    for (char32_t c = 0; c <= 0x110000; ++c) {
        const char32_t folded = FoldCase(c);
        ASSERT_EQ(folded > 0xFFFF, c > 0xFFFF) << std::hex << static_cast<std::uint32_t>(c);
        ASSERT_EQ(FoldCase(folded), folded) << std::hex << static_cast<std::uint32_t>(c);
    }
}

char32_t NextCodePoint(ustring_view text, std::size_t& position) {
    const char16_t unit = text[position++];
    const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
    if (!isHigh || position == text.size() || text[position] < 0xDC00 || text[position] > 0xDFFF)
        return unit;
    return 0x10000 + ((unit & 0x3FFU) << 10) + (text[position++] & 0x3FFU);
}

// The slow and obvious way.
ustring FoldOneByOne(ustring_view text) {
    ustring folded;
    for (std::size_t position = 0; position != text.size();) {
        const char32_t c = FoldCase(NextCodePoint(text, position));
        if (c > 0xFFFF)
            folded += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
        folded += static_cast<char16_t>(c > 0xFFFF ? 0xDC00 + (c & 0x3FF) : c);
    }
    return folded;
}

// Runs of ASCII around the block borders, letters of every plane that folds, whole and broken surrogate pairs.
rc::Gen<ustring> Names() {
    const std::vector<ustring> parts{u"A",           u"z",      u"@AZ[",   u"`az{",       u"Seventy",    u"EightLet",
                                     u"aLongerName", u"_9",     u"\u00C4", u"\u00DF",     u"\u1E9E",     u"\u0130",
                                     u"\u03A3",      u"\u03C2", u"\u212A", u"\U00010400", u"\U0001E900", u"\U0001F600",
                                     {0xD801},       {0xDC00},  {0xDCC4}};
    return rc::gen::map(rc::gen::container<std::vector<ustring>>(rc::gen::elementOf(parts)),
                        [](const std::vector<ustring>& chosen) {
                            ustring joined;
                            for (const auto& part : chosen)
                                joined += part;
                            return joined;
                        });
}

RC_GTEST_PROP(CaseFolding, OfTextsIsThatOfTheirCodePoints, ()) {
    const ustring text = *Names();
    const ustring expected = FoldOneByOne(text);
    RC_ASSERT(FoldCase(text) == expected);
    ustring inPlace = text;
    RC_ASSERT(FoldCaseTo(inPlace, inPlace.data()) == (expected != text));
    RC_ASSERT(inPlace == expected);
}

RC_GTEST_PROP(CaseFolding, ComparesAsTheFoldedTextsDo, ()) {
    const ustring a = *Names();
    const ustring folded = FoldCase(a);
    RC_ASSERT(EqualIgnoringCase(a, folded));
    RC_ASSERT(EqualIgnoringCase(folded, a));
    ustring b = *rc::gen::oneOf(Names(), rc::gen::just(a));
    if (!b.empty()) {
        const auto changed = *rc::gen::inRange<std::size_t>(0, b.size());
        b[changed] = *rc::gen::element<char16_t>(u'a', u'A', u'[', u'{', 0x00E4, 0x00C4, 0xD801, 0xDC28, 0xDC00);
    }
    RC_ASSERT(EqualIgnoringCase(a, b) == (folded == FoldCase(b)));
}

// First use from several threads at once; meant for the thread sanitizer.
TEST(CaseFolding, MayBeAskedFromAnyThread) {
    const auto sum = [](std::uint64_t& result) {
        for (char32_t c = 0; c <= 0xFFFF; ++c)
            result += FoldCase(c);
    };
    std::uint64_t here = 0;
    std::uint64_t there = 0;
    std::thread other(sum, std::ref(there));
    sum(here);
    other.join();
    EXPECT_EQ(here, there);
}

} // namespace
} // namespace Tolvex
