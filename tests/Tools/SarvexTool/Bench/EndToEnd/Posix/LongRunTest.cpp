#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Posix/ProcessUse.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <vector>

// A supervised run of many lines on a system that allows few open files.

namespace Bench {
namespace {

constexpr std::size_t lines = 3'000;

/// For the programs that are started in its time.
class FewOpenFiles {
public:
    FewOpenFiles() {
        ::getrlimit(RLIMIT_NOFILE, &m_former);
        rlimit few = m_former;
        few.rlim_cur = 256;
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewOpenFiles() { ::setrlimit(RLIMIT_NOFILE, &m_former); }
    FewOpenFiles(const FewOpenFiles&) = delete;
    FewOpenFiles& operator=(const FewOpenFiles&) = delete;

private:
    rlimit m_former{};
};

std::string TestFile() {
    std::string text = "Band,Chains,Bandwidth,Channel,Rate\n";
    for (std::size_t line = 0; line < lines; ++line)
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

TEST(LongRunTest, RunOfManyLinesNeedsNoMoreSocketsAndMemoryThanAShortOne) {
    constexpr std::size_t mostSockets = 6;
    constexpr std::size_t mostDescriptors = 24;
    constexpr std::uint64_t someMemory = 512 * 1024;
    const EndToEnd::Bench bench;
    const EndToEnd::Simulator daemon;
    bench.AddProgram("SarvexToolBench", "SarvexToolBench");
    bench.AddProgram("SarvexToolClientWithoutPauses", "client");
    bench.Write("test.csv", TestFile());
    const FewOpenFiles few;
    EndToEnd::Process program(bench.Path("SarvexToolBench"),
                              {"run", "test.csv", "--daemon", "127.0.0.1:" + daemon.Port(),
                               "--client", "client", "--out", "run"},
                              bench.Directory());
    EndToEnd::ProcessResult result;
    const auto uses = UsesWhileMeasuring(program, result);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string rows = bench.Read("run/result.csv");
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), lines + 1);
    ASSERT_GT(uses.size(), 20U);
    using EndToEnd::ProcessUse;
    EXPECT_LE(Most(&ProcessUse::sockets, uses.begin(), uses.end()), mostSockets);
    EXPECT_LE(Most(&ProcessUse::descriptors, uses.begin(), uses.end()), mostDescriptors);
    const auto quarter = uses.begin() + static_cast<std::ptrdiff_t>(uses.size() / 4);
    EXPECT_LE(Most(&ProcessUse::residentBytes, quarter, uses.end()),
              Most(&ProcessUse::residentBytes, uses.begin(), quarter) + someMemory);
}

} // namespace
} // namespace Bench
