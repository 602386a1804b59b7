#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <array>

// Verdicts while a run goes on, and the arguments that are sent once.

namespace Bench {
namespace {

using EndToEnd::ProcessResult;

/// The objects of a program's JSON progress for one event.
std::vector<JsonFields> Events(const ProcessResult& result, const std::string& name) {
    std::vector<JsonFields> events;
    for (const JsonFields& event : JsonLines(result.out)) {
        if (event.Text("event") == name)
            events.push_back(event);
    }
    return events;
}

std::string VerdictsOf(const JsonFields& line) {
    std::string text = std::to_string(line.Line("line"));
    for (const char* chain : {"a", "b"})
        text +=
            " " + (line.Object(chain).Has("verdict") ? line.Object(chain).Text("verdict") : "-");
    return text;
}

/// Limits, and what they make of a run: line 2 gives 17.86 and 17.61 dBm, line 3 17.9 and 17.65.
struct LimitsCase {
    const char* limits;
    const char* verdicts;
    int exitCode;
};

constexpr std::array<LimitsCase, 5> limitsCases{{
    {"Chain,Min,Max\n*,17,18\n", "2 pass pass; 3 pass pass", 0},
    {"Chain,Min,Max\nA,17.88,*\nB,*,*\n", "2 too low pass; 3 pass pass", 1},
    {"Chain,Min,Max\nA,*,17.88\nB,*,*\n", "2 pass pass; 3 too high pass", 1},
    {"Chain,Min,Max\nA,*,*\n", "2 pass no limit; 3 pass no limit", 1},
    {"Channel,Chain,Min,Max\n36,*,17.8,*\n40,*,17.65,17.9\n", "2 pass too low; 3 pass pass", 1},
}};

class LimitsRunTest : public testing::Test {
protected:
    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(LimitsRunTest, VerdictsComeWithTheLinesAndAreThoseOfJudge) {
    daemon.Start();
    for (const LimitsCase& limits : limitsCases) {
        SCOPED_TRACE(limits.limits);
        const RunProbe own;
        own.Write("limits.csv", limits.limits);
        const ProcessResult result =
            own.Run(daemon.Address(), {"--limits", "limits.csv", "--progress", "json"});
        EXPECT_EQ(result.exitCode, limits.exitCode);
        std::string verdicts;
        for (const JsonFields& line : Events(result, "line"))
            verdicts += (verdicts.empty() ? "" : "; ") + VerdictsOf(line);
        EXPECT_EQ(verdicts, limits.verdicts);
        const std::vector<JsonFields> ends = Events(result, "end");
        ASSERT_EQ(ends.size(), 1u);
        EXPECT_EQ(ends[0].Integer("exitCode"), limits.exitCode);
        EXPECT_TRUE(ends[0].Flag("complete"));
        EXPECT_TRUE(ends[0].Flag("stopConfirmed"));
        const ProcessResult judged = own.RunBench({"judge", "run", "--limits", "limits.csv"});
        EXPECT_EQ(judged.exitCode, limits.exitCode) << judged.out;
    }
}

TEST_F(LimitsRunTest, ChainWithoutAPowerDoesNotPass) {
    probe.Write("limits.csv", "Chain,Min,Max\n*,*,*\n");
    daemon.Start({"--fault", "6:missing-chain=B"});
    const ProcessResult result =
        probe.Run(daemon.Address(), {"--limits", "limits.csv", "--progress", "json"});
    EXPECT_EQ(result.exitCode, 1);
    const std::vector<JsonFields> lines = Events(result, "line");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(VerdictsOf(lines[1]), "3 pass not measured");
    EXPECT_EQ(lines[1].Object("verdicts").Count("pass"), 3u);
    EXPECT_EQ(lines[1].Object("outcomes").Count("chain not active"), 1u);
    EXPECT_EQ(probe.RunBench({"judge", "run", "--limits", "limits.csv"}).exitCode, 1);
}

TEST_F(LimitsRunTest, PowersAfterARefusedOrUnansweredSettingDoNotCount) {
    struct Case {
        const char* fault;
        const char* outcomes;
    };
    for (const Case& test : {Case{"4:return-code=3", "2 refused, refused; 3 measured, measured"},
                             Case{"4:no-answer", "2 time-out, time-out; 3 measured, measured"}}) {
        SCOPED_TRACE(test.fault);
        const RunProbe own;
        RestartableDaemon faulty;
        faulty.Start({"--fault", test.fault});
        const ProcessResult result =
            own.Run(faulty.Address(), {"--retries", "0", "--answer-timeout", "2"});
        EXPECT_EQ(result.exitCode, 1) << result.err;
        EXPECT_EQ(own.Outcomes(), test.outcomes);
        EXPECT_NE(result.out.find("Note: 2 of the powers do not count, because a setting of theirs "
                                  "is uncertain;\n"),
                  std::string::npos)
            << result.out;
    }
}

TEST_F(LimitsRunTest, FailFastEndsAfterTheLineAndCanBeResumed) {
    probe.Write("limits.csv", "Chain,Min,Max\nA,17.88,*\nB,*,*\n");
    daemon.Start();
    const ProcessResult result =
        probe.Run(daemon.Address(), {"--limits", "limits.csv", "--fail-fast"});
    EXPECT_EQ(result.exitCode, 1) << result.err;
    EXPECT_NE(result.out.find("line 2 did not pass"), std::string::npos) << result.out;
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    EXPECT_EQ(probe.Outcomes(), "2 measured, measured");
    const ProcessResult resumed = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(resumed.exitCode, 1) << resumed.err;
    EXPECT_NE(resumed.out.find("The run is complete: 2 of 2 lines."), std::string::npos)
        << resumed.out;
}

TEST_F(LimitsRunTest, ResumedRunKeepsWhereItHasMeasured) {
    probe.Write("limits.csv", "Chain,Min,Max\nA,17.88,*\nB,*,*\n");
    daemon.Start();
    EXPECT_EQ(probe
                  .Run(daemon.Address(), {"--limits", "limits.csv", "--fail-fast", "--bench",
                                          "bench 1", "--device", "DUT-42", "--attempt", "2"})
                  .exitCode,
              1);
    EXPECT_EQ(probe.RunBench({"run", "--resume", "run"}).exitCode, 1);
    const JsonFields facts = probe.Facts();
    EXPECT_EQ(facts.Text("outcome"), "complete");
    EXPECT_EQ(facts.Text("bench"), "bench 1");
    EXPECT_EQ(facts.Text("device"), "DUT-42");
    EXPECT_EQ(facts.Line("attempt"), 2u);
}

TEST_F(LimitsRunTest, FailFastAtTheLastLineHasNothingToEnd) {
    probe.Write("limits.csv", "Chain,Min,Max\nA,*,17.88\nB,*,*\n");
    daemon.Start();
    const ProcessResult result =
        probe.Run(daemon.Address(), {"--limits", "limits.csv", "--fail-fast"});
    EXPECT_EQ(result.exitCode, 1) << result.err;
    EXPECT_NE(result.out.find("The run is complete: 2 of 2 lines."), std::string::npos)
        << result.out;
    EXPECT_NE(TestSupport::ReadBytes(probe.Path("run/result.xml")), "");
}

// The arguments after "--".

class FirstCommandTest : public LimitsRunTest {
protected:
    /// The first commands of all clients.
    std::vector<std::string> FirstCommands() const {
        std::vector<std::string> first;
        for (const std::string& command : daemon.Commands()) {
            if (LetterOf(command) == 'f')
                first.push_back(command);
        }
        return first;
    }
};

TEST_F(FirstCommandTest, GoesOutInTheFirstSegmentOnly) {
    daemon.Start();
    EXPECT_EQ(probe.Run(daemon.Address(), {"--segment", "1", "--", "-no_automation"}).exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxfmcSx");
    EXPECT_EQ(FirstCommands(),
              (std::vector<std::string>{"CLI -1 -vemo  -no_automation", "CLI -1 "}));
}

TEST_F(FirstCommandTest, WithoutAnAnswerItGoesOutAgainWhenTheRunIsResumed) {
    daemon.Start({"--fault", "*:no-answer"});
    EXPECT_EQ(
        probe
            .Run(daemon.Address(), {"--answer-timeout", "2", "--wait", "1", "--", "-no_automation"})
            .exitCode,
        3);
    daemon.Kill();
    daemon.Start();
    EXPECT_EQ(probe.RunBench({"run", "--resume", "run"}).exitCode, 0);
    EXPECT_TRUE(daemon.Exchanges().ends_with("|fmcSxSx")) << daemon.Exchanges();
    EXPECT_EQ(FirstCommands().back(), "CLI -1 -vemo  -no_automation");
}

TEST_F(FirstCommandTest, WithAnAnswerItDoesNotGoOutAgain) {
    daemon.Start({"--fault", "text=-wifi-get-mac-type:close-before"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--", "-no_automation"}).exitCode, 3);
    daemon.Kill();
    daemon.Start();
    EXPECT_EQ(probe.RunBench({"run", "--resume", "run"}).exitCode, 0);
    EXPECT_TRUE(daemon.Exchanges().ends_with("|fmcSxSx")) << daemon.Exchanges();
    EXPECT_EQ(FirstCommands().front(), "CLI -1 -vemo  -no_automation");
    EXPECT_EQ(FirstCommands().back(), "CLI -1 ");
}

TEST_F(FirstCommandTest, ItsRefusalIsToldAgainWhenTheRunIsResumed) {
    daemon.Start({"--fault", "text=-wifi-get-mac-type:close-before"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--", "-wifi-rate", "none"}).exitCode, 3);
    daemon.Kill();
    daemon.Start();
    const ProcessResult resumed = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(resumed.exitCode, 1) << resumed.err;
    EXPECT_NE(resumed.out.find("2 of 2 lines.\n4 measurements: 4 measured.\n"
                               "Note: The daemon refused the first command: Rate cannot be"),
              std::string::npos)
        << resumed.out;
}

TEST_F(FirstCommandTest, ItsSettingsAreRestoredToo) {
    daemon.Start({"--fault", "5:no-answer"});
    const auto run = probe.Start(daemon.Address(), {"--", "-wifi-rate", "MCS7"});
    daemon.WaitForExchanges("rmcrS");
    daemon.Kill();
    daemon.Start();
    EXPECT_EQ(run->Wait().exitCode, 0);
    EXPECT_TRUE(daemon.Exchanges().ends_with("rSxSx")) << daemon.Exchanges();
    const std::vector<std::string> commands = daemon.Commands();
    EXPECT_EQ(commands[commands.size() - 5], "CLI -1 -vemo -wifi-rate MCS7");
}

} // namespace
} // namespace Bench
