#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

namespace OSAL::Fake {
namespace {

TEST(WorldTest, CountsWholeCalls) {
    Reset();
    TheWorld().calls = {"CloseHandle 7", "CloseHandle 71", "Sleep 20", "Sleep 2000", "ClosePipe"};
    EXPECT_EQ(CountCalls("CloseHandle"), 2);
    EXPECT_EQ(CountCalls("CloseHandle 7"), 1);
    EXPECT_EQ(CountCalls("Sleep 20"), 1);
    EXPECT_EQ(CountCalls("Sleep"), 2);
    EXPECT_EQ(CountCalls("ClosePipe"), 1);
    EXPECT_EQ(CountCalls("Close"), 0);
    EXPECT_EQ(CountCalls(""), 0);
}

TEST(WorldTest, IsAsNewAfterAReset) {
    TheWorld().calls = {"ClosePipe"};
    TheWorld().sends = 3;
    Reset();
    EXPECT_EQ(CountCalls("ClosePipe"), 0);
    EXPECT_EQ(TheWorld().sends, 0);
}

} // namespace
} // namespace OSAL::Fake
