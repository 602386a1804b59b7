#include "Tools/SarvexTool/Bench/Core/Chunks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace Bench {
namespace {

std::string Describe(const std::vector<LineRange>& chunks) {
    std::string text;
    for (const LineRange& chunk : chunks)
        text += (text.empty() ? "" : " ") + std::to_string(chunk.first) + "-" +
                std::to_string(chunk.last);
    return text;
}

TEST(ChunksTest, LinesAreCutIntoAsFewChunksAsTheMostAllows) {
    EXPECT_EQ(Describe(CutLines({2, 13}, 12)), "2-13");
    EXPECT_EQ(Describe(CutLines({2, 13}, 4)), "2-5 6-9 10-13");
    EXPECT_EQ(Describe(CutLines({2, 13}, 5)), "2-5 6-9 10-13");
    EXPECT_EQ(Describe(CutLines({2, 14}, 4)), "2-5 6-8 9-11 12-14");
    EXPECT_EQ(Describe(CutLines({2, 4}, 1)), "2-2 3-3 4-4");
    EXPECT_EQ(Describe(CutLines({2, 2}, 1000)), "2-2");
    EXPECT_EQ(Describe(CutLines({2, 4'294'967'295U}, 4'294'967'295U)), "2-4294967295");
}

TEST(ChunksTest, SizesDifferByAtMostOneAndEachLineIsInOneChunk) {
    for (LineNumber total = 1; total <= 40; ++total) {
        for (LineNumber most = 1; most <= total + 1; ++most) {
            SCOPED_TRACE(std::to_string(total) + " lines, at most " + std::to_string(most));
            const std::vector<LineRange> chunks = CutLines({2, total + 1}, most);
            EXPECT_EQ(chunks.size(), (total + most - 1) / most);
            LineNumber next = 2;
            for (const LineRange& chunk : chunks) {
                EXPECT_EQ(chunk.first, next);
                EXPECT_LE(chunk.Count(), most);
                EXPECT_LE(chunk.Count(), chunks.front().Count());
                EXPECT_LE(chunks.front().Count(), chunk.Count() + 1);
                next = chunk.last + 1;
            }
            EXPECT_EQ(next, total + 2);
        }
    }
}

TEST(ChunksTest, ARangeHoldsItsEnds) {
    const LineRange lines{5, 7};
    EXPECT_EQ(lines.Count(), 3);
    EXPECT_FALSE(lines.Holds(4));
    EXPECT_TRUE(lines.Holds(5));
    EXPECT_TRUE(lines.Holds(7));
    EXPECT_FALSE(lines.Holds(8));
}

TEST(ChunksTest, MoreBenchesTakeLess) {
    const std::vector<LineRange> chunks = CutLines({2, 14}, 4);
    EXPECT_DOUBLE_EQ(EstimateSeconds(chunks, 1, {}), 13);
    EXPECT_DOUBLE_EQ(EstimateSeconds(chunks, 2, {}), 4 + 3);
    EXPECT_DOUBLE_EQ(EstimateSeconds(chunks, 3, {}), 4 + 3);
    EXPECT_DOUBLE_EQ(EstimateSeconds(chunks, 4, {}), 4);
    EXPECT_DOUBLE_EQ(EstimateSeconds(chunks, 1000, {.isSlowDevice = true}), 20);
}

} // namespace
} // namespace Bench
