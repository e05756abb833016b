#include "foundation/diagnostics/Terminate.h"

#include <gtest/gtest.h>

#include <string>

namespace Tolvex {
namespace {

void BreakPromise(int kind) {
    if (kind != 0)
        DiagnosticTerminate("Unrecognized kind passed to BreakPromise");
}

TEST(TerminateDeathTest, TellsTextUnitLineAndSignature) {
    EXPECT_DEATH(BreakPromise(1), "Assertion failed: Unrecognized kind passed to BreakPromise\n"
                                  "  in TerminateTest, line 12, .*BreakPromise\\(int\\)\n");
}

TEST(TerminateDeathTest, SurvivesATextLongerThanItsBuffer) {
    EXPECT_EXIT(DiagnosticTerminate(std::string(100'000, 'x')), testing::KilledBySignal(SIGABRT), "x{1000}");
}

} // namespace
} // namespace Tolvex
