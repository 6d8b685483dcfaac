#include "common/platform/interrupt.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

using namespace pwr::platform;

constexpr std::uint64_t LONGEST_WAIT = 60'000'000'000; // nanoseconds, for a machine that is very busy

TEST(Interrupt, isCountedAndWakes) {
    // Ctrl-C reaches every process of a console, so it is pressed in one that this process has to itself.
    FreeConsole();
    ASSERT_NE(0, AllocConsole());
    ASSERT_EQ(0, installInterruptHandler());
    EXPECT_EQ(0U, interruptCount());
    EXPECT_FALSE(isInterruptFromTerminal());
    ASSERT_NE(0, GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
    // The handler runs on a thread of the system's, some time after the key.
    waitForEvent(LONGEST_WAIT, nullptr);
    EXPECT_EQ(1U, interruptCount());
    EXPECT_TRUE(isInterruptFromTerminal());
}

} // namespace
