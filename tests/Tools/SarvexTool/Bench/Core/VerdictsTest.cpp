#include "Tools/SarvexTool/Bench/Core/Verdicts.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

Limit Between(std::optional<Decimal> minimum, std::optional<Decimal> maximum) {
    Limit limit;
    limit.minimum = minimum;
    limit.maximum = maximum;
    return limit;
}

/// The verdict and margin of one power under one limit.
std::string JudgeOne(const char* power, const Limit& limit) {
    CoreFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {{Setting::Chains, "A"}}, power, ""));
    const RunResult run = builder.Take();
    LimitTable table({{limit}, {}});
    const Judgement judgement = Judge(run, table).all.at(0);
    return std::string(NameOf(judgement.verdict)) + " " +
           (judgement.margin ? judgement.margin->ToText() : "-");
}

TEST(VerdictsTest, BoundsBelongToWhatPasses) {
    const Limit limit = Between("10"_dB, "12.5"_dB);
    EXPECT_EQ(JudgeOne("9.999999999", limit), "too low -0.000000001");
    EXPECT_EQ(JudgeOne("10", limit), "pass 0");
    EXPECT_EQ(JudgeOne("11", limit), "pass 1");
    EXPECT_EQ(JudgeOne("12", limit), "pass 0.5");
    EXPECT_EQ(JudgeOne("12.5", limit), "pass 0");
    EXPECT_EQ(JudgeOne("13", limit), "too high -0.5");
    EXPECT_EQ(JudgeOne("", limit), "not measured -");
}

TEST(VerdictsTest, MissingBoundIsNoBound) {
    EXPECT_EQ(JudgeOne("-999", Between(std::nullopt, "3"_dB)), "pass 1002");
    EXPECT_EQ(JudgeOne("999", Between("3"_dB, std::nullopt)), "pass 996");
    EXPECT_EQ(JudgeOne("2", Between("3"_dB, std::nullopt)), "too low -1");
    EXPECT_EQ(JudgeOne("4", Between(std::nullopt, "3"_dB)), "too high -1");
    EXPECT_EQ(JudgeOne("4", Between(std::nullopt, std::nullopt)), "pass -");
}

TEST(VerdictsTest, RunThatEndedEarlyHasNotPassed) {
    CoreFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {{Setting::Chains, "A"}}, "10", ""));
    RunResult run = builder.Take();
    LimitTable table({{Between(std::nullopt, std::nullopt)}, {}});
    EXPECT_TRUE(Judge(run, table).HaveAllPassed());
    run.earlyEnd = EarlyEnd{1, 2};
    EXPECT_FALSE(Judge(run, table).HaveAllPassed());
}

TEST(VerdictsTest, AllButPassCountAsNotPassed) {
    CoreFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {{Setting::Chains, "A"}, {Setting::Band, "5"}}, "10", ""));
    builder.Add(fixture.RowOf(3, {{Setting::Band, "6"}}, "10", ""));
    const RunResult run = builder.Take();
    Limit forBand5 = Between("10"_dB, "12"_dB);
    SettingPattern band;
    band.values = {fixture.Text("5")};
    forBand5.settings[static_cast<std::size_t>(Setting::Band)] = &band;
    LimitTable table({{forBand5}, {}});
    const Judgements judgements = Judge(run, table);
    EXPECT_EQ(judgements.Count(Verdict::Pass), 1U);
    EXPECT_EQ(judgements.Count(Verdict::NoLimit), 1U);
    EXPECT_EQ(judgements.all[1].verdict, Verdict::NoLimit);
    EXPECT_EQ(judgements.all[1].limit, nullptr);
    EXPECT_EQ(judgements.all[1].measurement, 1U);
    EXPECT_FALSE(judgements.HaveAllPassed());
}

TEST(VerdictsTest, RunHasPassedWhenEachOfItsMeasurementsHas) {
    CoreFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {{Setting::Chains, "AB"}}, "10", "11"));
    const RunResult run = builder.Take();
    LimitTable table({{Between("10"_dB, "12"_dB)}, {}});
    EXPECT_TRUE(Judge(run, table).HaveAllPassed());
}

TEST(VerdictsTest, MeasurementWithoutAPowerIsNotMeasuredUnderEveryLimit) {
    EXPECT_EQ(JudgeOne("", Between(std::nullopt, std::nullopt)), "not measured -");
    Limit forB = Between("1"_dB, "2"_dB);
    forB.isForChainA = false;
    EXPECT_EQ(JudgeOne("", forB), "not measured -");
    EXPECT_EQ(JudgeOne("1", forB), "no limit -");
}

TEST(VerdictsTest, VerdictsHaveTheirNames) {
    EXPECT_STREQ(NameOf(Verdict::Pass), "pass");
    EXPECT_STREQ(NameOf(Verdict::TooLow), "too low");
    EXPECT_STREQ(NameOf(Verdict::TooHigh), "too high");
    EXPECT_STREQ(NameOf(Verdict::NotMeasured), "not measured");
    EXPECT_STREQ(NameOf(Verdict::NoLimit), "no limit");
}

} // namespace
} // namespace Bench
