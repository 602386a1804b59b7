#include "Tools/SarvexTool/Bench/Core/RunProgress.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

constexpr ExpectedChains both{true, true};
constexpr ExpectedChains unknown{};

LineOutcome LineOf(Outcome a, Outcome b) {
    return {{a, ""}, {b, ""}, true};
}

TEST(RunProgressTest, EachOutcomeIsCountedByItself) {
    for (std::size_t index = 0; index < OutcomeCount; ++index) {
        const auto outcome = static_cast<Outcome>(index);
        SCOPED_TRACE(NameOf(outcome));
        OutcomeCounts counts;
        counts.Add(LineOf(outcome, outcome), both);
        EXPECT_EQ(counts.Count(outcome), 2U);
        EXPECT_EQ(counts.Total(), 2U);
        EXPECT_EQ(counts.NotMeasured(), outcome == Outcome::Measured ? 0U : 2U);
    }
}

TEST(RunProgressTest, OnlyChainsOfTheConfigurationCount) {
    OutcomeCounts counts;
    counts.Add(LineOf(Outcome::Measured, Outcome::ChainNotActive), {true, false});
    counts.Add(LineOf(Outcome::ChainNotActive, Outcome::Refused), {false, true});
    EXPECT_EQ(counts.Count(Outcome::Measured), 1U);
    EXPECT_EQ(counts.Count(Outcome::Refused), 1U);
    EXPECT_EQ(counts.Total(), 2U);
}

TEST(RunProgressTest, OfUnknownChainsWhatWasMeasuredCounts) {
    OutcomeCounts counts;
    counts.Add(LineOf(Outcome::Measured, Outcome::ChainNotActive), unknown);
    counts.Add(LineOf(Outcome::ChainNotActive, Outcome::Measured), unknown);
    counts.Add(LineOf(Outcome::Measured, Outcome::Measured), unknown);
    EXPECT_EQ(counts.Count(Outcome::Measured), 4U);
    EXPECT_EQ(counts.Total(), 4U);
    counts.Add(LineOf(Outcome::TimedOut, Outcome::TimedOut), unknown);
    EXPECT_EQ(counts.Count(Outcome::TimedOut), 1U);
    EXPECT_EQ(counts.Total(), 5U);
    counts.Add(LineOf(Outcome::ChainNotActive, Outcome::OtherConfiguration), unknown);
    EXPECT_EQ(counts.Count(Outcome::OtherConfiguration), 1U);
    counts.Add(LineOf(Outcome::OtherConfiguration, Outcome::ChainNotActive), unknown);
    EXPECT_EQ(counts.Count(Outcome::OtherConfiguration), 2U);
    EXPECT_EQ(counts.Total(), 7U);
}

TEST(RunProgressTest, AStateHasAName) {
    using Kind = RunState::Kind;
    EXPECT_STREQ(NameOf(Kind::Measuring), "measuring");
    EXPECT_STREQ(NameOf(Kind::WaitingForDaemon), "waiting for the daemon");
    EXPECT_STREQ(NameOf(Kind::Repeating), "repeating");
    EXPECT_STREQ(NameOf(Kind::Stopping), "stopping the transmission");
}

TEST(RunProgressTest, TheEstimateBeginsWithTheExpectationAndFollowsWhatWasSeen) {
    EXPECT_DOUBLE_EQ(EstimateRemaining({}, 400), 400);
    EXPECT_DOUBLE_EQ(EstimateRemaining({0, 0, 5}, 400), 2000);
    // One slow line at the start does not make it ten times as long.
    EXPECT_DOUBLE_EQ(EstimateRemaining({1, 13, 1}, 100), 300);
    EXPECT_NEAR(EstimateRemaining({10000, 20000, 1}, 1000), 2000, 1);
    EXPECT_DOUBLE_EQ(EstimateRemaining({10, 15, 1}, 0), 0);
}

} // namespace
} // namespace Bench
