#include "Tools/SarvexTool/Bench/Output/MergeSummary.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

std::string Printed(const MergeSummary& summary) {
    std::ostringstream stream;
    PrintSummary(stream, summary);
    return stream.str();
}

TEST(MergeSummaryTest, TellsWhatEachBenchHasMeasured) {
    MergeSummary summary;
    summary.chunksTotal = summary.chunksDone = 3;
    summary.linesTotal = summary.linesDone = 1000;
    summary.benches = {{"bench-1", 2, 700, 725.4}, {"b\x1B", 1, 300, 3601}};
    summary.measurements = summary.measured = 1500;
    summary.directory = "all";
    EXPECT_EQ(Printed(summary), "Merged all 1000 lines; complete: all 3 chunks.\n"
                                "Bench    chunks  lines     time\n"
                                "bench-1       2    700    12:05\n"
                                "b\\x1B         1    300  1:00:01\n"
                                "1500 measurements: 1500 measured, 0 not.\n"
                                "The results are in\n"
                                "  all\n");
}

TEST(MergeSummaryTest, TellsWhatIsNotThere) {
    MergeSummary summary;
    summary.chunksTotal = 2;
    summary.linesTotal = 10;
    summary.linesDone = 1;
    summary.benches = {{std::nullopt, 1, 1, 0}};
    summary.otherAttempts = 1;
    summary.measurements = 20;
    summary.measured = 2;
    summary.notes = {"One."};
    summary.directory = "all";
    EXPECT_EQ(Printed(summary), "Merged 1 of 10 lines; complete: 0 of 2 chunks.\n"
                                "Bench    chunks  lines  time\n"
                                "unknown       1      1  0:00\n"
                                "Not used: 1 other attempt.\n"
                                "20 measurements: 2 measured, 18 not.\n"
                                "Note: One.\n"
                                "The results are in\n"
                                "  all\n");
}

} // namespace
} // namespace Bench
