#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(TrendPhrasesTest, NumbersHaveTwoDigitsAfterThePoint) {
    struct Case {
        double number;
        const char* text;
        const char* withSign;
    };
    for (const Case& each : {Case{0, "0.00", "0.00"}, Case{-0.004, "0.00", "0.00"},
                             Case{1.955, "1.96", "+1.96"}, Case{-0.05, "-0.05", "-0.05"},
                             Case{-12.5, "-12.50", "-12.50"}, Case{100, "100.00", "+100.00"}}) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(Hundredths(each.number), each.text);
        EXPECT_EQ(SignedHundredths(each.number), each.withSign);
    }
}

TEST(TrendPhrasesTest, DevicesAreNamedOrCounted) {
    EXPECT_EQ(DevicesOf({"A", {}}), "");
    EXPECT_EQ(DevicesOf({"A", {"DUT"}}), "DUT");
    EXPECT_EQ(DevicesOf({"A", {"DUT", "other"}}), "2 devices");
    EXPECT_EQ(DeviceOf({0, 0, "", "", false}), "");
    EXPECT_EQ(DeviceOf({0, 0, "", "DUT", false}), "DUT");
    EXPECT_EQ(DeviceOf({0, 0, "", "", true}), "several");
}

} // namespace
} // namespace Bench
