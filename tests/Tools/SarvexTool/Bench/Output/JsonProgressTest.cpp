#include "Tools/SarvexTool/Bench/Output/JsonProgress.h"

#include <gmock/gmock.h>

#include <sstream>

namespace Bench {
namespace {

using testing::HasSubstr;
using TimePoint = IProgress::TimePoint;

const std::string noOutcomes =
    R"("outcomes": {"measured": 0, "refused": 0, "uncalibrated": 0, "chain not active": 0, )"
    R"("time-out": 0, "connection lost": 0, "other configuration": 0})";

class JsonProgressTest : public testing::Test {
protected:
    std::string Written() {
        const std::string text = m_stream.str();
        m_stream.str("");
        return text;
    }

    std::ostringstream m_stream;
    RunProgress m_progress;
    JsonProgress m_writer{m_stream};
};

TEST_F(JsonProgressTest, TheBeginningTellsWhatThereIsToDo) {
    m_progress.linesDone = 2;
    m_progress.linesTotal = 5;
    m_writer.Begin(m_progress, TimePoint());
    EXPECT_EQ(Written(), R"({"event": "begin", "linesDone": 2, "linesTotal": 5, )"
                         R"("elapsedSeconds": 0.0, "remainingSeconds": null, )"
                         R"("state": "measuring", "detail": "", )" +
                             noOutcomes + "}\n");
}

TEST_F(JsonProgressTest, AFinishedLineIsToldWithItsChains) {
    m_progress.elapsedSeconds = 1.5004;
    m_progress.remainingSeconds = 7.9995;
    m_progress.last = {7,
                       "Band 5",
                       true,
                       {{Outcome::Measured, ""}, Decimal::Parse("12.50"), {}},
                       {{Outcome::TimedOut, "60 s"}, {}, {}}};
    m_progress.outcomes.Add({m_progress.last.a.outcome, m_progress.last.b.outcome, true},
                            {true, true});
    m_writer.FinishLine(m_progress, TimePoint());
    EXPECT_EQ(
        Written(),
        R"({"event": "line", "line": 7, "settings": "Band 5", "accepted": true, )"
        R"("a": {"outcome": "measured", "text": "", "power": 12.5}, )"
        R"("b": {"outcome": "time-out", "text": "60 s", "power": null}, )"
        R"("linesDone": 0, "linesTotal": 0, "elapsedSeconds": 1.5, "remainingSeconds": 8.0, )"
        R"("state": "measuring", "detail": "", )"
        R"("outcomes": {"measured": 1, "refused": 0, "uncalibrated": 0, "chain not active": 0, )"
        R"("time-out": 1, "connection lost": 0, "other configuration": 0}})"
        "\n");
}

TEST_F(JsonProgressTest, WithLimitsThereAreVerdicts) {
    m_progress.verdicts = VerdictTotals{1, 2, 3, 4, 5};
    m_progress.last.line = 2;
    m_progress.last.a.verdict = Verdict::TooLow;
    m_writer.FinishLine(m_progress, TimePoint());
    EXPECT_EQ(Written(),
              R"({"event": "line", "line": 2, "settings": "", "accepted": false, )"
              R"("a": {"outcome": "measured", "text": "", "power": null, "verdict": "too low"}, )"
              R"("b": {"outcome": "measured", "text": "", "power": null, "verdict": null}, )"
              R"("linesDone": 0, "linesTotal": 0, "elapsedSeconds": 0.0, )"
              R"("remainingSeconds": null, "state": "measuring", "detail": "", )" +
                  noOutcomes +
                  R"(, "verdicts": {"pass": 1, "too low": 2, "too high": 3, "not measured": 4, )"
                  R"("no limit": 5}})"
                  "\n");
}

TEST_F(JsonProgressTest, OnlyAChangeOfTheStateIsTold) {
    m_writer.Update(m_progress, TimePoint());
    EXPECT_EQ(Written(), "");
    m_progress.state = {RunState::Kind::Repeating, 3, "\xFF\n"};
    m_writer.Update(m_progress, TimePoint());
    EXPECT_EQ(Written(), R"({"event": "state", "linesDone": 0, "linesTotal": 0, )"
                         R"("elapsedSeconds": 0.0, "remainingSeconds": null, )"
                         R"("state": "repeating", "detail": "\ufffd\n", )" +
                             noOutcomes + "}\n");
    m_progress.state.seconds = 4;
    m_writer.Update(m_progress, TimePoint());
    m_writer.MakeRoom();
    EXPECT_EQ(Written(), "");
}

TEST_F(JsonProgressTest, TheEndTellsTheSummary) {
    RunSummary summary;
    summary.whyEnded = "no daemon";
    summary.linesDone = 1;
    summary.linesTotal = 2;
    summary.directory = "runs/a";
    summary.notes = {"One.", "Two."};
    summary.hasTransmitted = true;
    summary.unconfirmedStop = "no answer";
    summary.exitCode = 4;
    m_writer.End(summary);
    EXPECT_EQ(Written(),
              R"({"event": "end", "complete": false, "why": "no daemon", "linesDone": 1, )"
              R"("linesTotal": 2, )" +
                  noOutcomes +
                  R"(, "directory": "runs/a", "notes": ["One.", "Two."], )"
                  R"("stopConfirmed": false, "stopProblem": "no answer", "exitCode": 4})"
                  "\n");
    summary = {};
    summary.isComplete = true;
    summary.hasTransmitted = true;
    summary.verdicts = VerdictTotals{};
    m_writer.End(summary);
    EXPECT_EQ(Written(),
              R"({"event": "end", "complete": true, "why": "", "linesDone": 0, )"
              R"("linesTotal": 0, )" +
                  noOutcomes +
                  R"(, "verdicts": {"pass": 0, "too low": 0, "too high": 0, "not measured": 0, )"
                  R"("no limit": 0}, "directory": "", "notes": [], "stopConfirmed": true, )"
                  R"("stopProblem": "", "exitCode": 0})"
                  "\n");
}

TEST_F(JsonProgressTest, WithoutATransmissionThereIsNoStopToConfirm) {
    m_writer.End({});
    EXPECT_THAT(Written(),
                HasSubstr(R"("stopConfirmed": null, "stopProblem": "", "exitCode": 0})"));
}

} // namespace
} // namespace Bench
