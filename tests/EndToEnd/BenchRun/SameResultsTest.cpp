#include "tests/EndToEnd/BenchRun/OddTestFiles.h"
#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

#include <filesystem>

// A supervised run writes what the client alone writes, wherever the file is cut into segments.

namespace EndToEnd {
namespace {

struct Case {
    std::string file;
    int segment;

    friend void PrintTo(const Case& test, std::ostream* stream) {
        *stream << test.file << " in segments of " << test.segment;
    }
};

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const auto& [name, content] : OddTestFiles()) {
        for (const int segment : {1, 2, 3, 500}) {
            // A start costs wine a hundred times what it costs Linux.
            const bool isSlow = name == "Sweep" && std::string(TextMode("\n")) != "\n";
            if (!isSlow || segment == 500)
                cases.push_back({name, segment});
        }
    }
    return cases;
}

class SameResultsTest : public testing::TestWithParam<Case> {};

TEST_P(SameResultsTest, AsTheClientAlone) {
    const PowerTests tests;
    tests.Write("test.csv", OddTestFiles().at(GetParam().file));
    const Results alone = tests.RunAlone("test.csv");
    const Simulator daemon;
    const ProcessResult result = tests.Supervise(tests.NewRun(
        daemon, "test.csv", "run", {"--segment", std::to_string(GetParam().segment), "--force"}));
    // 1 where a line was not measured.
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    EXPECT_THAT(result.out, testing::StartsWith("The run is complete: "));
    const Results supervised = tests.ResultsIn("run");
    EXPECT_EQ(supervised.csv, alone.csv);
    EXPECT_EQ(supervised.xml, alone.xml);
    EXPECT_EQ(tests.Read("run/test-file.csv"), tests.Read("test.csv"));
    EXPECT_FALSE(std::filesystem::exists(tests.Path("run/client")));
}

INSTANTIATE_TEST_SUITE_P(, SameResultsTest, testing::ValuesIn(Cases()), [](const auto& test) {
    return test.param.file + std::to_string(test.param.segment);
});

} // namespace
} // namespace EndToEnd
