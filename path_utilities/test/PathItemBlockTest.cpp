#include "path_utilities/PathItemBlock.h"

#include "foundation/storage/MemoryStorage.h"
#include "foundation/text/NameHash.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <tuple>

namespace PathManagement {
namespace {

using Tolvex::FoldCase;

const auto folder = Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI("/lib"));

std::shared_ptr<const PathItemBlock> MakeBlock(const std::vector<ustring>& names) {
    const std::vector<ustring_view> views(names.begin(), names.end());
    return PathItemBlock::Create(folder, views);
}

/// Names of letters that fold, dots in any place, and units that are no text.
rc::Gen<std::vector<ustring>> AnyNames() {
    const auto unit = rc::gen::element<char16_t>(u'a', u'A', u'b', u'.', u'.', u'ß', u'ẞ', u'σ', u'ς', 0xDC80, 0xD83D,
                                                 0xDE00, 0xD801, 0xDC00, u'\n');
    return rc::gen::container<std::vector<ustring>>(rc::gen::nonEmpty(rc::gen::container<ustring>(unit)));
}

RC_GTEST_PROP(PathItemBlock, HoldsEveryNameSortedWholeAndFindable, ()) {
    const std::vector<ustring> names = *AnyNames();
    const auto block = MakeBlock(names);
    std::vector<std::tuple<ustring, ustring, ustring>> expected;
    for (const ustring& name : names) {
        const FileNameParts parts = SplitFileName(name);
        RC_ASSERT(ustring(parts.stem).append(parts.extension) == name);
        RC_ASSERT(parts.extension.rfind(u'.') == (parts.extension.empty() ? ustring::npos : 0));
        RC_ASSERT(!parts.stem.empty());
        expected.emplace_back(FoldCase(parts.stem), parts.stem, parts.extension);
    }
    std::sort(expected.begin(), expected.end());
    RC_ASSERT(block->GetItems().size() == expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const PathItem& item = block->GetItems()[i];
        RC_ASSERT(std::tuple(ustring(item.GetNormalizedStem()), ustring(item.GetStem()),
                             ustring(item.GetExtension())) == expected[i]);
        RC_ASSERT(item.GetNameHash() == Tolvex::HashName(item.GetNormalizedStem()));
        RC_ASSERT(item.GetIRI() == folder.getChild(ustring(item.GetStem()).append(item.GetExtension())));
        const auto same = block->FindByNormalizedStem(item.GetNormalizedStem());
        RC_ASSERT(std::count_if(expected.begin(), expected.end(), [&](const auto& each) {
                      return std::get<0>(each) == item.GetNormalizedStem();
                  }) == static_cast<std::ptrdiff_t>(same.size()));
        RC_ASSERT(&same.front() <= &item && &item <= &same.back());
    }
    RC_ASSERT(block->FindByNormalizedStem(u"not there").empty());
}

TEST(PathItemBlock, TakesManyExtensionsKindsAndTheLongestName) {
    std::vector<ustring> names{u"a.kx", u"b.kxp", u"c.kxa", u"d.KX", u"e", u"f."};
    for (int i = 0; i < 100; ++i)
        names.push_back(u"many." + ustring(static_cast<std::size_t>(i), u'x'));
    names.push_back(ustring(65535, u'n'));
    const auto block = MakeBlock(names);
    ASSERT_EQ(block->GetItems().size(), names.size());
    std::string kinds;
    for (const PathItem& item : block->GetItems().first(6))
        kinds += std::to_string(static_cast<int>(item.GetKind()));
    EXPECT_EQ(kinds, "001222");
    EXPECT_EQ(block->FindByNormalizedStem(u"many").size(), 100u);
    EXPECT_EQ(block->GetItems().back().GetStem().size(), 65535u);
    EXPECT_THROW(MakeBlock({ustring(65536, u'n')}), std::length_error);
}

} // namespace
} // namespace PathManagement
