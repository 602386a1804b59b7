#include "Tools/SarvexTool/Client/Launcher.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;

class LauncherTest : public testing::Test {
protected:
    LauncherTest() { OSAL::Fake::Reset(); }

    ConsoleCapture console;
};

TEST_F(LauncherTest, RunningDaemonIsNotStartedAgainAndCostsNoPause) {
    TheWorld().pipeOutput = "vemo.exe   4711 Console\r\n";
    EXPECT_TRUE(StartLocalDaemon("vemo"));
    EXPECT_THAT(TheWorld().calls, ElementsAre("OpenPipe list vemo", "ReadPipe 1024", "ClosePipe"));
    EXPECT_EQ(console.Err(), "");
}

TEST_F(LauncherTest, MissingDaemonIsStartedInTheSameConsoleFromTheProgramsDirectory) {
    TheWorld().pipeOutput = "INFO: No tasks are running\r\n";
    EXPECT_TRUE(StartLocalDaemon("vemo"));
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("OpenPipe list vemo", "ReadPipe 1024", "ClosePipe",
                            "CreateChildProcess [/bench//vemo.exe ] [\"/bench//vemo.exe \" ] "
                            "[/bench/] same console",
                            "Sleep 2000", "CloseHandle 12", "CloseHandle 11"));
    EXPECT_EQ(console.Err(), "");
}

TEST_F(LauncherTest, FailedStartCostsThePauseAndPrintsTheSystemsNumber) {
    TheWorld().childStarts = false;
    TheWorld().lastError = 193;
    TheWorld().onSleep = [this] {
        TheWorld().lastError = 0;
        EXPECT_EQ(console.Err(), "") << "the message comes after the pause";
    };
    EXPECT_FALSE(StartLocalDaemon("vemo"));
    // The handles are closed whether or not there are any.
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("OpenPipe list vemo", "ReadPipe 1024", "ClosePipe",
                            "CreateChildProcess [/bench//vemo.exe ] [\"/bench//vemo.exe \" ] "
                            "[/bench/] same console",
                            "Sleep 2000", "CloseHandle invalid", "CloseHandle invalid"));
    EXPECT_EQ(console.Err(), "Error occurred: Can't start SarvexTool daemon. Error code: 193\n");
    EXPECT_EQ(console.Out(), "");
}

TEST_F(LauncherTest, UnknownProgramDirectoryMakesThePathRelative) {
    TheWorld().modulePathReadable = false;
    EXPECT_TRUE(StartLocalDaemon("vemo"));
    EXPECT_EQ(CountCalls("CreateChildProcess [vemo.exe ] [\"vemo.exe \" ] [] same"), 1);
}

TEST_F(LauncherTest, ProcessRunsWhenTheListShowsItsName) {
    struct Case {
        std::string name;
        bool requireTwo;
        std::string list;
        bool running;
    };
    const std::string filler(1020, '.');
    const Case cases[] = {
        {"vemo", false, "vemo.exe", true},
        {"vemo", false, "", false},
        {"vemo", false, "VEMO.exe", false},
        {"vemo", false, "Vemo.exe", false},
        {"vemo", false, filler + "vemo", true},
        // Only the first 1024 bytes are looked at.
        {"vemo", false, filler + ".vemo", false},
        {"vemo", false, std::string("\0vemo", 5), false},
        {"vemo", true, "vemo.exe", false},
        {"vemo", true, "vemo.exe vemo.exe", true},
        {"VEMO", false, "VEMO.exe", false},
        {"VEMO", false, "VEMO.exe VEMO.exe", true},
        // The second hit is looked for after the first character of the first.
        {"abab", true, "ababab", true},
        {"abab", true, "abab", false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name + " in " + row.list);
        TheWorld().pipeOutput = row.list;
        EXPECT_EQ(IsProcessRunning(row.name, row.requireTwo), row.running);
    }
}

TEST_F(LauncherTest, ListThatCannotBeHadMeansNotRunning) {
    TheWorld().pipeOpens = false;
    EXPECT_FALSE(IsProcessRunning("vemo", false));
    EXPECT_EQ(CountCalls("ClosePipe"), 0);
}

TEST_F(LauncherTest, ExceptionWhileReadingTheListMeansNotRunning) {
    TheWorld().pipeOutput = "vemo";
    TheWorld().onReadPipe = [] { throw std::runtime_error("a value"); };
    EXPECT_FALSE(IsProcessRunning("vemo", false));
    TheWorld().onReadPipe = [] { throw new Utilities::Exception("a pointer"); };
    EXPECT_FALSE(IsProcessRunning("vemo", false));
    EXPECT_EQ(CountCalls("ClosePipe"), 2);
}

TEST_F(LauncherTest, ProcessIsStartedWithItsArgumentsAndInANewConsoleWhenAsked) {
    OSAL::ProcessInformation information;
    EXPECT_TRUE(StartProcess("/d/", "tool", "-a -b", true, information));
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("CreateChildProcess [/d//tool.exe ] [\"/d//tool.exe \" -a -b] [/d/] "
                            "new console"));
    EXPECT_EQ(information.process.Get(), 11u);
    EXPECT_EQ(information.thread.Get(), 12u);
}

} // namespace
