#include "foundation/environment/ProcessScopeStore.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <set>
#include <thread>
#include <vector>

namespace Tolvex {
namespace {

struct Contested {
    explicit Contested(std::atomic<int>& counter) : alive(&counter) { ++*alive; }
    Contested(const Contested&) = delete;
    Contested& operator=(const Contested&) = delete;
    ~Contested() { --*alive; }
    std::atomic<int>* alive;
};

TEST(ProcessScopeStore, KeepsTheFirstOfSeveralObjectsOfOneType) {
    static std::atomic<int> alive = 0; // outlives the object that is kept
    std::array<void*, 4> kept{};
    std::vector<std::thread> threads;
    for (void*& result : kept) {
        threads.emplace_back([&result] {
            const auto identifier = ProcessScopeStore::getNextID(typeid(Contested));
            result = ProcessScopeStore::Put(identifier, std::make_shared<Contested>(alive));
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(std::set<void*>(kept.begin(), kept.end()).size(), 1U);
    EXPECT_EQ(ProcessScopeStore::Get(ProcessScopeStore::getNextID(typeid(Contested))), kept[0]);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(ProcessScopeStore::Get(ProcessScopeStore::getNextID(typeid(ProcessScopeStore))), nullptr);
}

template <int number>
struct Numbered {
    explicit Numbered(std::function<void()> farewell) : atEnd(std::move(farewell)) {}
    Numbered(const Numbered&) = delete;
    Numbered& operator=(const Numbered&) = delete;
    ~Numbered() {
        atEnd();
        std::fprintf(stderr, "%d gone\n", number);
    }
    static ProcessScopeStore::Identifier GetIdentifier() { return ProcessScopeStore::getNextID(typeid(Numbered)); }
    static bool IsKept() { return ProcessScopeStore::Get(GetIdentifier()) != nullptr; }
    static void Put(std::function<void()> farewell) {
        ProcessScopeStore::Put(GetIdentifier(), std::make_shared<Numbered>(std::move(farewell)));
    }
    std::function<void()> atEnd;
};

struct LateAsker {
    ~LateAsker() { std::fprintf(stderr, "at last %s\n", Numbered<1>::IsKept() ? "kept" : "empty"); }
};

[[noreturn]] void EndProcessWithKeptObjects() {
    static const LateAsker lateAsker;
    Numbered<1>::Put([] {});
    Numbered<2>::Put([] { Numbered<4>::Put([] {}); });
    Numbered<3>::Put([] {
        std::fprintf(stderr, "3 sees %s and %s\n", Numbered<2>::IsKept() ? "2" : "nothing",
                     Numbered<3>::IsKept() ? "itself" : "no longer itself");
    });
    std::exit(0);
}

TEST(ProcessScopeStoreDeathTest, DestroysInReverseOrderWhenTheProcessEnds) {
    EXPECT_EXIT(EndProcessWithKeptObjects(), testing::ExitedWithCode(0),
                "3 sees 2 and no longer itself\n3 gone\n2 gone\n4 gone\n1 gone\n(.*\n)*at last empty\n");
}

} // namespace
} // namespace Tolvex
