#include "tests/Modules/xFramework/OSAL/ChildProcessFixture.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace OSAL {
namespace {

class ChildProcessTest : public ChildProcessFixture {
protected:
    /// What a shell script prints as a child.
    std::string Print(const std::string& script) const {
        ChildStart start = Start({"-c", script});
        start.program = "/bin/sh";
        EXPECT_EQ(ChildProcess(start).Wait(), (ChildEnd{0, false}));
        return Output();
    }
};

TEST_F(ChildProcessTest, LeadsAGroupOfItsOwn) {
    EXPECT_EQ(Print("read id name state parent group rest </proc/$$/stat\n"
                    "test $id = $group && echo leads"),
              "leads\n");
}

TEST_F(ChildProcessTest, InheritsNoDescriptor) {
    const int inheritable = ::open("/dev/null", O_RDONLY);
    const int far = ::fcntl(inheritable, F_DUPFD, 200);
    EXPECT_EQ(Print("for fd in /proc/$$/fd/*; do test -e $fd && readlink $fd; done; :"),
              "/dev/null\n" + directory.Path("output") + "\n" + directory.Path("output") + "\n");
    ::close(inheritable);
    ::close(far);
}

TEST_F(ChildProcessTest, HasTheSignalsThatAProgramBeginsWith) {
    const auto before = ::signal(SIGHUP, SIG_IGN);
    sigset_t blocked;
    sigset_t maskBefore;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    EXPECT_EQ(Print("exec grep -E '^Sig(Blk|Ign)' /proc/self/status"),
              "SigBlk:\t0000000000000000\n"
              "SigIgn:\t0000000000000000\n");
    sigset_t maskAfter;
    ::pthread_sigmask(SIG_SETMASK, &maskBefore, &maskAfter);
    EXPECT_EQ(::sigismember(&maskAfter, SIGTERM), 1);
    EXPECT_EQ(::sigismember(&maskAfter, SIGINT), 0);
    ::signal(SIGHUP, before);
}

TEST_F(ChildProcessTest, EndsByASignal) {
    ChildStart start = Start({"-c", "kill -TERM $$"});
    start.program = "/bin/sh";
    EXPECT_EQ(ChildProcess(start).Wait(), (ChildEnd{SIGTERM, true}));
}

TEST_F(ChildProcessTest, IsWaitedForWhereEndsOfChildrenAreIgnored) {
    const auto before = ::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(ChildProcess(Start({"exit", "9"})).Wait(), (ChildEnd{9, false}));
    ::signal(SIGCHLD, before);
}

TEST_F(ChildProcessTest, GoesWithAParentThatIsKilled) {
    LoopbackPeer parentsPeer;
    ChildProcess parent(Start({"starter", peer.Port(), parentsPeer.Port()}));
    AwaitHolding();
    // The group of the parent alone.
    parent.Kill();
    EXPECT_EQ(parent.Wait(), (ChildEnd{SIGKILL, true}));
    EXPECT_EQ(peer.ReceiveAll(), "");
}

TEST_F(ChildProcessTest, KillEndsItsGroup) {
    ChildStart start = Start({"-c", "\"$0\" hold \"$1\" & wait", "", peer.Port()});
    start.arguments[2] = start.program;
    start.program = "/bin/sh";
    ChildProcess child(start);
    AwaitHolding();
    child.Kill();
    EXPECT_EQ(peer.ReceiveAll(), "");
}

} // namespace
} // namespace OSAL
