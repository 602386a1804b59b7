#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/LateReader.h"

#include "Tools/SarvexTool/Bench/Files/Locks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

// However a run ends, the transmitter is off afterwards, or the program ends with 4 and says so.

namespace Bench {
namespace {

/// The words of a text with one blank between them.
std::string Unwrapped(const std::string& text) {
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

class EndingTest : public testing::Test {
protected:
    /// Expects that a user reads last that the transmitter may be on, and why.
    void ExpectLastWords(const std::string& out, const std::string& why) const {
        const std::string words = Unwrapped(out);
        const std::size_t begin = words.find("The transmitter may still be ON.");
        ASSERT_NE(begin, std::string::npos) << out;
        EXPECT_NE(words.find("has not confirmed the stop: it " + why, begin), std::string::npos)
            << out;
        EXPECT_TRUE(words.ends_with("Switch the device off, or stop it with SarvexToolBench stop "
                                    "--daemon " +
                                    daemon.Address()))
            << out;
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(EndingTest, ClientThatEndsItselfIsToldWithItsLine) {
    daemon.Start({"--fault", "6:return-code=abc"});
    const EndToEnd::ProcessResult result = probe.Run(daemon.Address());
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxSx");
    EXPECT_EQ(probe.Outcomes(), "2 measured, measured");
    EXPECT_NE(Unwrapped(result.out)
                  .find("after 1 of 2 lines: the client ended with code " +
                        std::to_string(EndToEnd::ExitStatus(1)) + " at line 3"),
              std::string::npos)
        << result.out;
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(EndingTest, StopThatIsNeverAnsweredIsTheLastThatIsSaid) {
    daemon.Start({"--fault", "text=-wifi-stop:no-answer"});
    const EndToEnd::ProcessResult result = probe.Run(
        daemon.Address(), {"--answer-timeout", "2", "--wait", "2", "--stop-timeout", "2"});
    EXPECT_EQ(result.exitCode, 4);
    ExpectLastWords(result.out, "gives no whole answer within");
    EXPECT_FALSE(probe.Facts().Flag("stopConfirmed"));
    EXPECT_EQ(probe.Facts().Integer("exitCode"), 4);
}

TEST_F(EndingTest, StopThatIsRefusedAfterACompleteRunIsTheLastThatIsSaid) {
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    const EndToEnd::ProcessResult result = probe.Run(daemon.Address(), {"--stop-timeout", "2"});
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_TRUE(Unwrapped(result.out).starts_with("The run is complete: 2 of 2 lines."));
    ExpectLastWords(result.out, "answered without the return code 0");
}

TEST_F(EndingTest, OutputThatNobodyReadsDisturbsNoRunAndHidesNoMissedStop) {
    struct Case {
        const char* fault;
        int exitCode;
    };
    for (const Case& one : {Case{"1000:close-before", 0}, Case{"text=-wifi-start:return-code=5", 1},
                            Case{"text=-wifi-stop:return-code=5", 4}}) {
        SCOPED_TRACE(one.fault);
        const RunProbe own;
        RestartableDaemon daemonOfOne;
        daemonOfOne.Start({"--fault", one.fault});
        EndToEnd::Process run(
            BenchPath(),
            own.Arguments(daemonOfOne.Address(), {"--progress", "json", "--stop-timeout", "2"}),
            own.Path(""),
            {.output = EndToEnd::Process::Output::BrokenPipe,
             .inputFile = "",
             .areArgumentsUtf8 = false});
        const EndToEnd::ProcessResult result = run.Wait();
        EXPECT_EQ(result.exitCode, one.exitCode);
        EXPECT_EQ(own.Facts().Integer("exitCode"), one.exitCode);
        EXPECT_EQ(own.Lines("journal.jsonl").size(), 2u);
        const std::string last = one.exitCode == 4 ? "stop --daemon " + daemonOfOne.Address() + "\n"
                                                   : "-: error: cannot be written\n";
        EXPECT_TRUE(result.err.ends_with(last)) << result.err;
    }
}

TEST_F(EndingTest, StopThatIsConfirmedIsSoThoughNobodyReads) {
    daemon.Start();
    EndToEnd::Process stop(BenchPath(), {"stop", "--daemon", daemon.Address()}, probe.Path(""),
                           {.output = EndToEnd::Process::Output::BrokenPipe,
                            .inputFile = "",
                            .areArgumentsUtf8 = false});
    const EndToEnd::ProcessResult result = stop.Wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.err.find("-: error: cannot be written"), std::string::npos) << result.err;
}

TEST_F(EndingTest, RefusedResumingKeepsStandardOutputForJson) {
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--stop-timeout", "1"}).exitCode, 4);
    daemon.Kill();
    daemon.Start();
    probe.Write("test.csv", "Band\n6\n");
    const EndToEnd::ProcessResult refused =
        probe.RunBench({"run", "--resume", "run", "--progress", "json"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_TRUE(
        refused.err.ends_with("The daemon at " + daemon.Address() + " has confirmed the stop.\n"))
        << refused.err;
}

using LateReaderTest = LateReader;

TEST_F(LateReaderTest, RunMeasuresOnWithoutItAndGivesItAllLater) {
    daemon.Start();
    const auto run = Start();
    WaitForLastStop();
    ExpectAll(run->ReadOut(), lines);
    const EndToEnd::ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(Unwrapped(result.err).find("The run is complete: 40 of 40 lines.") !=
                std::string::npos)
        << result.err;
}

TEST_F(EndingTest, WithoutAStartNoStopIsMissed) {
    daemon.Start({"--fault", "*:no-answer"});
    const EndToEnd::ProcessResult result = probe.Run(
        daemon.Address(), {"--answer-timeout", "2", "--wait", "2", "--stop-timeout", "2"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(daemon.Exchanges().find('S'), std::string::npos);
    EXPECT_EQ(result.out.find("ON"), std::string::npos) << result.out;
    EXPECT_FALSE(probe.Facts().Flag("startPassedOn"));
}

TEST_F(EndingTest, StartAmongTheArgumentsIsStoppedToo) {
    daemon.Start({"--fault", "2:return-code=5", "--fault", "text=-wifi-get-mac-type:no-answer"});
    const EndToEnd::ProcessResult result =
        probe.Run(daemon.Address(), {"--answer-timeout", "2", "--retries", "0", "--", "-wifi-rate",
                                     "MCS1", "-WIFI-START"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(daemon.Commands().back(), "CLI -1 -vemo -wifi-stop");
    EXPECT_TRUE(probe.Facts().Flag("startPassedOn"));
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

// The subcommand stop.

struct StopCase {
    const char* name;
    const char* fault;
    int exitCode;
};

class StopTest : public testing::TestWithParam<StopCase> {
protected:
    RunProbe probe;
    RestartableDaemon daemon;
};

void PrintTo(const StopCase& stop, std::ostream* pStream) {
    *pStream << stop.fault;
}

TEST_P(StopTest, IsConfirmedByReturnCode0Alone) {
    daemon.Start({"--fault", GetParam().fault});
    const EndToEnd::ProcessResult result =
        probe.RunBench({"stop", "--daemon", daemon.Address(), "--stop-timeout",
                        GetParam().exitCode == 0 ? "60" : "2"});
    EXPECT_EQ(result.exitCode, GetParam().exitCode) << result.out << result.err;
    EXPECT_EQ(daemon.Exchanges(), "x");
    const std::string confirmation =
        "The daemon at " + daemon.Address() + " has confirmed the stop.\n";
    if (GetParam().exitCode == 0)
        EXPECT_EQ(result.out, confirmation);
    else
        EXPECT_TRUE(result.err.starts_with("The transmitter may still be ON: the daemon at " +
                                           daemon.Address()))
            << result.err;
}

TEST(StopAnswerTest, TellsTheAnswerThatConfirmsNothing) {
    RunProbe probe;
    RestartableDaemon daemon;
    daemon.Start({"--fault", "1:return-code=5"});
    const EndToEnd::ProcessResult result =
        probe.RunBench({"stop", "--daemon", daemon.Address(), "--stop-timeout", "2"});
    EXPECT_EQ(result.err, "The transmitter may still be ON: the daemon at " + daemon.Address() +
                              " answers without the return code 0 (Nothing was running.).\n");
}

INSTANTIATE_TEST_SUITE_P(
    Answer, StopTest,
    testing::Values(StopCase{"Undisturbed", "2:close-before", 0},
                    StopCase{"Code5", "1:return-code=5", 4},
                    StopCase{"NoNumber", "1:return-code=abc", 4}, StopCase{"NoCode", "1:crlf", 4},
                    StopCase{"NoMark", "1:no-mark", 0}, StopCase{"Slow", "1:drip", 0},
                    StopCase{"Cut", "1:close-after=100", 4}, StopCase{"Never", "1:no-answer", 4},
                    StopCase{"Closed", "1:close-before", 4}, StopCase{"Reset", "1:reset", 4}),
    [](const testing::TestParamInfo<StopCase>& stop) { return std::string(stop.param.name); });

TEST_F(EndingTest, StopWithoutADaemonIsNotConfirmed) {
    const EndToEnd::ProcessResult result =
        probe.RunBench({"stop", "--daemon", daemon.Address(), "--stop-timeout", "60"});
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_NE(result.err.find("cannot be reached"), std::string::npos) << result.err;
}

TEST_F(EndingTest, StopThatCannotLookForARunIsNotConfirmedAllTheSame) {
    const std::string lock = DaemonLockFile("127.0.0.1", daemon.Port());
    std::filesystem::remove(lock);
    std::filesystem::create_directory(lock);
    const EndToEnd::ProcessResult result =
        probe.RunBench({"stop", "--daemon", daemon.Address(), "--stop-timeout", "60"});
    daemon.Start();
    const EndToEnd::ProcessResult confirmed =
        probe.RunBench({"stop", "--daemon", daemon.Address()});
    std::filesystem::remove(lock);
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_TRUE(result.err.starts_with("Whether this daemon is in use cannot be told: "))
        << result.err;
    EXPECT_NE(result.err.find("\nThe transmitter may still be ON: "), std::string::npos)
        << result.err;
    EXPECT_EQ(confirmed.exitCode, 0) << confirmed.err;
}

TEST_F(EndingTest, StopTellsWrongUsage) {
    daemon.Start();
    const std::vector<std::vector<std::string>> wrong{{"--bogus"},
                                                      {"surplus"},
                                                      {"--stop-timeout", "soon"},
                                                      {"--stop-timeout", "-1"},
                                                      {"--daemon", "127.0.0.1:70000"},
                                                      {"--daemon", ""}};
    for (std::vector<std::string> arguments : wrong) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        arguments.insert(arguments.begin(), "stop");
        if (std::find(arguments.begin(), arguments.end(), "--daemon") == arguments.end())
            arguments.insert(arguments.end(), {"--daemon", daemon.Address()});
        const EndToEnd::ProcessResult result = probe.RunBench(arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_NE(result.err, "");
    }
    EXPECT_EQ(daemon.Exchanges(), "");
}

} // namespace
} // namespace Bench
