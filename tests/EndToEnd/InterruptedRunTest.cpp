#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/RandomMoments.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>

// Ends the client with its pauses taken out at any moment of a run against the simulated daemon.

namespace EndToEnd {
namespace {

/// A line of the test file, and its row as the simulator's power model has it without noise.
struct Line {
    const char* cells;
    const char* row;
};

constexpr std::array<Line, 8> lines{{{"5,A,20,36", "5,A,20,36,17.86,NA"},
                                     {"5,A,20,40", "5,A,20,40,17.9,NA"},
                                     {"5,A,20,44", "5,A,20,44,17.94,NA"},
                                     {"5,A,20,48", "5,A,20,48,17.98,NA"},
                                     {"5,A,20,52", "5,A,20,52,18.02,NA"},
                                     {"5,A,20,56", "5,A,20,56,18.06,NA"},
                                     {"5,A,20,60", "5,A,20,60,18.1,NA"},
                                     {"5,A,20,64", "5,A,20,64,18.14,NA"}}};
constexpr std::size_t lineCount = 64;

/// What result.csv holds after so many rows.
std::string ResultOf(std::size_t rows) {
    std::string result = "Band,Chains,Bandwidth,Channel,Chain-A Power, Chain B Power\n";
    for (std::size_t row = 0; row < rows; ++row)
        result += std::string(lines[row % lines.size()].row) + "\n";
    return TextMode(result);
}

std::string TestFile() {
    std::string file = "Band,Chains,Bandwidth,Channel\n";
    for (std::size_t line = 0; line < lineCount; ++line)
        file += std::string(lines[line % lines.size()].cells) + "\n";
    return file;
}

std::size_t CountHits(const std::string& text, const std::string& word) {
    std::size_t count = 0;
    for (std::size_t hit = text.find(word); hit != std::string::npos;
         hit = text.find(word, hit + 1))
        ++count;
    return count;
}

/// What is left of a run that was interrupted, or that ended before it could be.
struct Remains {
    bool wasInterrupted = false;
    double seconds = 0;
    std::string result;
    /// The commands that the daemon had noted at the end.
    std::size_t starts = 0;
    std::size_t stops = 0;
};

class InterruptedRunTest : public testing::Test {
protected:
    InterruptedRunTest() {
        bench.AddProgram("SarvexToolClientWithoutPauses", "SarvexToolClientWithoutPauses");
        bench.Write("test.csv", TestFile());
    }

    /// Without an interruption, the run goes on to its end.
    Remains Run(const Interruption* interruption, RandomMoments& moments) const {
        for (const char* name : {"result.csv", "requests.log"})
            std::filesystem::remove(bench.Path(name));
        Remains remains;
        {
            const Simulator simulator(
                {"--noise", "0", "--request-log", bench.Path("requests.log")});
            bench.SetPort(simulator.Port());
            Process client(bench.Path(ExecutableName("SarvexToolClientWithoutPauses")),
                           {"-wifi-test-by-file", "test.csv"}, bench.Directory());
            if (interruption != nullptr && moments.WaitIn(client))
                client.Interrupt(*interruption);
            const ProcessResult result = client.Wait();
            EXPECT_FALSE(result.timedOut);
            remains.wasInterrupted = result.exitCode != 0;
            remains.seconds = result.seconds;
        }
        remains.result = bench.Read("result.csv");
        const std::string requests = bench.Read("requests.log");
        remains.starts = CountHits(requests, "-wifi-start");
        remains.stops = CountHits(requests, "-wifi-stop");
        return remains;
    }

    /// How many rows there are, all of them whole; nothing when they are not.
    static std::optional<std::size_t> CountRows(const std::string& result) {
        if (result.empty())
            return 0;
        for (std::size_t rows = 0; rows <= lineCount; ++rows) {
            if (result == ResultOf(rows))
                return rows;
        }
        return std::nullopt;
    }

    Bench bench;
};

TEST_F(InterruptedRunTest, EveryMeasurementThatWasCompleteHasItsWholeRow) {
    const std::vector<Interruption> interruptions = Interruptions();
    RandomMoments moments(GTEST_FLAG_GET(random_seed));
    const Remains whole = Run(nullptr, moments);
    ASSERT_FALSE(whole.wasInterrupted);
    ASSERT_EQ(whole.result, ResultOf(lineCount));
    moments.SetLongestWait(whole.seconds);

    std::size_t rowsInAll = 0;
    std::size_t runsWithRows = 0;
    int interrupted = 0;
    for (int run = 0; interrupted < INTERRUPTED_RUNS; ++run) {
        ASSERT_LT(run, 20 * INTERRUPTED_RUNS) << "hardly a run lasts until it is interrupted";
        const Interruption& interruption =
            interruptions[static_cast<std::size_t>(run) % interruptions.size()];
        SCOPED_TRACE("run " + std::to_string(run) + ", " + interruption.name);
        const Remains remains = Run(&interruption, moments);
        const std::optional<std::size_t> rows = CountRows(remains.result);
        ASSERT_TRUE(rows) << testing::PrintToString(remains.result);
        // The next line is begun when the row is written, and the row when the line is stopped.
        EXPECT_GE(*rows + 1, remains.starts);
        EXPECT_LE(*rows, remains.stops);
        if (!remains.wasInterrupted)
            continue;
        ++interrupted;
        rowsInAll += *rows;
        runsWithRows += *rows > 0;
    }
    std::cout << "interrupted: " << interrupted << ", with rows: " << runsWithRows
              << ", rows: " << rowsInAll << std::endl;
    EXPECT_GE(runsWithRows, 1u);
}

} // namespace
} // namespace EndToEnd
