#include "foundation/environment/EngineScopeStore.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace Tolvex {
namespace {

template <int number>
struct Part {
    explicit Part(std::function<void()> farewell) : atEnd(std::move(farewell)) {}
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    ~Part() { atEnd(); }
    static EngineScopeStore::Identifier GetIdentifier() { return EngineScopeStore::getNextID(typeid(Part)); }
    static void Put(std::function<void()> farewell) {
        EngineScopeStore::Put(GetIdentifier(), std::make_shared<Part>(std::move(farewell)));
    }
    std::function<void()> atEnd;
};

TEST(EngineScopeStore, KeepsTheLatestOfEachTypeUntilTheEngineEnds) {
    std::string gone;
    for (const char* const engine : {"first", "second"}) {
        gone.clear();
        EXPECT_EQ(EngineScopeStore::Get(Part<1>::GetIdentifier()), nullptr) << engine;
        Part<1>::Put([&gone] { gone += "1 "; });
        Part<2>::Put([&gone] {
            gone += EngineScopeStore::Get(Part<3>::GetIdentifier()) == nullptr ? "2 " : "2 before 3 ";
            Part<4>::Put([&gone] { gone += "4 "; });
        });
        Part<3>::Put([&gone] { gone += "3 "; });
        Part<1>::Put([&gone] { gone += "1 again "; });
        EXPECT_EQ(gone, "1 ");
        EngineScopeStore::End();
        EXPECT_EQ(gone, "1 1 again 3 2 4 ");
    }
}

TEST(EngineScopeStoreDeathTest, TheEndOfTheProcessEndsTheEngine) {
    const auto endProcess = [] {
        Part<1>::Put([] { std::fprintf(stderr, "1 gone\n"); });
        std::exit(0);
    };
    EXPECT_EXIT(endProcess(), testing::ExitedWithCode(0), "1 gone\n");
}

} // namespace
} // namespace Tolvex
