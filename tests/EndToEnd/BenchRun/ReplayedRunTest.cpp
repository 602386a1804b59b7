#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

// A daemon that answers from the exchanges of a run gives its results again.

namespace EndToEnd {
namespace {

class ReplayedRunTest : public testing::TestWithParam<const char*> {};

TEST_P(ReplayedRunTest, HasTheSameResultsInOtherSegments) {
    const PowerTests tests;
    const std::string example = std::string(SARVEX_SOURCE_DIR) + "/examples/" + GetParam();
    tests.Write("test.csv", *GetParam() != '\0' ? TestSupport::ReadBytes(example)
                                                : DependentLines(50) + "\xFF,A,20,1,-,-\n");
    {
        const Simulator daemon({"--seed", "77", "--mcc", "DE"});
        const ProcessResult result =
            tests.Supervise(tests.NewRun(daemon, "test.csv", "recorded", {"--force"}));
        ASSERT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    }
    const Results recorded = tests.ResultsIn("recorded");
    ASSERT_NE(recorded, tests.RunAlone("test.csv")) << "the daemon's own answers are the same";
    const Simulator replay({"--replay", tests.Path("recorded/exchanges.jsonl")});
    const ProcessResult result =
        tests.Supervise(tests.NewRun(replay, "test.csv", "again", {"--force", "--segment", "4"}));
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    const Results again = tests.ResultsIn("again");
    EXPECT_EQ(again.csv, recorded.csv);
    EXPECT_EQ(again.xml, recorded.xml);
}

INSTANTIATE_TEST_SUITE_P(, ReplayedRunTest, testing::Values("", "short.csv", "oddities.csv"));

} // namespace
} // namespace EndToEnd
