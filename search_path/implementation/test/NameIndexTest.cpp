#include "path_model/NameIndex.h"

#include "foundation/storage/MemoryStorage.h"
#include "foundation/text/NameHash.h"
#include "path_utilities/PathItemBlock.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace PathManagement {
namespace {

/// From one part to many, with names that are in many slots, in one, and in none.
class NameIndexSizes : public testing::TestWithParam<std::size_t> {};

TEST_P(NameIndexSizes, GivesTheRecordsOfEveryNameInSlotOrder) {
    std::mt19937 random(static_cast<unsigned>(GetParam()));
    std::vector<std::shared_ptr<const PathItemBlock>> blocks;
    std::map<std::uint32_t, std::vector<std::pair<std::uint32_t, std::uint32_t>>> expected;
    std::vector<std::span<const PathItem>> itemsBySlot;
    const auto folder = Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI("/m"));
    for (std::uint32_t slot = 0; slot * 50 < GetParam(); ++slot) {
        std::vector<ustring> names;
        for (int i = 0; i < 50; ++i) {
            const auto range = i % 2 == 0 ? 20u : 2 * static_cast<unsigned>(GetParam());
            names.push_back(Tolvex::FromUtf8((i % 3 == 0 ? "F" : "f") + std::to_string(random() % range) + ".kx"));
        }
        const std::vector<ustring_view> views(names.begin(), names.end());
        blocks.push_back(PathItemBlock::Create(folder, views));
        itemsBySlot.push_back(blocks.back()->GetItems());
        std::map<ustring, std::uint32_t> firstOfName;
        for (std::uint32_t item = 0; item < itemsBySlot.back().size(); ++item)
            firstOfName.emplace(itemsBySlot.back()[item].GetNormalizedStem(), item);
        for (const auto& [name, item] : firstOfName)
            expected[Tolvex::HashName(name)].emplace_back(slot, item);
    }
    const NameIndex index(itemsBySlot);
    std::size_t count = 0;
    for (const auto& [hash, records] : expected) {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> found;
        for (const NameRecord& record : index.Find(hash))
            found.emplace_back(record.slot, record.item);
        ASSERT_EQ(found, records);
        count += records.size();
    }
    EXPECT_EQ(index.GetCount(), count);
    for (int i = 0; i < 1000; ++i) {
        const auto hash = static_cast<std::uint32_t>(random());
        ASSERT_EQ(index.Find(hash).empty(), !expected.contains(hash));
    }
}

INSTANTIATE_TEST_SUITE_P(Items, NameIndexSizes, testing::Values(0, 50, 5000, 20000, 100000));

} // namespace
} // namespace PathManagement
