#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Client/Program/EntryPoint.h"
#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/EndToEnd/Support/TaskList.h"

#include <gmock/gmock.h>

namespace EndToEnd {
namespace {

using SarvexTool::usageText;
using testing::HasSubstr;

/// A bench whose client may start the daemon beside it.
class LocalDaemonTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PrepareTaskList(bench))
            GTEST_SKIP() << "another vemo runs on this machine and would be taken for ours";
        bench.SetPort(UnusedPort());
    }

    void TearDown() override {
        if (daemonMayRun)
            EndDaemon(bench, "vemo");
    }

    Bench bench;
    bool daemonMayRun = false;
};

TEST_F(LocalDaemonTest, MissingDaemonIsStartedAndAnswersTheCommand) {
    bench.AddProgram("vemo", "vemo");
    daemonMayRun = true;
    const ProcessResult first = bench.RunClient({"-open_local_daemon", "-wifi-get-mac-type"});
    EXPECT_EQ(first.exitCode, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr("Mac Type: "));
    EXPECT_GE(first.seconds, 2.0);

    ShowInTaskList(bench, "vemo");
    const ProcessResult second = bench.RunClient({"-open_local_daemon", "-wifi-get-mac-type"});
    EXPECT_EQ(second.exitCode, 0) << second.err;
    EXPECT_LT(second.seconds, 2.0);
}

TEST_F(LocalDaemonTest, UsageIsBeforeWhatTheStartedDaemonPrints) {
    bench.AddProgram("vemo", "vemo");
    daemonMayRun = true;
    const ProcessResult result = bench.RunClient({"-help", "-open_local_daemon"});
    EXPECT_THAT(result.out, testing::StartsWith(TextMode(usageText)));
    EXPECT_GT(result.out.size(), TextMode(usageText).size());
}

TEST_F(LocalDaemonTest, DaemonThatCannotBeStartedEndsWith258AfterThePause) {
    const ProcessResult result = bench.RunClient({"-x", "-open_local_daemon"});
    EXPECT_EQ(result.exitCode, OSAL::ToExitStatus(258));
    // Both systems number a missing file 2.
    EXPECT_EQ(result.err,
              TextMode("Error occurred: Can't start SarvexTool daemon. Error code: 2\n"));
    EXPECT_EQ(result.out, "");
    EXPECT_GE(result.seconds, 2.0);
}

} // namespace
} // namespace EndToEnd
