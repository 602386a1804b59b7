#include "Tools/SarvexTool/Bench/Core/TrendPeers.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

// What Student's distribution exceeds once in 370 times, to one side or the other, calculated from
// it: 19.207 with two degrees of freedom, 5.507 with five, 4.094 with nine.
TEST(TrendPeersTest, ValueIsHeldAgainstTheSpreadOfTheOthersByTheirNumber) {
    struct Case {
        std::vector<double> others;
        double near;
        double far;
    };
    const Case cases[] = {// A deviation of 0.1 and the mean's share of it: 0.1155.
                          {{10, 10.1, 10.2}, 10.1 + 2.21, 10.1 + 2.23},
                          {{10, 10.1, 10.2}, 10.1 - 2.21, 10.1 - 2.23},
                          // 1.8708 and 2.0207.
                          {{0, 1, 2, 3, 4, 5}, 2.5 + 10.8, 2.5 + 11.2},
                          // 3.0277 and 3.1754.
                          {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 4.5 - 12.9, 4.5 - 13.1},
                          {{10, 10, 10}, 10.009, 10.011}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.far);
        EXPECT_FALSE(IsFarFrom(each.near, each.others));
        EXPECT_TRUE(IsFarFrom(each.far, each.others));
    }
}

TEST(TrendPeersTest, TwoOthersTellNothing) {
    EXPECT_FALSE(IsFarFrom(99, std::vector<double>{10, 10}));
}

} // namespace
} // namespace Bench
