#include "Tools/SarvexTool/Bench/Core/TrendLimits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

namespace Bench {
namespace {

/// How many runs there are, how many of them are the last ones, displaced or growing, and by how
/// many standard deviations.
struct Displaced {
    const char* what;
    int runs;
    int last;
    bool isGrowing;
    double change;
};

double LevelOf(const Displaced& displaced, int run) {
    const int since = run - (displaced.runs - displaced.last);
    if (displaced.isGrowing)
        return displaced.change * since / (displaced.last - 1);
    return since >= 0 ? displaced.change : 0;
}

/// A normally distributed number of standard deviation 1, by Box and Muller: each library has other
/// ones of its own.
double Noise(std::mt19937& random) {
    constexpr double values = 4294967296;
    const double radius = std::sqrt(-2 * std::log((static_cast<double>(random()) + 1) / values));
    return radius * std::cos(2 * std::numbers::pi * static_cast<double>(random()) / values);
}

StationTrend StationOf(const Displaced& displaced, std::mt19937& random) {
    StationTrend station;
    for (int run = 0; run < displaced.runs; ++run)
        station.points.push_back(
            {static_cast<std::uint32_t>(run), LevelOf(displaced, run) + Noise(random), 10});
    return station;
}

/// Of how many stations, in per cent, a drift is told that goes on.
double ShareTold(const Displaced& displaced) {
    constexpr int stations = 5000;
    std::mt19937 random(1);
    int told = 0;
    for (int number = 0; number < stations; ++number) {
        StationTrend station = StationOf(displaced, random);
        HoldAgainstOwnLimits(station);
        told += station.drift && station.drift->IsNow() ? 1 : 0;
    }
    return 100.0 * told / stations;
}

// As docs/history.md has it.
TEST(TrendLimitsTest, DriftsAreToldAsOftenAsThePageSays) {
    struct Share {
        Displaced displaced;
        double percent;
    };
    for (const Share& each : {
             Share{{"5 of 15", 15, 5, false, 4}, 64},
             Share{{"5 of 15", 15, 5, false, 5}, 83},
             Share{{"5 of 15", 15, 5, false, 6}, 94},
             Share{{"5 of 15", 15, 5, false, 8}, 100},
             Share{{"7 of 15", 15, 7, false, 4}, 53},
             Share{{"7 of 15", 15, 7, false, 5}, 72},
             Share{{"7 of 15", 15, 7, false, 6}, 85},
             Share{{"7 of 15", 15, 7, false, 8}, 97},
             Share{{"5 of 10", 10, 5, false, 4}, 24},
             Share{{"5 of 10", 10, 5, false, 5}, 34},
             Share{{"5 of 10", 10, 5, false, 6}, 45},
             Share{{"5 of 10", 10, 5, false, 8}, 65},
             Share{{"growing", 15, 15, true, 4}, 32},
             Share{{"growing", 15, 15, true, 5}, 51},
             Share{{"growing", 15, 15, true, 6}, 68},
             Share{{"growing", 15, 15, true, 8}, 89},
         })
        EXPECT_NEAR(ShareTold(each.displaced), each.percent, 2)
            << each.displaced.what << " by " << each.displaced.change;
}

TEST(TrendLimitsTest, DriftOfHalfTheRunsIsToldMoreOftenTheLargerItIs) {
    EXPECT_GT(ShareTold({"8 of 15", 15, 8, false, 6}), 70);
    EXPECT_GT(ShareTold({"8 of 15", 15, 8, false, 8}), 85);
    EXPECT_GT(ShareTold({"15 of 30", 30, 15, false, 5}), 90);
    EXPECT_GT(ShareTold({"15 of 30", 30, 15, false, 8}), 99);
}

TEST(TrendLimitsTest, StationThatWasDisplacedInTheFirstThirdIsSteadyAgain) {
    EXPECT_LT(ShareTold({"10 of 15", 15, 10, false, 8}), 5);
    EXPECT_LT(ShareTold({"20 of 30", 30, 20, false, 8}), 2);
    EXPECT_LT(ShareTold({"24 of 30", 30, 24, false, 8}), 1);
}

} // namespace
} // namespace Bench
