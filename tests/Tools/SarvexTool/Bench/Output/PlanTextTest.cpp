#include "Tools/SarvexTool/Bench/Output/PlanText.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(PlanTextTest, ATimeIsInWholeSeconds) {
    EXPECT_EQ(DurationText(0), "0 s");
    EXPECT_EQ(DurationText(59.4), "59 s");
    EXPECT_EQ(DurationText(59.6), "1 min 0 s");
    EXPECT_EQ(DurationText(3723), "1 h 2 min 3 s");
    EXPECT_EQ(DurationText(360000), "100 h 0 min 0 s");
}

TEST(PlanTextTest, APlanIsDescribedInOneSentence) {
    EXPECT_EQ(PlanText({12, 17, 0, {}, {}}, 12),
              "12 configurations, 17 measurements; a run takes about 12 s");
    EXPECT_EQ(PlanText({1, 0, 1, {}, {}}, 1),
              "1 configuration, at least 1 measurement; a run takes about 1 s");
    EXPECT_EQ(PlanText({}, 0), "no configurations, no measurements; a run takes about 0 s");
}

TEST(PlanTextTest, ProblemsAreCounted) {
    EXPECT_EQ(ProblemCountsText(0, 2), "no errors, 2 warnings");
    EXPECT_EQ(ProblemCountsText(1, 0), "1 error, no warnings");
}

} // namespace
} // namespace Bench
