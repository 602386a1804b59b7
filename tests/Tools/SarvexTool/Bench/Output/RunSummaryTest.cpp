#include "Tools/SarvexTool/Bench/Output/RunSummary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>

namespace Bench {
namespace {

std::string Printed(const RunSummary& summary) {
    std::ostringstream stream;
    PrintSummary(stream, summary);
    return stream.str();
}

RunSummary CompleteRun() {
    RunSummary summary;
    summary.isComplete = true;
    summary.linesDone = summary.linesTotal = 1;
    summary.outcomes.Add({{Outcome::Measured, ""}, {Outcome::Measured, ""}, true}, {true, true});
    summary.directory = "runs/plan";
    return summary;
}

RunSummary EndedRun() {
    RunSummary summary = CompleteRun();
    summary.isComplete = false;
    summary.whyEnded = "the daemon at 10.0.0.7:8738 was not there for 300 s";
    summary.linesTotal = 400;
    return summary;
}

TEST(RunSummaryTest, ACompleteRunIsToldInAFewLines) {
    EXPECT_EQ(Printed(CompleteRun()), "The run is complete: 1 of 1 line.\n"
                                      "2 measurements: 2 measured.\n"
                                      "The results are in\n"
                                      "  runs/plan\n");
}

TEST(RunSummaryTest, ARunWithoutMeasurementsSaysSo) {
    RunSummary summary = CompleteRun();
    summary.linesDone = summary.linesTotal = 0;
    summary.outcomes = {};
    EXPECT_EQ(Printed(summary), "The run is complete: 0 of 0 lines.\n"
                                "0 measurements.\n"
                                "The results are in\n"
                                "  runs/plan\n");
}

TEST(RunSummaryTest, ARunThatEndedEarlySaysWhyAndHowToGoOn) {
    EXPECT_EQ(Printed(EndedRun()),
              "The run ended early, after 1 of 400 lines: the daemon at 10.0.0.7:8738 was not\n"
              "there for 300 s.\n"
              "2 measurements: 2 measured.\n"
              "The results are in\n"
              "  runs/plan\n"
              "To go on with the next line:\n"
              "  SarvexToolBench run --resume runs/plan\n");
}

TEST(RunSummaryTest, CommandsCanBeCopied) {
    constexpr bool isWindows = std::filesystem::path::preferred_separator == '\\';
    const std::string quote = isWindows ? "\"" : "'";
    RunSummary summary = EndedRun();
    summary.directory = "test runs/$(touch x)" + std::string(80, 'x');
    summary.unconfirmedStop = "no answer";
    summary.daemon = "bench 7:8738";
    const std::string text = Printed(summary);
    EXPECT_NE(
        text.find("  SarvexToolBench run --resume " + quote + summary.directory + quote + "\n"),
        std::string::npos)
        << text;
    EXPECT_TRUE(
        text.ends_with("  SarvexToolBench stop --daemon " + quote + "bench 7:8738" + quote + "\n"))
        << text;
    if (isWindows)
        return;
    summary.directory = "it's";
    EXPECT_NE(Printed(summary).find("--resume 'it'\\''s'\n"), std::string::npos);
}

TEST(RunSummaryTest, FolderThatIsGoneIsNotOffered) {
    RunSummary summary = EndedRun();
    summary.directory.clear();
    EXPECT_TRUE(Printed(summary).ends_with("2 measurements: 2 measured.\n")) << Printed(summary);
}

TEST(RunSummaryTest, ConfirmedStopAndJudgeAreNamed) {
    RunSummary summary = EndedRun();
    summary.hasTransmitted = true;
    summary.verdicts = VerdictTotals{1, 1, 0, 0, 0};
    summary.limits = "limits.csv";
    EXPECT_TRUE(Printed(summary).ends_with("To see what did not pass:\n"
                                           "  SarvexToolBench judge runs/plan --limits limits.csv\n"
                                           "To go on with the next line:\n"
                                           "  SarvexToolBench run --resume runs/plan\n"
                                           "The daemon has confirmed the last stop.\n"))
        << Printed(summary);
    summary.verdicts = VerdictTotals{2, 0, 0, 0, 0};
    EXPECT_EQ(Printed(summary).find("judge"), std::string::npos);
}

TEST(RunSummaryTest, WhatIsMissingIsToldWithItsReason) {
    RunSummary summary = CompleteRun();
    for (const Outcome outcome : {Outcome::Refused, Outcome::Refused, Outcome::TimedOut})
        summary.outcomes.Add({{outcome, ""}, {Outcome::ChainNotActive, ""}, false}, {true, false});
    summary.missing = {{12, Chain::A, {Outcome::Refused, "Band cannot be '7'."}},
                       {13, Chain::None, {Outcome::Refused, ""}}};
    summary.verdicts = VerdictTotals{1, 1, 0, 3, 0};
    EXPECT_EQ(Printed(summary), "The run is complete: 1 of 1 line.\n"
                                "5 measurements: 2 measured, 2 refused, 1 time-out.\n"
                                "Held against the limits: 1 pass, 1 too low.\n"
                                "Not measured, the first 2 of 3:\n"
                                "  line 12, chain A: refused: Band cannot be '7'.\n"
                                "  line 13: refused\n"
                                "The results are in\n"
                                "  runs/plan\n");
    summary.missing.push_back(
        {14, Chain::B, {Outcome::TimedOut, std::string(30, 'x') + " " + std::string(30, 'y')}});
    EXPECT_NE(Printed(summary).find("\nNot measured:\n  line 12,"), std::string::npos);
    EXPECT_NE(Printed(summary).find("\n  line 14, chain B: time-out: " + std::string(30, 'x') +
                                    "\n    " + std::string(30, 'y') + "\n"),
              std::string::npos)
        << Printed(summary);
}

TEST(RunSummaryTest, NotesAreToldBeforeTheResults) {
    RunSummary summary = CompleteRun();
    summary.notes = {"The daemon closes idle connections, so that the settings were sent again at "
                     "each segment."};
    EXPECT_NE(Printed(summary).find(
                  "2 measurements: 2 measured.\n"
                  "Note: The daemon closes idle connections, so that the settings were sent again\n"
                  "  at each segment.\n"
                  "The results are in\n"),
              std::string::npos)
        << Printed(summary);
}

TEST(RunSummaryTest, ATransmitterThatMayBeOnIsTheLastThingTold) {
    for (RunSummary summary : {CompleteRun(), EndedRun()}) {
        summary.unconfirmedStop = "no answer within 10 s";
        EXPECT_TRUE(Printed(summary).ends_with(
            "\n"
            "\n"
            "The transmitter may still be ON. The daemon has not confirmed the stop: no\n"
            "answer within 10 s. Switch the device off, or stop it with\n"
            "  SarvexToolBench stop\n"))
            << Printed(summary);
    }
}

TEST(RunSummaryTest, TextsOfFilesAndDaemonsAreMadeHarmless) {
    RunSummary summary = EndedRun();
    const std::string hostile = "\x1B[2J\r\n\xFF";
    // In a command Unix shells read other escapes.
    const std::regex harmless(R"(\\(x1B|033)\[2J\\(r\\n|015\\012)\\xFF)");
    summary.whyEnded = summary.directory = summary.daemon = hostile;
    summary.missing = {{2, Chain::A, {Outcome::Refused, hostile}}};
    summary.notes = {hostile};
    summary.unconfirmedStop = hostile;
    const std::string text = Printed(summary);
    EXPECT_EQ(text.find_first_of("\x1B\r\xFF"), std::string::npos);
    EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), harmless), {}), 7);
}

} // namespace
} // namespace Bench
