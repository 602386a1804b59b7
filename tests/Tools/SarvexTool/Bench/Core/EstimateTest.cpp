#include "Tools/SarvexTool/Bench/Core/Estimate.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(EstimateTest, ALineTakesASecondAndFiveOnASlowDevice) {
    EXPECT_DOUBLE_EQ(EstimateSeconds(12, {}), 12);
    EXPECT_DOUBLE_EQ(EstimateSeconds(12, {.isSlowDevice = true}), 60);
    EXPECT_DOUBLE_EQ(EstimateSeconds(0, {}), 0);
}

TEST(EstimateTest, TwoExchangesAreBeforeTheFirstLineAndTwoInEach) {
    EXPECT_DOUBLE_EQ(EstimateSeconds(0, {.exchangeSeconds = 0.5}), 1);
    EXPECT_DOUBLE_EQ(EstimateSeconds(10, {.exchangeSeconds = 0.5}), 21);
}

TEST(EstimateTest, ASystemCarriesHalfOfTheSmallerOfOpenFilesAndPorts) {
    EXPECT_EQ(MostLines({1024, 28232}), 512);
    EXPECT_EQ(MostLines({1'048'576, 28232}), 14116);
    EXPECT_EQ(MostLines({1, 28232}), 0);
}

} // namespace
} // namespace Bench
