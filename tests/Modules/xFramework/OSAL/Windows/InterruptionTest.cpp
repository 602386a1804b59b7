#include "tests/Modules/xFramework/OSAL/CountedInterruptions.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace OSAL {
namespace {

/// Puts this program alone on a console of its own, so that a key there is nobody else's.
class InterruptionListenerTest : public testing::Test {
protected:
    void SetUp() override {
        ::FreeConsole();
        ASSERT_TRUE(::AllocConsole()) << ::GetLastError();
        // What a parent may have set for its children.
        ::SetConsoleCtrlHandler(nullptr, FALSE);
    }
    void TearDown() override { ::FreeConsole(); }

    static void PressCtrlC() {
        ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << ::GetLastError();
    }

    CountedInterruptions count;
};

TEST_F(InterruptionListenerTest, HearsOfEachCtrlC) {
    const InterruptionListener listener(count.Function());
    for (int round = 1; round <= 3; ++round) {
        PressCtrlC();
        count.WaitFor(round);
    }
    EXPECT_EQ(count.Count(), 3);
    EXPECT_EQ(count.Closings(), 0);
}

TEST_F(InterruptionListenerTest, HearsOfACtrlCThatIsHeld) {
    const InterruptionListener listener(count.Function());
    {
        const HeldInterruption held;
        PressCtrlC();
        count.WaitFor(1);
        EXPECT_FALSE(HeldInterruption::IsWanted());
    }
    PressCtrlC();
    count.WaitFor(2);
}

} // namespace
} // namespace OSAL
