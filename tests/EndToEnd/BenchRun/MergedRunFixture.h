#pragma once

#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace EndToEnd {

/// Runs the chunks of a plan, and puts their runs together.
class MergedRunFixture : public testing::Test {
protected:
    void Split(const std::string& plan, int lines) const {
        tests.Write("plan.csv", plan);
        const ProcessResult result =
            tests.Supervise({"split", "plan.csv", "--lines", std::to_string(lines), "-o", "parts"});
        ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    }

    std::vector<std::string> Chunks() const {
        std::vector<std::string> names;
        for (const std::filesystem::directory_entry& entry :
             std::filesystem::directory_iterator(tests.Path("parts"))) {
            const std::string name = entry.path().stem().string();
            if (name.starts_with("chunk-"))
                names.push_back(name);
        }
        return names;
    }

    std::vector<std::string> RunOf(const Simulator& daemon, const std::string& chunk,
                                   const std::string& attempt,
                                   const std::string& bench = "bench-1") const {
        return tests.NewRun(daemon, "parts/" + chunk + ".csv",
                            "parts/runs/" + chunk + "/" + attempt,
                            {"--bench", bench, "--attempt", attempt});
    }

    /// Runs each chunk on a bench whose daemon has just been started.
    void RunAll() const {
        for (const std::string& chunk : Chunks()) {
            const Simulator daemon;
            const ProcessResult result = tests.Supervise(RunOf(daemon, chunk, "1"));
            ASSERT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
        }
    }

    ProcessResult Merge(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments{"merge", "parts", "-o", "all"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return tests.Supervise(arguments);
    }

    void ExpectSameAsAlone() const {
        const Results alone = tests.RunAlone("plan.csv");
        const Results merged = tests.ResultsIn("all");
        EXPECT_EQ(merged.csv, alone.csv);
        EXPECT_EQ(merged.xml, alone.xml);
        EXPECT_EQ(tests.Read("all/test-file.csv"), tests.Read("plan.csv"));
    }

    const PowerTests tests;
};

} // namespace EndToEnd
