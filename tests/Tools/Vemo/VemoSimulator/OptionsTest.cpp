#include "Tools/Vemo/VemoSimulator/Options.h"

#include "tests/Support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <regex>

namespace VemoSimulator {

using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

Options Accepted(const std::vector<std::string>& arguments) {
    return std::get<Options>(ParseOptions(arguments));
}

EarlyEnd Refused(const std::vector<std::string>& arguments) {
    return std::get<EarlyEnd>(ParseOptions(arguments));
}

} // namespace

TEST(OptionsTest, WithoutOptionsTheDefaultsHold) {
    const Options options = Accepted({});
    EXPECT_EQ(options.port, std::nullopt);
    EXPECT_EQ(options.address, "127.0.0.1");
    EXPECT_EQ(options.bodyLimit, 268435456U);
    EXPECT_EQ(options.requestLogFile, "");
    EXPECT_EQ(options.simulator.identity.macType, "5");
    EXPECT_EQ(options.simulator.identity.countryCode, "US");
    EXPECT_EQ(options.simulator.seed, 1U);
    EXPECT_EQ(options.simulator.noise, 25U);
    EXPECT_EQ(options.simulator.offset, 0U);
    EXPECT_EQ(options.simulator.latency, 0ms);
    EXPECT_TRUE(options.simulator.faults.empty());
}

TEST(OptionsTest, EachOptionReachesItsPlace) {
    const Options options = Accepted({"--port",
                                      "0",
                                      "--address",
                                      "::1",
                                      "--body-limit",
                                      "99",
                                      "--request-log",
                                      "requests.json",
                                      "--seed",
                                      "18446744073709551615",
                                      "--noise",
                                      "0",
                                      "--offset",
                                      "80",
                                      "--mac-type",
                                      "016",
                                      "--mcc",
                                      "D1",
                                      "--latency=20",
                                      "--fault",
                                      "1:crlf",
                                      "--fault",
                                      "text=-exit:drip=0"});
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.address, "::1");
    EXPECT_EQ(options.bodyLimit, 99U);
    EXPECT_EQ(options.requestLogFile, "requests.json");
    EXPECT_EQ(options.simulator.seed, 18446744073709551615U);
    EXPECT_EQ(options.simulator.noise, 0U);
    EXPECT_EQ(options.simulator.offset, 80U);
    EXPECT_EQ(options.simulator.identity.macType, "016");
    EXPECT_EQ(options.simulator.identity.countryCode, "D1");
    EXPECT_EQ(options.simulator.latency, 20ms);
    ASSERT_EQ(options.simulator.faults.size(), 2U);
    EXPECT_EQ(options.simulator.faults[0].Text(), "1:crlf");
    EXPECT_EQ(options.simulator.faults[1].Text(), "text=-exit:drip=0");
}

TEST(OptionsTest, NumbersAreDecimalWhateverTheyBeginWith) {
    const Options options = Accepted({"--port", "08738", "--body-limit", "0100", "--seed", "010",
                                      "--noise", "010", "--latency", "010"});
    EXPECT_EQ(options.port, 8738);
    EXPECT_EQ(options.bodyLimit, 100U);
    EXPECT_EQ(options.simulator.seed, 10U);
    EXPECT_EQ(options.simulator.noise, 10U);
    EXPECT_EQ(options.simulator.latency, 10ms);
}

TEST(OptionsTest, ARecordingIsReadWithTheFaultsOfItsSending) {
    const TestSupport::TemporaryDirectory directory;
    const std::string file =
        directory.Create("exchanges.jsonl", R"({"command":"c","answer":"a","end":"answered"})");
    const Options options = Accepted({"--replay", file, "--fault", "*:drip", "--latency", "1"});
    EXPECT_EQ(options.simulator.pRecording->AnswersTo("c")->front(), "a");
    EXPECT_EQ(options.simulator.faults.size(), 1U);
    EXPECT_EQ(Refused({"--replay", file, "--fault", "*:drip", "--fault", "2:crlf"}).error,
              "vemo: the fault 2:crlf changes the text of an answer; with --replay answers are as "
              "they were recorded\nRun vemo --help for the options.\n");
}

