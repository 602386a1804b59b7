#pragma once

#include "Tools/SarvexTool/Bench/CommandLine.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace Bench {

/// Runs the program in the test's own process, with a directory for its files.
class CommandFixture : public testing::Test {
protected:
    /// The exit code.
    int Run(const std::vector<std::string>& arguments, const std::string& input = "") {
        std::istringstream in(input);
        out.str("");
        err.str("");
        Surroundings surroundings{in, {out}, {err}};
        return RunProgram(arguments, surroundings);
    }

    /// A result of one line on chain A, in band 5, and its name.
    std::string ResultOf(const std::string& name, const std::string& power) const {
        return directory.Create(name, Header() + "5,A," + power + ",NA\n");
    }

    static std::string Header() { return "Band,Chains,Chain-A Power, Chain B Power\n"; }

    /// Makes the directory that of a supervised run that ended after one of two lines. The daemon
    /// has refused that line.
    /// A run directory with one of two lines; power is chain A's, and a what the journal says of
    /// it.
    void CreateEarlyRun(const std::string& power = "NA",
                        const std::string& a = R"({"outcome":"refused","text":"<No>"})") const {
        const bool isAccepted = power != "NA";
        const std::string result = ResultOf("result.csv", power);
        directory.Create("journal.jsonl",
                         R"({"line":2,"accepted":)" + std::string(isAccepted ? "true" : "false") +
                             R"(,"a":)" + a + R"(,"b":{"outcome":"refused"},"csvEnd":)" +
                             std::to_string(ReadBytes("result.csv").size()) +
                             R"(,"started":"2026-11-22T07:30:00Z","seconds":1.25})"
                             "\n");
        directory.Create("run.json", R"({"linesTotal":2,"linesDone":1,"outcome":"interrupted"})");
    }

    /// The same, with where it was measured.
    void CreatePlacedRun(const std::string& bench, const std::string& power) const {
        CreateEarlyRun(power, R"({"outcome":"measured"})");
        directory.Create("run.json", R"({"linesTotal":1,"bench":")" + bench + "\"}");
    }

    std::string ReadBytes(const std::string& name) const {
        return TestSupport::ReadBytes(directory.Path(name));
    }

    std::ostringstream out;
    std::ostringstream err;
    TestSupport::TemporaryDirectory directory;
};

} // namespace Bench
