#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gmock/gmock.h>

#include <algorithm>

// Runs the client with its pauses taken out against the simulated daemon.

namespace EndToEnd {
namespace {

const std::string sourceDirectory = SARVEX_SOURCE_DIR;

/// Lines of a result as a text of the repository has them.
std::string WithoutCarriageReturns(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

class ExampleRunTest : public testing::Test {
protected:
    ExampleRunTest() {
        bench.AddProgram("SarvexToolClientWithoutPauses", "SarvexToolClientWithoutPauses");
    }

    /// With a device that has kept no settings from a run before.
    ProcessResult RunTestFile(const std::string& path) const {
        const Simulator simulator({"--noise", "0"});
        bench.SetPort(simulator.Port());
        return Process(bench.Path(ExecutableName("SarvexToolClientWithoutPauses")),
                       {"-wifi-test-by-file", path}, bench.Directory())
            .Wait(280);
    }

    Bench bench;
};

TEST_F(ExampleRunTest, ExamplesGiveTheResultsThatWereWorkedOutByHand) {
    for (const std::string name : {"short", "oddities"}) {
        SCOPED_TRACE(name);
        const ProcessResult result = RunTestFile(sourceDirectory + "/examples/" + name + ".csv");
        EXPECT_EQ(result.exitCode, 0) << result.err;
        const std::string expected =
            sourceDirectory + "/tests/Tools/Vemo/VemoClient/DynamicTest/Expected/" + name + "/";
        for (const std::string file : {"result.csv", "result.xml"}) {
            SCOPED_TRACE(file);
            EXPECT_EQ(bench.Read(file), TextMode(TestSupport::ReadBytes(expected + file)));
        }
    }
}

TEST_F(ExampleRunTest, SweepFillsEveryRow) {
    const std::string path = sourceDirectory + "/examples/sweep.csv";
    EXPECT_EQ(RunTestFile(path).exitCode, 0);
    const std::string csv = WithoutCarriageReturns(bench.Read("result.csv"));
    const std::string test = TestSupport::ReadBytes(path);
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), std::count(test.begin(), test.end(), '\n'));
    // Every line drives a chain, so that no row lacks both powers.
    EXPECT_THAT(csv, testing::Not(testing::HasSubstr(",NA,NA")));
}

TEST_F(ExampleRunTest, ThousandsOfLinesRunToTheEndWithAllSocketsOpen) {
    // Each line makes two exchanges, and no socket is closed before the client ends.
    std::string test = "Band,Chains,Bandwidth,Channel\n";
    std::string expected = "Band,Chains,Bandwidth,Channel,Chain-A Power, Chain B Power\n";
    for (int line = 0; line < LONG_RUN_LINES; ++line) {
        test += "5,A,20,36\n";
        expected += "5,A,20,36,17.86,NA\n";
    }
    bench.Write("long.csv", test);
    const ProcessResult result = RunTestFile("long.csv");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(bench.Read("result.csv"), TextMode(expected));
    RecordProperty("milliseconds_a_line", std::to_string(result.seconds * 1000 / LONG_RUN_LINES));
    std::cout << "milliseconds a line: " << result.seconds * 1000 / LONG_RUN_LINES << std::endl;
}

} // namespace
} // namespace EndToEnd
