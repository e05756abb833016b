#include "foundation/diagnostics/ThreadName.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <utility>
#include <vector>

namespace Tolvex {
namespace {

TEST(ThreadName, IsKeptAndShownByTheSystemAsFarAsItFits) {
    const std::vector<std::pair<std::string, std::string>> namesAndShown{
        {"PathManager async worker", "PathManager asy"},
        {"fifteen letters", "fifteen letters"},
        {"cut at 14 by\xC3\xA4\xC3\xA4", "cut at 14 by\xC3\xA4"}, // never inside a character
        {"", ""}};
    std::thread([&] {
        EXPECT_EQ(getCurrentThreadName(), "");
        for (const auto& [name, shown] : namesAndShown) {
            setCurrentThreadName(name);
            EXPECT_EQ(getCurrentThreadName(), name);
            std::string line;
            std::getline(std::ifstream("/proc/thread-self/comm"), line);
            EXPECT_EQ(line, shown);
        }
        setCurrentThreadName(std::string(maximumThreadNameLength - 1, 'n') + "\xC3\xA4");
        EXPECT_EQ(getCurrentThreadName(), std::string(maximumThreadNameLength - 1, 'n'));
    }).join();
    EXPECT_EQ(getCurrentThreadName(), ""); // each thread has its own
}

} // namespace
} // namespace Tolvex
