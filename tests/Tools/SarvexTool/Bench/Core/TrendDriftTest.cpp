#include "Tools/SarvexTool/Bench/Core/TrendDrift.h"

#include <gtest/gtest.h>

#include <vector>

namespace Bench {
namespace {

constexpr double exactly = 1e-9;

/// The drift of a station with these medians; those are beyond that are more than 2.9 from a mean
/// of 0, whatever their own mean is.
Drift DriftOfMedians(const std::vector<double>& medians) {
    const ControlLimits limits{0, 2.9 / ControlLimits::Sigmas};
    std::vector<TrendPoint> points;
    for (const double median : medians)
        points.push_back(
            {static_cast<std::uint32_t>(points.size()), median, 1, !limits.AreKeptBy(median)});
    return DriftOf(points, limits);
}

struct Case {
    const char* what;
    std::vector<double> medians;
    bool isLasting;
    std::size_t first;
    std::size_t last;
    double change;
};

void ExpectEach(const std::vector<Case>& cases) {
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        const Drift drift = DriftOfMedians(each.medians);
        EXPECT_EQ(drift.isLasting, each.isLasting);
        EXPECT_EQ(drift.first, each.first);
        EXPECT_EQ(drift.last, each.last);
        EXPECT_NEAR(drift.change, each.change, exactly);
        EXPECT_EQ(drift.goesOn, each.last + 1 == each.medians.size());
    }
}

TEST(TrendDriftTest, OneRunBeyondWithThoseAfterBackIsAnOutlier) {
    ExpectEach({
        {"in the middle", {-1, 1, -1, 3, 0, 1, -1}, false, 3, 3, 4},
        {"as the first run, which has none before it", {-3, 1, 1, 1, 1}, false, 0, 0, -4},
        {"as the last but one", {0, 0, 0, 3, 0}, false, 3, 3, 3},
        {"with those after displaced by less than half", {0, 0, 0, 3, 1.4, 1.4}, false, 3, 3, 3},
        {"and by less than half to the other side", {0, 0, 3, -1.4, -1.4}, false, 2, 2, 3},
        {"and with some after that are beside it", {0, 0, 3, 2, 0, 2, 0, 0}, false, 2, 2, 3},
        {"with two before, which tell little", {0, 0, 3, 1.5, 1.5, 1.5}, false, 2, 2, 3},
    });
}

TEST(TrendDriftTest, OneOutlierOnEachSideIsToldByTheLast) {
    ExpectEach({
        {"the low one is", {0, 0, 3, 0, 0, -4, 0, 0}, false, 5, 5, -4},
        {"the high one is", {0, 0, -3, 0, 0, 4, 0, 0}, false, 5, 5, 4},
    });
}

TEST(TrendDriftTest, OneRunBeyondWithThoseAfterDisplacedIsADrift) {
    ExpectEach({
        {"all of them", {-1, -1, -1, 3, 2.5, 2.6}, true, 3, 5, 3.6},
        {"by just half", {0, 0, 0, 3, 1.5, 1.5}, true, 3, 5, 1.5},
        {"to the low side", {1, 1, 1, -3, -2.5, -2.6}, true, 3, 5, -3.6},
        {"more than half of them, up to the last that is",
         {0, 0, 0, 3, 2, -1, 2, 2, 0},
         true,
         3,
         7,
         2},
    });
}

TEST(TrendDriftTest, RunsDisplacedToTheOtherSideOfOneBeyondAreTheDrift) {
    ExpectEach({
        {"high, and then repaired", {2, 2, 2, 3, 2, -1, -1, -1, -1}, true, 5, 8, -3},
        {"low, and then repaired", {-2, -2, -2, -3, 1, 1, 1, 1}, true, 4, 7, 3},
    });
}

TEST(TrendDriftTest, RunsThatAreAllAloneAreToldFromThoseThatAreNot) {
    struct Alone {
        std::vector<double> medians;
        bool areAlone;
    };
    for (const Alone& each : {Alone{{0, 0, 0, 3, 0}, true}, Alone{{0, 3, 1, 3, -1, 0}, false},
                              Alone{{0, 3, -1, 3, 0, -1, 0}, true}, Alone{{0, 3, 0, -3, 0}, true},
                              Alone{{0, 0, 0, 0, 3}, false}, Alone{{0, 0, 0, 3, 2, 2}, false},
                              Alone{{0, 3, 3, 0, 0, 0, 3, 0}, false}}) {
        SCOPED_TRACE(testing::PrintToString(each.medians));
        EXPECT_EQ(DriftOfMedians(each.medians).isOfLoneRuns, each.areAlone);
    }
}

TEST(TrendDriftTest, LastRunBeyondIsADrift) {
    ExpectEach({{"alone", {0, 0, 0, 0, 3}, true, 4, 4, 3},
                {"with one on the other side", {0, 0, -3, 0, 3}, true, 4, 4, 3}});
}

TEST(TrendDriftTest, TwoRunsBeyondOnOneSideAreADrift) {
    ExpectEach({
        {"up to the last run that is nearer to them", {0, 0, 0, 3, 3, 2, 1, 1}, true, 3, 5, 3},
        {"with one that is back among them", {0, 0, 0, 3, 3, 0, 2, 2}, true, 3, 7, 2},
        {"with as many back", {0, 0, 0, 3, 3, 0, 0, 2, 2}, true, 3, 4, 3},
        {"before a later one like them", {0, 0, 0, 3, 3, 0, 0, 0, 2}, true, 3, 4, 3},
        {"without one that is back on their side", {0, 0, 0, 3, 3, 1, -1, 1}, true, 3, 4, 3},
        {"up to the last run of all", {-1, -1, -1, 3, 3, 2, 2}, true, 3, 6, 3.5},
        {"with one within between them", {0, 0, 0, 3, 1, 4, -1}, true, 3, 5, 3},
        {"from the first ones on", {3, 4, -1, -1, -1}, true, 0, 1, 4.5},
        {"apart from each other: the last", {0, -1, 4, -1, 0, 3, 1, -1}, true, 5, 5, 3},
        {"together, before one that is alone", {0, 0, 0, 3, 3, 0, 0, 0, 3, 0}, true, 3, 4, 3},
        {"apart, before one on the other", {0, 3, -1, 4, -1, -3, -1, -1}, true, 3, 3, 4},
    });
}

TEST(TrendDriftTest, OneGoodRunDoesNotEndADrift) {
    ExpectEach({
        {"before one beyond that is alone", {0, 0, 0, 3, 3, 0, 3, 2, 2}, true, 3, 8, 2.5},
        {"before several", {0, 0, 0, 3, 3, 0, 3, 3, 2}, true, 3, 8, 3},
        {"before the last runs", {0, 0, 0, 3, 3, 0, 2, 2, 3}, true, 3, 8, 2.5},
        {"before the last run", {0, 0, 0, 3, 3, 3, 0, 3}, true, 3, 7, 3},
        {"before the last run of a long one", {-1, -1, 3, 3, 3, 3, 3, 3, -1, 3}, true, 2, 9, 4},
        {"of first runs, with some left", {3, 3, 0, 3, -1, -1, -1, -1, -1}, true, 0, 3, 4},
        {"of first runs, with none left", {3, 3, 3, 3, 3, 3, 0, 3}, true, 7, 7, 0},
    });
}

TEST(TrendDriftTest, FirstRunsAreADriftUpToTheLastThatIsNearerToThemThanToThoseAfter) {
    ExpectEach({
        {"with all others nearer to them than to the mean",
         {3, 3, 1.6, 1.6, 1.6, 1.6},
         true,
         0,
         1,
         1.4},
        {"with some nearer to them", {3, 3, 2.6, 1.6, 1.6, 1.6, 1.6}, true, 0, 2, 1.4},
    });
}

// Those before it have the same median and fewer measurements, with which they are not beyond.
TEST(TrendDriftTest, RunBeyondWhereThoseBeforeAndAfterAreIsAnOutlier) {
    const std::vector<TrendPoint> points{{0, 3, 1}, {1, 3, 1}, {2, 3, 1}, {3, 3, 4, true},
                                         {4, 0, 4}, {5, 3, 1}, {6, 3, 1}};
    const Drift drift = DriftOf(points, {0, 2.9 / ControlLimits::Sigmas});
    EXPECT_FALSE(drift.isLasting);
    EXPECT_EQ(drift.first, 3U);
}

// A station that was displaced and repaired: the mean of all its runs is between the two, and one
// of those after the repair may be just beyond on the other side.
TEST(TrendDriftTest, DriftBeforeAnOutlierOnTheOtherSideIsTold) {
    ExpectEach({
        {"three runs", {4, 4, 3, -2, -2, -2, -2, -3, -2, -2, -2}, true, 0, 2, 6},
        {"in the middle", {-2, -2, 4, 4, -2, -2, -3, -2, -2}, true, 2, 3, 6},
        {"of two, each alone", {0, -3, 0, 4, 4, 4, 0, 0, -3, 0, 0}, true, 3, 5, 4},
        {"one, with those after displaced", {-1, -1, -1, 3, 2, 2, 2, -3, 2, 2, 2}, true, 3, 10, 3},
    });
}

TEST(TrendDriftTest, OfDriftsToBothSidesTheLastIsToldUnlessItIsSmall) {
    ExpectEach({
        {"half as large", {0, 0, 6, 6, 0, 0, -3, -3}, true, 6, 7, -3},
        {"less, and larger than the limits", {0, 0, 6.1, 6.1, 0, 0, -3, -3}, true, 6, 7, -3},
        {"less, and smaller than them", {-1, -1, 6, 6, -1, -1, -3, -3}, true, 2, 3, 7},
        {"repaired, with two beyond after",
         {4, 4, 4, -2, -2, -2, -2, -3, -2, -3, -2},
         true,
         0,
         2,
         6},
        {"up and then down", {0, 0, 3, 3, 0, 0, -3, -4}, true, 6, 7, -3.5},
        {"down and then up", {0, 0, -3, -3, 0, 0, 3, 4}, true, 6, 7, 3.5},
        {"repaired, with those before half displaced",
         {9.7, 9.7, 9.7, -2.6, -2.6, -2.6, -3.6, -3.6, -2.6, -1.6, -1.6, -1.6},
         true,
         0,
         2,
         12.3},
        {"for the first third, with most after beyond",
         {4, 4, 4, -3, -3, -3, -1, -3, -3, -3, -1, -3},
         true,
         0,
         2,
         7},
        {"for the first third, and down much later",
         {6, 6, 0, 0, 0, 0, 0, 0, -3, -3, -3},
         true,
         8,
         10,
         -3},
        {"down, and up from the middle on, with one run within between",
         {-3, -3, -3, -3, -3, -3, -3, 2.8, 3, 3, 3, 3, 3, 3, 3},
         true,
         8,
         14,
         6},
        {"up and then down, with one up alone",
         {0, 0, 4, 4, 0, 0, -3, -3, -3, 3, -3, -3},
         true,
         6,
         11,
         -3},
    });
}

} // namespace
} // namespace Bench
