#include "Tools/SarvexTool/Bench/Commands/RunWatch.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;

/// Keeps what is shown last, and how often.
class RecordingProgress : public IProgress {
public:
    void Begin(const RunProgress& progress, TimePoint /*now*/) override { last = progress; }
    void FinishLine(const RunProgress& progress, TimePoint /*now*/) override {
        last = progress;
        ++finished;
    }
    void Update(const RunProgress& progress, TimePoint /*now*/) override { last = progress; }
    void MakeRoom() override {}
    void End(const RunSummary& /*summary*/) override {}

    RunProgress last;
    int finished = 0;
};

class RunWatchTest : public testing::Test {
protected:
    static OwnSettings Own(const std::string& band, const std::string& chains) {
        OwnSettings own;
        own.at(static_cast<std::size_t>(Setting::Band)) = band;
        if (!chains.empty())
            own.at(static_cast<std::size_t>(Setting::Chains)) = chains;
        return own;
    }

    static FinishedLine Line(LineNumber number, const std::string& row, Outcome a, Outcome b,
                             bool isAccepted = true) {
        return {number, {{a, ""}, {b, ""}, isAccepted}, row};
    }

    RecordingProgress shown;
    TextPool texts;
};

TEST_F(RunWatchTest, LinesAreCountedWithTheirOutcomes) {
    RunWatch watch(shown, texts, {}, 3);
    watch.AddEarlier(Line(2, "5,AB,12,NA\n", Outcome::Measured, Outcome::ChainNotActive),
                     Own("5", "AB"));
    watch.Begin(1);
    EXPECT_EQ(shown.last.linesDone, 1U);
    watch.BeginLine(3, Own("6", ""));
    EXPECT_EQ(shown.last.line, 3U);
    EXPECT_EQ(shown.last.settings, "Band 6");
    EXPECT_EQ(watch.FinishLine(Line(3, "6,-,1.5,2\r\n", Outcome::Measured, Outcome::Measured),
                               Own("6", "")),
              "");
    EXPECT_EQ(shown.finished, 1);
    EXPECT_EQ(shown.last.line, 0U);
    EXPECT_EQ(shown.last.last.a.power->ToText(), "1.5");
    EXPECT_EQ(shown.last.last.b.power->ToText(), "2");
    EXPECT_EQ(shown.last.outcomes.Count(Outcome::Measured), 3U);
    EXPECT_EQ(shown.last.outcomes.NotMeasured(), 1U);
    EXPECT_FALSE(shown.last.verdicts.has_value());
    ASSERT_EQ(watch.Missing().size(), 1U);
    EXPECT_EQ(watch.Missing()[0].line, 2U);
    EXPECT_EQ(watch.Missing()[0].chain, Chain::B);
}

TEST_F(RunWatchTest, LineIsHeldAgainstTheLimitsAsItComes) {
    LimitTable limits(ParseLimits("Band,Chain,Min,Max\n5,*,10,12\n", "limits.csv", texts));
    RunWatch watch(shown, texts, {&limits, true}, 3);
    watch.Begin(1);
    EXPECT_EQ(watch.FinishLine(Line(2, "5,A,11,NA\n", Outcome::Measured, Outcome::ChainNotActive),
                               Own("5", "A")),
              "");
    EXPECT_EQ(shown.last.last.a.verdict, Verdict::Pass);
    EXPECT_FALSE(shown.last.last.b.verdict.has_value());
    EXPECT_EQ(watch.FinishLine(Line(3, "5,B,NA,13\n", Outcome::ChainNotActive, Outcome::Measured),
                               Own("5", "B")),
              "line 3 did not pass");
    EXPECT_EQ(shown.last.last.b.verdict, Verdict::TooHigh);
    EXPECT_TRUE(watch.HasFailedFast("line 3 did not pass"));
    EXPECT_FALSE(watch.HasFailedFast("it was interrupted"));
    EXPECT_THAT(*shown.last.verdicts, ElementsAre(1, 0, 1, 0, 0));
}

TEST_F(RunWatchTest, PowerAfterARefusedSettingDoesNotPass) {
    RunWatch watch(shown, texts, {nullptr, true}, 3);
    watch.Begin(1);
    EXPECT_NE(watch.FinishLine(Line(2, "5,A,NA,NA\n", Outcome::Refused, Outcome::Refused, false),
                               Own("5", "A")),
              "");
    OwnSettings onlyBand = Own("6", "");
    EXPECT_NE(watch.FinishLine(Line(3, "6,-,11,NA\n", Outcome::Measured, Outcome::ChainNotActive),
                               onlyBand),
              "");
}

TEST_F(RunWatchTest, LastLineHasNothingToEndFast) {
    RunWatch watch(shown, texts, {nullptr, true}, 1);
    watch.Begin(1);
    EXPECT_EQ(watch.FinishLine(Line(2, "5,A,NA,NA\n", Outcome::Refused, Outcome::Refused, false),
                               Own("5", "A")),
              "");
    EXPECT_FALSE(watch.HasFailedFast(""));
}

TEST_F(RunWatchTest, StateIsShownWhenItChanges) {
    RunWatch watch(shown, texts, {}, 1);
    watch.Begin(1);
    watch.ShowState(RunState::Kind::WaitingForDaemon, "is away");
    EXPECT_EQ(shown.last.state.kind, RunState::Kind::WaitingForDaemon);
    EXPECT_EQ(shown.last.state.detail, "is away");
    watch.ShowState(RunState::Kind::Measuring, "");
    EXPECT_EQ(shown.last.state.kind, RunState::Kind::Measuring);
}

TEST_F(RunWatchTest, SummaryShowsTheFirstTenOnly) {
    RunWatch watch(shown, texts, {}, 20);
    for (LineNumber line = 2; line < 22; ++line)
        watch.AddEarlier(Line(line, "5,A,NA,NA\n", Outcome::TimedOut, Outcome::TimedOut, false),
                         Own("5", "A"));
    EXPECT_EQ(watch.Missing().size(), 10U);
    EXPECT_EQ(watch.Progress().outcomes.Count(Outcome::TimedOut), 20U);
}

} // namespace
} // namespace Bench
