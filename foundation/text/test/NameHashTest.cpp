#include "foundation/text/NameHash.h"

#include <gtest/gtest.h>

#include <set>

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

} // namespace
} // namespace Tolvex
