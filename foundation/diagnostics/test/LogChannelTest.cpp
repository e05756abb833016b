#include "foundation/diagnostics/LogChannel.h"
#include "foundation/diagnostics/DiagnosticScope.h"
#include "foundation/diagnostics/ThreadName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <thread>
#include <vector>

namespace Tolvex {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(LogChannel, WritesWhatItsLevelLetsThrough) {
    const LogChannel early("test::levels");
    SetLogLevel("test::levels", 2);
    SetLogLevel("test::notYetMade", 8);
    const LogChannel same("test::levels");
    const LogChannel late("test::notYetMade");
    const LogChannel silent("test::silent");

    CaptureStderr();
    early.Write(1, "one");
    same.Write(2, "two");
    same.Write(3, "three");
    late.Write(8, "eight");
    silent.Write(1, "unheard");
    SetLogLevel("test::levels", 0);
    early.Write(1, "off");
    EXPECT_EQ(GetCapturedStderr(), "test::levels [1]: one\ntest::levels [2]: two\ntest::notYetMade [8]: eight\n");
}

TEST(LogChannel, RecordsOfSeveralThreadsAreNeverTorn) {
    constexpr std::size_t threadCount = 4;
    constexpr std::size_t recordCount = 200;
    const LogChannel channel("test::torn");
    SetLogLevel("test::torn", 1);

    CaptureStderr();
    std::vector<std::thread> writers;
    for (std::size_t i = 0; i != threadCount; ++i) {
        writers.emplace_back([&, i] {
            setCurrentThreadName("writer " + std::to_string(i));
            for (std::size_t k = 0; k != recordCount; ++k)
                channel.Write(1, std::string(300, static_cast<char>('a' + i)));
        });
    }
    for (auto& writer : writers)
        writer.join();
    std::istringstream output(GetCapturedStderr());

    std::vector<std::size_t> counts(threadCount);
    for (std::string line; std::getline(output, line);) {
        for (std::size_t i = 0; i != threadCount; ++i)
            counts[i] += line == "test::torn [1] writer " + std::to_string(i) + ": " +
                                     std::string(300, static_cast<char>('a' + i));
    }
    EXPECT_EQ(counts, std::vector<std::size_t>(threadCount, recordCount));
}

struct Straggler {
    LogChannel channel{"test::straggler"};
    ~Straggler() { channel.Write(1, "written by a static object's destructor"); }
};

[[noreturn]] void LogToTheVeryEnd() {
    static const Straggler straggler; // older than what the log makes on first use
    SetLogLevel("test::straggler", 1);
    straggler.channel.Write(1, "written early");
    std::exit(0);
}

TEST(LogChannelDeathTest, CanBeUsedWhileStaticObjectsAreDestroyed) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a fresh process, where nothing was logged before
    EXPECT_EXIT(LogToTheVeryEnd(), testing::ExitedWithCode(0),
                "test::straggler \\[1\\]: written early\n"
                "test::straggler \\[1\\]: written by a static object's destructor\n");
}

void Inner() {
    const DiagnosticScope scope;
}

void Outer() {
    const DiagnosticScope scope;
    Inner();
}

TEST(DiagnosticScope, TracesEntryAndExitOfNestedFunctionsWhenSwitchedOn) {
    CaptureStderr();
    Outer();
    DiagnosticScope::SetEnabled(true);
    Outer();
    DiagnosticScope::SetEnabled(false);
    Outer();
    std::istringstream output(GetCapturedStderr());
    std::vector<std::string> marks;
    for (std::string line; std::getline(output, line);) {
        const auto start = line.find(": ") + 2;
        const auto name = line.find(line.find("Inner") != std::string::npos ? "Inner" : "Outer");
        marks.push_back(line.substr(start, line.find_first_of("<>") + 1 - start) + line.substr(name, 5));
    }
    EXPECT_EQ(marks, (std::vector<std::string>{">Outer", "  >Inner", "  <Inner", "<Outer"}));
}

} // namespace
} // namespace Tolvex
