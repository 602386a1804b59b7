#include "Modules/xFramework/OSAL/Process.h"

#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Modules/xFramework/OSAL/LoopbackPeer.h"
#include "tests/Support/Files.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace OSAL {
namespace {

std::string ReadOutput(const std::string& command) {
    std::array<char, 1024> buffer{};
    Pipe* const pipe = OpenPipe(command);
    const std::size_t count = ReadPipe(pipe, buffer.data(), buffer.size());
    ClosePipe(pipe);
    return std::string(buffer.data(), count);
}

TEST(ProcessTest, SeparatesPathsBySlashesAndNamesExecutablesPlainly) {
    EXPECT_EQ(PathSeparator, '/');
    EXPECT_STREQ(ExecutableSuffix, "");
}

TEST(ProcessTest, SleepsOnWhenASignalArrives) {
    const auto previous = ::signal(SIGALRM, [](int) {});
    itimerval every10Milliseconds{{0, 10'000}, {0, 10'000}};
    itimerval never{};
    const auto start = std::chrono::steady_clock::now();
    ::setitimer(ITIMER_REAL, &every10Milliseconds, nullptr);
    EXPECT_EQ(Sleep(100), 0);
    ::setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    ::signal(SIGALRM, previous);
}

struct StatusCase {
    int returnCode;
    int status;
};

TEST(ProcessTest, EndsWith255ForACodeThatEightBitsCannotHold) {
    for (const StatusCase& each : std::vector<StatusCase>{{0, 0},
                                                          {1, 1},
                                                          {10, 10},
                                                          {255, 255},
                                                          {256, 255},
                                                          {258, 255},
                                                          {512, 255},
                                                          {-1, 255},
                                                          {-2147483647 - 1, 255},
                                                          {2147483647, 255}}) {
        SCOPED_TRACE(each.returnCode);
        EXPECT_EQ(ToExitStatus(each.returnCode), each.status);
        const std::string child = Utilities::PathBesideProgram("OSALTestsChild");
        EXPECT_EQ(ReadOutput(child + " exit " + std::to_string(each.returnCode) + "; printf $?"),
                  std::to_string(each.status));
    }
}

/// A pipe whose reader has gone, and the way that this process treats the signal of a write to it.
class ProcessBrokenPipeTest : public testing::Test {
protected:
    ProcessBrokenPipeTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        ::close(ends[0]);
        m_writeEnd = ends[1];
    }
    ~ProcessBrokenPipeTest() override {
        ::close(m_writeEnd);
        ::signal(SIGPIPE, m_previous);
    }

    int WriteToIt() const {
        const ssize_t count = ::write(m_writeEnd, "x", 1);
        return count < 0 ? errno : 0;
    }

    /// The signals that a program ignores which is started now, as the system shows them.
    static std::string IgnoredByChildren() { return ReadOutput("grep SigIgn /proc/self/status"); }

    static void Start(void (*handler)(int)) {
        ::signal(SIGPIPE, handler);
        PrepareStandardStreams();
    }

private:
    void (*m_previous)(int) = ::signal(SIGPIPE, SIG_DFL);
    int m_writeEnd = -1;
};

TEST_F(ProcessBrokenPipeTest, FailsToBeWrittenAndChildrenDoNotKnow) {
    const std::string ignoredBefore = IgnoredByChildren();
    Start(SIG_DFL);
    EXPECT_EQ(WriteToIt(), EPIPE);
    EXPECT_EQ(IgnoredByChildren(), ignoredBefore);
}

TEST_F(ProcessBrokenPipeTest, StaysIgnoredWhereItWas) {
    ::signal(SIGPIPE, SIG_IGN);
    const std::string ignoredBefore = IgnoredByChildren();
    Start(SIG_IGN);
    EXPECT_EQ(WriteToIt(), EPIPE);
    EXPECT_EQ(IgnoredByChildren(), ignoredBefore);
}

TEST(ProcessTaskListTest, AsksTheProcessListForTheName) {
    EXPECT_EQ(TaskListCommand("vemo"),
              "cat /proc/[0-9]*/stat 2>/dev/null | sed -n 's/^[0-9]* (\\(vemo\\)) [^Z].*/\\1/p'");
}

TEST(ProcessTaskListTest, ShowsThisProcessByItsWholeName) {
    EXPECT_EQ(ReadOutput(TaskListCommand("OSALTests")).substr(0, 10), "OSALTests\n");
    EXPECT_EQ(ReadOutput(TaskListCommand("OSALTest")), "");
    EXPECT_EQ(ReadOutput(TaskListCommand("osaltests")), "");
}

/// Waits for all children of the tests before; each ends by itself.
void CollectChildren() {
    while (::wait(nullptr) > 0) {
    }
}

TEST(ProcessTaskListTest, LeavesOutAProcessThatHasEnded) {
    CollectChildren();
    const TestSupport::TemporaryDirectory directory;
    LoopbackPeer peer;
    directory.Create("port.txt", peer.Port());
    // A name that no other process has, within the 15 characters that the list shows.
    const std::string name = "c" + std::to_string(1'000'000'000 + std::random_device()() % 1000000);
    std::filesystem::copy_file(Utilities::PathBesideProgram("OSALTestsChild"),
                               directory.Path(name));
    ProcessInformation information;
    ASSERT_TRUE(CreateChildProcess(directory.Path(name), "", directory.Path(), false, information));
    peer.Accept();
    peer.ReceiveAll();
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(ReadOutput(TaskListCommand(name)), "");
    CollectChildren();
}

TEST(ProcessChildTest, HasNoHandlesToClose) {
    ProcessInformation information;
    CreateChildProcess("/no/such/program", "", "", false, information);
    EXPECT_FALSE(information.process.IsOpen());
    EXPECT_FALSE(information.thread.IsOpen());
}

} // namespace
} // namespace OSAL
