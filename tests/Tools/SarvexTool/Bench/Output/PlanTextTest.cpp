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

TEST(PlanTextTest, ChunksAreDescribedInOneSentence) {
    EXPECT_EQ(ChunksText({{2, 2}}, {}), "1 chunk of 1 line, about 1 s; about 1 s on 1 bench");
    EXPECT_EQ(ChunksText({{2, 11}, {12, 20}}, {}),
              "2 chunks of 9 or 10 lines, each about 10 s; about 19 s on 1 bench");
    EXPECT_EQ(ChunksText(CutLines({2, 40'001}, 250), {}),
              "160 chunks of 250 lines, each about 4 min 10 s; about 11 h 6 min 40 s on 1 bench, "
              "about 2 h 46 min 40 s on 4, about 41 min 40 s on 16, about 12 min 30 s on 64");
    EXPECT_EQ(ChunksText(CutLines({2, 6}, 1), {.isSlowDevice = true}),
              "5 chunks of 1 line, each about 5 s; about 25 s on 1 bench, about 10 s on 4");
}

TEST(PlanTextTest, ProblemsAreCounted) {
    EXPECT_EQ(ProblemCountsText(0, 2), "no errors, 2 warnings");
    EXPECT_EQ(ProblemCountsText(1, 0), "1 error, no warnings");
}

} // namespace
} // namespace Bench
