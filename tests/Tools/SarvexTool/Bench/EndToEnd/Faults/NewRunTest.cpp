#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <unistd.h>
#endif

#include <array>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

// What a new run gets that nobody has named.

namespace Bench {
namespace {

using EndToEnd::Process;
using EndToEnd::ProcessResult;

TEST(NewRunTest, RunsThatBeginAtOnceHaveAFolderEach) {
    const RunProbe probe;
    std::array<RestartableDaemon, 6> daemons;
    for (RestartableDaemon& daemon : daemons)
        daemon.Start();
    std::vector<std::unique_ptr<Process>> runs;
    for (const RestartableDaemon& daemon : daemons)
        runs.push_back(std::make_unique<Process>(
            BenchPath(),
            std::vector<std::string>{"run", "test.csv", "--daemon", daemon.Address(), "--client",
                                     ProgramPath("SarvexToolClientWithoutPauses")},
            probe.Path("")));
    for (const auto& run : runs) {
        const ProcessResult result = run->Wait();
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }
    const std::filesystem::directory_iterator folders(probe.Path("runs"));
    EXPECT_EQ(static_cast<std::size_t>(std::distance(begin(folders), end(folders))),
              daemons.size());
}

#ifndef _WIN32
TEST(NewRunTest, UserWithoutANameIsTheSystemsNumberOfHim) {
    const RunProbe probe;
    RestartableDaemon daemon;
    daemon.Start();
    std::vector<std::string> arguments = probe.Arguments(daemon.Address(), {});
    arguments.insert(arguments.begin(),
                     {"-u", "USER", "-u", "LOGNAME", "-u", "USERNAME", BenchPath()});
    const ProcessResult result = EndToEnd::Run("/usr/bin/env", arguments, probe.Path(""));
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(probe.Facts().Text("user"), std::to_string(::geteuid()));
}
#endif

} // namespace
} // namespace Bench
