#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <sys/stat.h>

#include <gmock/gmock.h>

// What a shell and a file system of this platform can put in the client's way at its start.

namespace EndToEnd {
namespace {

TEST(StartTest, ClosedStandardStreamsAreNotTakenForTheConnection) {
    for (const std::string closing :
         {"<&- >&- 2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&-", ">&-", "2>&-"}) {
        SCOPED_TRACE(closing);
        std::string afterTheAnswer;
        {
            ScriptedPeer peer([&](Connection& connection, int) {
                connection.ReadRequest();
                connection.Send("hello\nSarvex tool ERROR\nproblem\nDone");
                afterTheAnswer = connection.Read(1);
            });
            const Bench bench;
            bench.SetPort(peer.Port());
            const ProcessResult result =
                EndToEnd::Run("/bin/sh", {"-c", "exec \"$0\" -x " + closing, bench.ClientPath()},
                              bench.Directory());
            EXPECT_EQ(result.exitCode, 0);
        }
        EXPECT_EQ(afterTheAnswer, "");
    }
}

TEST(StartTest, FindsThePortBesideTheProgramHoweverItIsStarted) {
    ScriptedPeer peer([](Connection& connection, int) {
        connection.ReadRequest();
        connection.Send("hello\nDone");
    });
    const Bench bench;
    bench.SetPort(peer.Port());
    const Bench elsewhere;
    const std::string program = std::filesystem::path(bench.ClientPath()).filename().string();
    std::filesystem::create_symlink(bench.ClientPath(), elsewhere.Path("link"));
    std::filesystem::create_directory_symlink(bench.Directory(), elsewhere.Path("links"));
    elsewhere.Write("script", "#!" + bench.ClientPath() + "\n");
    std::filesystem::permissions(elsewhere.Path("script"), std::filesystem::perms::owner_all);
    for (const std::string& start : std::vector<std::string>{
             "exec \"$0\"",
             "cd \"${0%/*}\" && exec ./" + program,
             "PATH=\"${0%/*}\" && exec " + program,
             "exec ./link",
             "exec \"$PWD/link\"",
             "exec links/" + program,
             "exec \"$PWD/./links//" + program + "\"",
             "exec 9<\"$0\" && exec /dev/fd/9",
             "exec \"$PWD/script\"",
         }) {
        SCOPED_TRACE(start);
        const ProcessResult result = EndToEnd::Run(
            "/bin/sh", {"-c", start + " -x", bench.ClientPath()}, elsewhere.Directory());
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
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

TEST(StartTest, CommandTableWhoseReadsFailIsEmpty) {
    const Bench bench;
    bench.Write("SarvexToolCmds.txt", "");
    // The memory of a process is a regular file whose first bytes cannot be read. A mount of one's
    // own is allowed to root, or to a user in a name space of its own.
    const std::string script =
        "for way in --mount '--mount --map-root-user'; do "
        "unshare $way true 2>/dev/null && exec unshare $way /bin/sh -c '"
        "mount --bind /proc/$$/mem SarvexToolCmds.txt && exec \"$0\" -x' \"$0\"; "
        "done; echo cannot mount >&2; exit 99";
    const ProcessResult result =
        EndToEnd::Run("/bin/sh", {"-c", script, bench.ClientPath()}, bench.Directory());
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
