#include "foundation/text/ustring.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

namespace Tolvex {
namespace {

struct Conversion {
    std::string_view bytes;
    ustring_view text;
};

TEST(Utf8, BytesAndTextMatchBothWays) {
    const std::vector<Conversion> conversions{{"", u""},
                                              {"sin.kx", u"sin.kx"},
                                              {std::string_view("a\0b", 3), ustring_view(u"a\0b", 3)},
                                              {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", u"\x7F\x80\x7FF\x800"},
                                              {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\xD7FF\xE000\xFFFF"},
                                              {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
                                              {"eight of ASCII, then \xC3\xA4", u"eight of ASCII, then \u00E4"},
                                              {"\x80", u"\xDC80"},
                                              {"\xE2\x82x", u"\xDCE2\xDC82x"},
                                              {"\xC0\xAF", u"\xDCC0\xDCAF"},
                                              {"\xE0\x9F\xBF", u"\xDCE0\xDC9F\xDCBF"},
                                              {"\xF0\x8F\xBF\xBF", u"\xDCF0\xDC8F\xDCBF\xDCBF"},
                                              {"\xED\xA0\x80", u"\xDCED\xDCA0\xDC80"},
                                              {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},
                                              {"eightbyte\xFFn\xC3\xBC", u"eightbyte\xDCFFn\u00FC"}};
    for (const auto& [bytes, text] : conversions) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(FromUtf8(bytes), text);
        EXPECT_EQ(ToUtf8(text), bytes);
        ustring appended = u"before";
        AppendFromUtf8(appended, bytes);
        EXPECT_EQ(appended, u"before" + ustring(text));
    }
}

TEST(Utf8, OtherLoneSurrogatesKeepTheirPlaceInTheBytes) {
    EXPECT_EQ(ToUtf8(u"\xD800z\xDC7F\xDFFF"), "\xED\xA0\x80z\xED\xB1\xBF\xED\xBF\xBF");
}

// Bytes that begin, continue and break sequences, so that random texts are full of near misses.
rc::Gen<std::string> MixedBytes() {
    return rc::gen::map(
        rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(std::vector<std::string>{
            "a", "name", "longer than a block", "\x80", "\xBF", "\xC2", "\xC0", "\xE0", "\xA0", "\xED", "\xEF", "\xF0",
            "\x90", "\xF4", "\x8F", "\xFF", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})),
        [](const std::vector<std::string>& parts) {
            std::string joined;
            for (const auto& part : parts)
                joined += part;
            return joined;
        });
}

RC_GTEST_PROP(Utf8, AnyBytesSurviveTheRoundTripInAtMostOneUnitAByte, ()) {
    const auto bytes = *rc::gen::oneOf(MixedBytes(), rc::gen::arbitrary<std::string>());
    const ustring text = FromUtf8(bytes);
    RC_ASSERT(text.size() <= bytes.size());
    RC_ASSERT(ToUtf8(text) == bytes);
}

RC_GTEST_PROP(Text, ShortCutsSayWhatTheStandardLibrarySays, ()) {
    const auto nearly = [](const ustring& text, std::size_t change) {
        ustring other = text;
        if (change < other.size())
            other[change] = static_cast<char16_t>(other[change] ^ (change % 2 == 0 ? 0x100 : 1));
        return other;
    };
    const auto units = *rc::gen::container<std::vector<char16_t>>(
        rc::gen::elementOf(std::vector<char16_t>{0, 1, u'.', u'/', u'0', 0x2E2F, 0x2F00, 0x7F2F, 0x802F, 0xFFFF}));
    const ustring text(units.begin(), units.end());
    const ustring other = nearly(text, *rc::gen::inRange<std::size_t>(0, text.size() + 3));
    RC_ASSERT(IsSameText(text, other) == (text == other));
    const auto length = *rc::gen::inRange<std::size_t>(0, text.size() + 1);
    RC_ASSERT(IsSameText(text, other.substr(0, length)) == (text == other.substr(0, length)));
    for (const char16_t unit : {u'/', u'\0', u'\xFFFF'})
        RC_ASSERT(ContainsUnit(text, unit) == (text.find(unit) != ustring::npos));
}

} // namespace
} // namespace Tolvex