TEST(OptionsTest, ARecordingLeavesNoDeviceToDescribe) {
    for (const std::string option :
         {"--seed=1", "--noise=0", "--offset=0", "--mac-type=5", "--mcc=US"}) {
        const EarlyEnd end = Refused({"--replay", "none", option});
        EXPECT_EQ(end.error, "vemo: " + option.substr(0, option.find('=')) +
                                 " describes the simulated device; with --replay there is none\n"
                                 "Run vemo --help for the options.\n");
        EXPECT_EQ(end.exitCode, 2);
    }
}

TEST(OptionsTest, HelpNamesEveryFault) {
    const EarlyEnd end = Refused({"--help"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_THAT(end.output, HasSubstr("--request-log FILE"));
    EXPECT_THAT(end.output, HasSubstr("Faults:\n" + DescribeFaults()));
}

TEST(OptionsTest, ASlashAndAQuestionMarkAskForHelp) {
    EXPECT_EQ(Refused({"/?"}).output, Refused({"--help"}).output);
    EXPECT_EQ(Refused({"/?"}).exitCode, 0);
}

TEST(OptionsTest, ALinkIsToldByItsOwnName) {
    const struct {
        std::string calledAs;
        std::string name;
    } rows[] = {{"/usr/bin/sarvextool-vemo", "sarvextool-vemo"},
                {"sarvextool-vemo", "sarvextool-vemo"},
                {"simulator/vemo", "vemo"},
                {"C:\\bench\\vemo.exe", "vemo"},
                {"", "vemo"},
                {"./SimulatedDaemon", "vemo"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.calledAs);
        EXPECT_THAT(std::get<EarlyEnd>(ParseOptions({"--help"}, row.calledAs)).output,
                    HasSubstr("\nUsage: " + row.name + " [OPTIONS]\n"));
        EXPECT_THAT(std::get<EarlyEnd>(ParseOptions({"--none"}, row.calledAs)).error,
                    HasSubstr("\nRun " + row.name + " --help for the options.\n"));
    }
}

TEST(OptionsTest, TheVersionIsTold) {
    const EarlyEnd end = Refused({"--version"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_TRUE(std::regex_match(end.output, std::regex("vemo [0-9]+\\.[0-9]+\\.[0-9]+\n")))
        << end.output;
}

TEST(OptionsTest, AWrongCommandLineIsExplained) {
    const struct {
        std::vector<std::string> arguments;
        const char* problem;
    } rows[] = {
        {{"--port", "65536"}, "--port: not a number from 0 to 65535"},
        {{"--port", "-1"}, "--port: not a number from 0 to 65535"},
        {{"--port"}, "--port: 1 required N missing"},
        {{"--seed", "0x10"}, "--seed: not a number from 0 to 18446744073709551615"},
        {{"--body-limit", "1k"}, "--body-limit: not a number from 0 to 18446744073709551615"},
        {{"--noise", "10001"}, "--noise: not a number from 0 to 10000"},
        {{"--offset", "-1"}, "--offset: not a number from 0 to 10000"},
        {{"--latency", "86400001"}, "--latency: not a number from 0 to 86400000"},
        {{"--mac-type", "x"}, "--mac-type: a MAC type has one to ten digits"},
        {{"--mac-type", "12345678901"}, "--mac-type: a MAC type has one to ten digits"},
        {{"--mcc", "USA"}, "--mcc: a country code has two capital letters or digits"},
        {{"--mcc", "us"}, "--mcc: a country code has two capital letters or digits"},
        {{"--replay", "no/such/file"}, "cannot read no/such/file"},
        {{"--replay", ""}, "cannot read "},
        {{"--fault", "1:bogus"}, "unknown fault 'bogus'"},
        {{"--fault", "1:crlf", "2:crlf"}, "The following argument was not expected: 2:crlf"},
        {{"--bogus"}, "The following argument was not expected: --bogus"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.problem);
        const EarlyEnd end = Refused(row.arguments);
        EXPECT_EQ(end.output, "");
        EXPECT_EQ(end.error,
                  std::string("vemo: ") + row.problem + "\nRun vemo --help for the options.\n");
        EXPECT_EQ(end.exitCode, 2);
    }
}

} // namespace VemoSimulator
