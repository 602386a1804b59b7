#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Posix/ProcessUse.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

// A supervised run of many lines on a system that allows few open files.

namespace Bench {
namespace {

constexpr std::size_t lines = 3'000;

/// The folder of the programs, and the daemon, which may open as many files as the system allows.
class LongRunTest : public testing::Test {
protected:
    LongRunTest() {
        bench.AddProgram("SarvexToolBench", "SarvexToolBench");
        bench.AddProgram("SarvexToolClientWithoutPauses", "client");
    }

    std::vector<std::string> NewRun() const {
        return {"run",      "test.csv", "--daemon", "127.0.0.1:" + daemon.Port(),
                "--client", "client",   "--out",    "run"};
    }

    /// Starts SarvexToolBench where few files can be open at a time. The hard limit is set too,
    /// because programs raise the other one to it.
    std::unique_ptr<EndToEnd::Process>
    StartWithFewFiles(const std::vector<std::string>& arguments) const {
        std::vector<std::string> all{"-c", "ulimit -n 256 && exec \"$0\" \"$@\"",
                                     bench.Path("SarvexToolBench")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return std::make_unique<EndToEnd::Process>("/bin/sh", all, bench.Directory());
    }

    const EndToEnd::Bench bench;
    EndToEnd::Simulator daemon;
};

std::string TestFile(std::size_t count) {
    std::string text = "Band,Chains,Bandwidth,Channel,Rate\n";
    for (std::size_t line = 0; line < count; ++line)
        text += "5,AB,20,36,MCS" + std::to_string(line % 12) + "\n";
    return text;
}

/// What the program uses while it has a client, from the start to the end of the lines.
std::vector<EndToEnd::ProcessUse> UsesWhileMeasuring(EndToEnd::Process& program,
                                                     EndToEnd::ProcessResult& result) {
    std::vector<EndToEnd::ProcessUse> uses;
    auto end = std::async(std::launch::async, [&program] { return program.Wait(); });
    while (end.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout) {
        const auto use = EndToEnd::UseOf(program.Id());
        if (use && use->hasChildren)
            uses.push_back(*use);
    }
    result = end.get();
    return uses;
}

using Uses = std::vector<EndToEnd::ProcessUse>;

template <typename Number>
Number Most(Number EndToEnd::ProcessUse::*figure, Uses::const_iterator first,
            Uses::const_iterator last) {
    Number most = 0;
    for (; first != last; ++first)
        most = std::max(most, (*first).*figure);
    return most;
}

TEST_F(LongRunTest, RunOfManyLinesNeedsNoMoreSocketsAndMemoryThanAShortOne) {
    constexpr std::size_t mostSockets = 6;
    constexpr std::size_t mostDescriptors = 24;
    constexpr std::uint64_t someMemory = 512 * 1024;
    bench.Write("test.csv", TestFile(lines));
    const auto program = StartWithFewFiles(NewRun());
    EndToEnd::ProcessResult result;
    const auto uses = UsesWhileMeasuring(*program, result);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string rows = bench.Read("run/result.csv");
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), lines + 1);
    EXPECT_NE(bench.Read("run/run.json").find("\"segment\": 112,"), std::string::npos);
    ASSERT_GT(uses.size(), 20U);
    using EndToEnd::ProcessUse;
    EXPECT_LE(Most(&ProcessUse::sockets, uses.begin(), uses.end()), mostSockets);
    EXPECT_LE(Most(&ProcessUse::descriptors, uses.begin(), uses.end()), mostDescriptors);
    const auto quarter = uses.begin() + static_cast<std::ptrdiff_t>(uses.size() / 4);
    EXPECT_LE(Most(&ProcessUse::residentBytes, quarter, uses.end()),
              Most(&ProcessUse::residentBytes, uses.begin(), quarter) + someMemory);
}

TEST_F(LongRunTest, ResumedRunNeedsNoMoreOpenFilesThanThereAreNow) {
    bench.Write("test.csv", TestFile(200));
    daemon.Kill();
    std::vector<std::string> arguments = NewRun();
    arguments.insert(arguments.end(), {"--segment", "200", "--wait", "0.1"});
    EndToEnd::Process run(bench.Path("SarvexToolBench"), arguments, bench.Directory());
    ASSERT_EQ(run.Wait().exitCode, 3);
    daemon.StartAgain();
    const auto resumed = StartWithFewFiles({"run", "--resume", "run"})->Wait();
    EXPECT_EQ(resumed.exitCode, 0) << resumed.out << resumed.err;
}

} // namespace
} // namespace Bench
