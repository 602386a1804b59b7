#include "tests/EndToEnd/Support/ReservedPort.h"
#include "tests/EndToEnd/Support/Simulator.h"
#include "tests/Tools/SarvexTool/Bench/EndToEnd/BenchProgram.h"

#include <gmock/gmock.h>

#include <regex>

namespace Bench {
namespace {

using EndToEnd::ProcessResult;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class CheckEndToEndTest : public testing::Test {
protected:
    /// All columns, so that there are no warnings.
    const std::string header = "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,"
                               "Resource Unit,Specific Resource unit,Large RU Size\n";
    const std::string sound = header + "5,AB,80,36,HE,MCS0,SISO,26,0,none\n";

    BenchProgram program;
};

TEST_F(CheckEndToEndTest, AFileNameMayHoldAnyCharacter) {
    program.Write("Ω 測試.csv", sound);
    const ProcessResult result = program.Run({"check", "Ω 測試.csv"});
    EXPECT_EQ(result.exitCode, 0);
    // The same bytes on every system.
    EXPECT_EQ(result.out, "Ω 測試.csv: no errors, no warnings; 1 configuration, 2 measurements; a "
                          "run takes about 1 s\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(CheckEndToEndTest, AWildcardIsNoPattern) {
    program.Write("a.csv", sound);
    const ProcessResult result = program.Run({"check", "*.csv"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, StartsWith("*.csv: error: cannot be read ("));
}

TEST_F(CheckEndToEndTest, BytesPassTheStandardStreamsUnchanged) {
    program.Write("in.csv", "Band;Chains\r\n5;A\x1A\r\n6;B\r\n");
    const ProcessResult result = program.Run({"check", "-", "--write", "-"}, "in.csv");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "Band,Chains\n5,A\x1A\n6,B\n");
    EXPECT_THAT(result.err, HasSubstr("-:2:2: error: the cell holds the control byte 0x1A"));
}

TEST_F(CheckEndToEndTest, ACorrectedCopyReplacesAnOldOneAndLeavesNothingElse) {
    program.Write("in.csv", "\xEF\xBB\xBF" + sound);
    program.Write("Ω.csv", "old");
    EXPECT_EQ(program.Run({"check", "in.csv", "--write", "Ω.csv"}).exitCode, 0);
    EXPECT_EQ(program.Read("Ω.csv"), sound);
    EXPECT_EQ(program.CountFiles(), 2);
}

TEST_F(CheckEndToEndTest, WrongUsageEndsWithTwo) {
    program.Write("a.csv", sound);
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"nothing"},
                                               {"check"},
                                               {"check", "a.csv", "--write", "./a.csv"},
                                               {"check", "a.csv", "--unknown"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ProcessResult result = program.Run(arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.err, HasSubstr(" --help for the options.\n"));
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(program.Read("a.csv"), sound);
}

TEST_F(CheckEndToEndTest, HelpAndVersionEndWithZero) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--help"}, {"--version"}, {"help"}, {"help", "check"}, {"check", "--help"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ProcessResult result = program.Run(arguments);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_THAT(result.out, HasSubstr("SarvexToolBench"));
        EXPECT_EQ(result.out.find('\r'), std::string::npos);
    }
}

TEST_F(CheckEndToEndTest, ADaemonTriesTheSettings) {
    const EndToEnd::Simulator daemon({"--request-log", program.Path("log.jsonl")});
    program.Write("a.csv", sound + "-,-,-,999,-,-,-,-,-,-\n");
    const ProcessResult result =
        program.Run({"check", "a.csv", "--daemon", "127.0.0.1:" + daemon.Port()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.out, HasSubstr("a.csv:3:4: error: the daemon refuses Channel \"999\": "));
    EXPECT_THAT(result.out, EndsWith("\nThe settings of the device at 127.0.0.1:" + daemon.Port() +
                                     " have changed.\n"));
    const std::string log = program.Read("log.jsonl");
    EXPECT_THAT(log, HasSubstr("\"CLI -1 -vemo -wifi-band 5 -wifi-tx-chains-from-file AB "
                               "-wifi-bandwidth 80 -wifi-channel 36 -wifi-bw-mode HE -wifi-rate "
                               "MCS0 -wifi-tx-transm-mode SISO -wifi-resource-unit 26 "
                               "-wifi-specific-resource-unit 0 -wifi-large-ru none\""));
    for (const char* const word : {"calibrate", "-wifi-start", "-wifi-stop", "-wifi-mode"})
        EXPECT_EQ(log.find(word), std::string::npos) << word;
}

TEST_F(CheckEndToEndTest, ThePortIsThatBesideTheProgram) {
    const EndToEnd::Simulator daemon;
    const std::string copy = program.Path(EndToEnd::ExecutableName("copy"));
    std::filesystem::copy_file(
        EndToEnd::TestProgramDirectory() + "/" + EndToEnd::ExecutableName("SarvexToolBench"), copy);
    program.Write("Socket.cfg", daemon.Port());
    program.Write("a.csv", sound);
    const ProcessResult result =
        program.RunProgram(copy, {"check", "a.csv", "--daemon", "localhost"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith("The settings of the device at localhost have changed.\n"));
}

TEST_F(CheckEndToEndTest, ADaemonThatDoesNotAnswerInTimeEndsWithTwo) {
    program.Write("a.csv", sound);
    for (const char* const fault : {"*:no-answer", "*:split-mark=60000", "*:reset"}) {
        SCOPED_TRACE(fault);
        const EndToEnd::Simulator daemon({"--fault", fault});
        const std::string address = "127.0.0.1:" + daemon.Port();
        const ProcessResult result =
            program.Run({"check", "a.csv", "--daemon", address, "--timeout", "0.5"});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.err, StartsWith(address + ": error: the daemon "));
        // What is known of the file is told all the same.
        EXPECT_THAT(result.out, HasSubstr("a.csv: no errors"));
        // The daemon has got the command.
        EXPECT_THAT(result.out, EndsWith("\nThe settings of the device at " + address +
                                         " may have changed.\n"));
    }
}

TEST_F(CheckEndToEndTest, AnAnswerWithoutReturnCodeIsNoConsent) {
    program.Write("a.csv", header + "5,AB,80,999,HE,MCS0,SISO,26,0,none\n");
    // Half an answer, and one in which no line is a marker.
    for (const char* const fault : {"*:close-after=100", "*:crlf"}) {
        SCOPED_TRACE(fault);
        const EndToEnd::Simulator daemon({"--fault", fault});
        const std::string address = "127.0.0.1:" + daemon.Port();
        const ProcessResult result = program.Run({"check", "a.csv", "--daemon", address});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.err,
                    StartsWith(address + ": error: the daemon gives no return code, so that "));
        EXPECT_THAT(result.out, EndsWith("\nThe settings of the device at " + address +
                                         " may have changed.\n"));
    }
}

TEST_F(CheckEndToEndTest, ADaemonThatIsNotThereHasTakenNothing) {
    const EndToEnd::ReservedPort port;
    program.Write("a.csv", sound);
    const ProcessResult result =
        program.Run({"check", "a.csv", "--daemon", "127.0.0.1:" + std::to_string(port.Number())});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.out, EndsWith("a run takes about 1 s\n"));
}

TEST_F(CheckEndToEndTest, ADaemonThatIsNotThereIsToldLast) {
    const EndToEnd::ReservedPort port;
    const std::string address = "127.0.0.1:" + std::to_string(port.Number());
    program.Write("a.csv", sound);
    const ProcessResult result =
        program.Run({"check", "a.csv", "--write", "-", "--daemon", address});
    EXPECT_THAT(result.err, HasSubstr("a run takes about 1 s\n" + address +
                                      ": error: the daemon cannot be reached ("));
}

TEST_F(CheckEndToEndTest, TheTimeOfAnExchangeCountsForTheTimeOfARun) {
    const EndToEnd::Simulator daemon({"--latency", "500"});
    program.Write("a.csv", sound);
    const ProcessResult result =
        program.Run({"check", "a.csv", "--daemon", "127.0.0.1:" + daemon.Port()});
    EXPECT_EQ(result.exitCode, 0);
    // One second and four exchanges of half a second and, on a busy machine, more.
    std::smatch seconds;
    ASSERT_TRUE(
        std::regex_search(result.out, seconds, std::regex("a run takes about ([0-9]+) s\n")))
        << result.out;
    EXPECT_GE(std::stoi(seconds[1]), 3);
}

} // namespace
} // namespace Bench
