#pragma once

#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

/// Runs whose standard output is a pipe that is full after some lines, because its reader does not
/// read.
class LateReader : public testing::Test {
protected:
    /// Many more lines than the pipe takes.
    static constexpr int lines = 40;
    /// The place of the last line's start among the exchanges.
    static constexpr int lastStart = 3 + 2 * lines - 1;

    LateReader() {
        std::string file = "Band,Chains,Bandwidth,Channel\n5,AB,20,36\n";
        for (int line = 1; line < lines; ++line)
            file += "-,-,-,40\n";
        probe.Write("test.csv", file);
    }

    static std::string AtLastStart(const std::string& fault) {
        return std::to_string(lastStart) + ":" + fault;
    }
    static std::string AtLastStop(const std::string& fault) {
        return std::to_string(lastStart + 1) + ":" + fault;
    }

    std::unique_ptr<EndToEnd::Process> Start(std::vector<std::string> options = {}) const {
        options.insert(options.end(), {"--progress", "json"});
        return std::make_unique<EndToEnd::Process>(
            BenchPath(), probe.Arguments(daemon.Address(), options), probe.Path(""),
            EndToEnd::Process::Start{.output = EndToEnd::Process::Output::Pipe,
                                     .inputFile = "",
                                     .areArgumentsUtf8 = false});
    }

    /// Waits until the daemon has got the last line's start, or also its stop.
    void WaitForLastStart() const { WaitForExchanges(lastStart); }
    void WaitForLastStop() const { WaitForExchanges(lastStart + 1); }

    /// Waits until the run is over, but for what it has printed.
    void WaitForOutcome() const {
        WaitUntil("the run has its outcome", [&] {
            return std::filesystem::exists(probe.Path("run/run.json")) &&
                   probe.Facts().Has("exitCode");
        });
    }

    /// Expects each line once and in order, and the end.
    static void ExpectAll(const std::string& out, int linesDone) {
        std::string expected = "begin ";
        for (int line = 0; line < linesDone; ++line)
            expected += std::to_string(line + 2) + " ";
        std::string events;
        for (const JsonFields& event : JsonLines(out)) {
            const std::string name = event.Text("event");
            if (name != "state")
                events += name == "line" ? std::to_string(event.Line("line")) + " " : name + " ";
        }
        EXPECT_EQ(events, expected + "end ");
    }

    RunProbe probe;
    RestartableDaemon daemon;

private:
    void WaitForExchanges(std::size_t count) const {
        WaitUntil("the daemon has got " + std::to_string(count) + " commands",
                  [&] { return daemon.Exchanges().size() >= count; });
    }
};

} // namespace Bench
