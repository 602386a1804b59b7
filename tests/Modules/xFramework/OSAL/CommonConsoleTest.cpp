#include "Modules/xFramework/OSAL/Console.h"

#include <gtest/gtest.h>

namespace OSAL {
namespace {

TEST(CommonConsoleTest, AFileNameIsTheSameAsItself) {
    EXPECT_TRUE(AreSameFileName("Ω 測試.csv", "Ω 測試.csv"));
    EXPECT_TRUE(AreSameFileName("", ""));
    EXPECT_FALSE(AreSameFileName("a.csv", "b.csv"));
    EXPECT_FALSE(AreSameFileName("a.csv", ""));
}

} // namespace
} // namespace OSAL
