#include "foundation/text/NameHash.h"

#include "foundation/text/CaseFolding.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>
#include <vector>

namespace Tolvex {
namespace {

// File names of one folder often differ in a digit only; an index is as good as their hashes are distinct.
TEST(NameHash, HardlyEverMeetsForNumberedNames) {
    constexpr std::size_t count = 100'000;
    std::set<std::uint32_t> hashes;
    for (std::size_t i = 0; i != count; ++i)
        hashes.insert(HashName(FromUtf8("function" + std::to_string(i))));
    EXPECT_GT(hashes.size(), count - 10); // a fair 32-bit hash loses one or two
}

TEST(NameHash, LooksAtEveryUnitAndNothingElse) {
    const ustring text = u"xxsomethingxx";
    const ustring_view inside = ustring_view(text).substr(2, 9);
    EXPECT_EQ(HashName(inside), HashName(u"something"));
    for (std::size_t i = 0; i != 9; ++i) {
        ustring changed(inside);
        changed[i] = static_cast<char16_t>(changed[i] + 0x100); // the upper byte counts, too
        EXPECT_NE(HashName(changed), HashName(inside)) << i;
    }
    EXPECT_NE(HashName(u"a"), HashName(ustring_view(u"a\0", 2)));
}

RC_GTEST_PROP(NameHash, FoldingAndHashingInOnePassIsBoth, ()) {
    const auto units = *rc::gen::container<std::vector<char16_t>>(rc::gen::weightedOneOf<char16_t>(
        {{30, rc::gen::inRange<char16_t>(0, 0x80)},
         {1, rc::gen::elementOf(std::vector<char16_t>{0x130, 0x212A, 0xC4, 0x3C2, 0xD801, 0xDC00, 0xFF21})}}));
    const ustring name(units.begin(), units.end());
    ustring out(name.size(), u'?');
    const std::uint32_t hash = FoldAndHashName(name, out.data());
    RC_ASSERT(out == FoldCase(name));
    RC_ASSERT(hash == HashName(out));
}

} // namespace
} // namespace Tolvex
