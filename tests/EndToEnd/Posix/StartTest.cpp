#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <sys/stat.h>

#include <gmock/gmock.h>

// What a shell and a file system of this platform can put in the client's way at its start.

namespace EndToEnd {
namespace {

TEST(StartTest, ClosedStandardStreamsAreNotTakenForTheConnection) {
    for (const std::string closing : {"<&- >&- 2>&-", ">&-", "2>&-"}) {
        SCOPED_TRACE(closing);
        std::string behindTheAnswer;
        {
            ScriptedPeer peer([&](Connection& connection, int) {
                connection.ReadRequest();
                connection.Send("hello\nSarvex tool ERROR\nproblem\nDone");
                behindTheAnswer = connection.Read(1);
            });
            const Bench bench;
            bench.SetPort(peer.Port());
            const ProcessResult result =
                EndToEnd::Run("/bin/sh", {"-c", "exec \"$0\" -x " + closing, bench.ClientPath()},
                              bench.Directory());
            EXPECT_EQ(result.exitCode, 0);
        }
        EXPECT_EQ(behindTheAnswer, "");
    }
}

TEST(StartTest, PipesInPlaceOfTheFilesDoNotHang) {
    const Bench bench;
    ASSERT_EQ(::mkfifo(bench.Path("SarvexToolCmds.txt").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(bench.Path("Socket.cfg").c_str(), 0600), 0);
    const ProcessResult result = bench.RunClient({"-x"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "Failed to connect to daemon. Please ensure that daemon was started.\n");
}

TEST(StartTest, SymbolicLinksBesideTheProgramAreRefused) {
    const Bench bench;
    bench.Write("elsewhere", "8738");
    std::filesystem::create_symlink("elsewhere", bench.Path("Socket.cfg"));
    EXPECT_EQ(bench.RunClient({"-x"}).exitCode, 1);
    std::filesystem::create_symlink("nowhere", bench.Path("SarvexToolCmds.txt"));
    const ProcessResult result = bench.RunClient({"-x"});
    EXPECT_EQ(result.exitCode, 255);
    EXPECT_EQ(result.err, "File " + bench.Path("SarvexToolCmds.txt") + " is a link\n");
}

} // namespace
} // namespace EndToEnd
