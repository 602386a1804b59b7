#include "Tools/SarvexTool/Client/Program/EntryPoint.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/FormatProviders.h"
#include "Tools/SarvexTool/Client/Request.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/SarvexTool/Client/ProgramDirectory.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <gmock/gmock.h>

#include <ios>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace SarvexTool {

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Copy(const std::vector<const char*>& arguments) {
    return CopyArguments(static_cast<int>(arguments.size()), arguments.data());
}

TEST(EntryPointCopiesTest, LastArgumentLosesOneWhiteSpaceCharacter) {
    EXPECT_THAT(Copy({"client", "-exit "}), ElementsAre("client", "-exit"));
    EXPECT_THAT(Copy({"client", "-exit  "}), ElementsAre("client", "-exit "));
    for (const std::string space : {" ", "\t", "\n", "\v", "\f", "\r"}) {
        SCOPED_TRACE(testing::PrintToString(space));
        EXPECT_THAT(Copy({"client", ("x" + space).c_str()}), ElementsAre("client", "x"));
    }
    EXPECT_THAT(Copy({"client", "x\r\n"}), ElementsAre("client", "x\r"));
    EXPECT_THAT(Copy({"client", " "}), ElementsAre("client", ""));
}

TEST(EntryPointCopiesTest, OtherArgumentsAndOtherCharactersStay) {
    EXPECT_THAT(Copy({"client ", "-exit ", "x"}), ElementsAre("client ", "-exit ", "x"));
    EXPECT_THAT(Copy({"client", " -exit"}), ElementsAre("client", " -exit"));
    // No-break space and next line in common code pages.
    EXPECT_THAT(Copy({"client", "x\xA0"}), ElementsAre("client", "x\xA0"));
    EXPECT_THAT(Copy({"client", "x\x85"}), ElementsAre("client", "x\x85"));
    EXPECT_THAT(Copy({"client", ""}), ElementsAre("client", ""));
}

TEST(EntryPointCopiesTest, NoArgumentsGiveNoCopies) {
    EXPECT_THAT(Copy({}), IsEmpty());
}

class EntryPointTest : public testing::Test {
protected:
    EntryPointTest() {
        ProgramDirectory::Reset();
        TheWorld().received = {"HTTP/1.1 200 OK\r\n\r\nanswer\nSarvex tool RETURN CODE\n3\nDone"};
    }

    /// Runs the client with these arguments after the program path.
    static int Run(const std::vector<std::string>& arguments) {
        std::vector<const char*> pointers{"C:\\bench\\SarvexToolClient.exe"};
        for (const std::string& argument : arguments)
            pointers.push_back(argument.c_str());
        return RunClient(static_cast<int>(pointers.size()), pointers.data());
    }

    /// The command line that reached the daemon.
    static std::string SentCommandLine() {
        const std::string& sent = TheWorld().sent;
        const std::size_t headEnd = sent.find("\r\n\r\n");
        return headEnd == std::string::npos ? "nothing was sent" : sent.substr(headEnd + 4);
    }

    ConsoleCapture console;
};

TEST_F(EntryPointTest, BareCallPrintsTheShortUsageAndTouchesNoNetwork) {
    EXPECT_EQ(Run({}), 0);
    EXPECT_EQ(console.Out(), "Usage: C:\\bench\\SarvexToolClient.exe [args]\n");
    EXPECT_EQ(console.Err(), "");
    EXPECT_TRUE(TheWorld().calls.empty());
}

TEST_F(EntryPointTest, CallWithoutEvenAProgramPathPrintsTheShortUsage) {
    EXPECT_EQ(RunClient(0, nullptr), 0);
    EXPECT_EQ(console.Out(), "Usage:  [args]\n");
}

TEST_F(EntryPointTest, CommandIsSentAndTheAnswerGivesTheExitCode) {
    EXPECT_EQ(Run({"-wifi-stop"}), 3);
    EXPECT_EQ(TheWorld().sent, BuildRequest("127.0.0.1", "CLI -1 -vemo  -wifi-stop"));
    EXPECT_EQ(console.Out(), "answer\n");
    EXPECT_EQ(console.Err(), "");
}

TEST_F(EntryPointTest, CommandLineFollowsTheArguments) {
    struct Case {
        std::vector<std::string> arguments;
        std::string commandLine;
    };
    const Case cases[] = {
        {{"-connect", "-connect"}, "CLI -1 -vemo  -connectbin -connect"},
        {{"-disconnect", "-disconnect"}, "CLI -1 -vemo  -disconnectxvt -disconnect"},
        {{"-disconnect", "-connect"}, "CLI -1 -vemo  -disconnectxvt -connectbin"},
        {{"-Connect", "-connectBin"}, "CLI -1 -vemo  -Connect -connectBin"},
        {{"-exit "}, "CLI -1 -vemo  -exit"},
        {{"-exit ", "-x"}, "CLI -1 -vemo  \"-exit \" -x"},
        {{"-no_automation"}, "CLI -1 -vemo  -no_automation"},
        {{"*", "?"}, "CLI -1 -vemo  * ?"},
        {{""}, "CLI -1 -vemo  "},
        {{"-wifi-test-by-file"}, "CLI -1 -vemo  -wifi-test-by-file"},
        {{"-remoteDaemon"}, "CLI -1 "},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.commandLine);
        TheWorld().sent.clear();
        TheWorld().received = {"xDone"};
        EXPECT_EQ(Run(row.arguments), 0);
        EXPECT_EQ(SentCommandLine(), row.commandLine);
    }
}

TEST_F(EntryPointTest, TestFilePairLeavesTheList) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    struct Case {
        std::vector<std::string> arguments;
        std::string commandLine;
    };
    // The prefix goes when no argument is left: an empty list holds known commands only.
    const Case cases[] = {
        {{"-a", "-wifi-test-by-file", "f", "-b"}, "CLI -1 -vemo  -a -b"},
        {{"-wifi-test-by-file", "f"}, "CLI -1 "},
        // The first element equal to the file name goes, wherever it is.
        {{"f", "-wifi-test-by-file", "f", "-a"}, "CLI -1 -vemo  f -a"},
        {{"f", "x", "-wifi-test-by-file", "f"}, "CLI -1 -vemo  x f"},
        {{"-wifi-test-by-file", "f", "-wifi-test-by-file", "g", "-a"}, "CLI -1 -vemo  -a"},
        // The file name is compared like any other argument.
        {{"-wifi-test-by-file", "-wifi-test-by-file", "f"}, "CLI -1 "},
        // The address is gone from the list before the copies are scanned.
        {{"-remoteDaemon", "-wifi-test-by-file", "-a", "-b"}, "CLI -1 -vemo  -b"},
        {{"-a", "-wifi-test-by-file"}, "CLI -1 -vemo  -a -wifi-test-by-file"},
        {{"-wifi-test-by-File", "f"}, "CLI -1 -vemo  -wifi-test-by-File f"},
        // The list holds the literal's value, which is not the text of the file name.
        {{"-wifi-test-by-file", "{string:foo}", "-x"}, "CLI -1 -vemo  foo -x"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        TheWorld().sent.clear();
        TheWorld().received = {"xDone"};
        Run(row.arguments);
        EXPECT_EQ(SentCommandLine(), row.commandLine);
    }
}

/// Throws when it meets the word a second time, and from then on each second time: first a value,
/// then a pointer.
void ThrowOnSecondBoom(std::string& text) {
    static int meetings = 0;
    if (text != "boom")
        return;
    ++meetings;
    if (meetings == 2)
        throw std::runtime_error("met twice");
    if (meetings == 4)
        throw new Utilities::Exception("met twice more");
}

TEST_F(EntryPointTest, TestRunFollowsTheCommandAndItsResultIsTheExitCode) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    // A test file that cannot be opened ends the run before it sends anything.
    EXPECT_EQ(Run({"-a", "-wifi-test-by-file", "no such file", "-b"}), 1);
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -a -b");
    EXPECT_EQ(console.Out(), "answer\n");
    EXPECT_EQ(console.Err(), "Failed to open test file 'no such file' or result file.");
}

TEST_F(EntryPointTest, SuccessOfTheTestReplacesTheCommandsCode) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    WriteFile("test.csv", "");
    EXPECT_EQ(Run({"-wifi-test-by-file", "test.csv"}), 0);
    EXPECT_THAT(console.Out(), testing::StartsWith("answer\n")) << "whose code is 3";
}

TEST_F(EntryPointTest, FileNameIsNoOptionOfTheClientAnyMore) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    for (const std::string option : {"-help", "-open_local_daemon"}) {
        SCOPED_TRACE(option);
        const ConsoleCapture own;
        EXPECT_EQ(Run({"-wifi-test-by-file", option}), 1);
        EXPECT_THAT(own.Out(), testing::Not(testing::HasSubstr("-remoteDaemon")));
        EXPECT_EQ(own.Err(), "Failed to open test file '" + option + "' or result file.");
    }
    EXPECT_EQ(CountCalls("CreateChildProcess"), 0);
}

TEST_F(EntryPointTest, TestTalksToThisHostWhateverDaemonTheCommandWentTo) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    ProgramDirectory::Write("Socket.cfg", "8738");
    WriteFile("test.csv", "");
    Run({"-remoteDaemon", "bench", "-x", "-wifi-test-by-file", "test.csv"});
    EXPECT_EQ(CountCalls("ResolveAddress [bench]"), 1);
    EXPECT_EQ(CountCalls("ResolveAddress"), 3);
    EXPECT_EQ(CountCalls("ResolveAddress [127.0.0.1]"), 2);
}

TEST_F(EntryPointTest, LastTestFileCountsAndIsTrimmedAsLastArgument) {
    const WorkingDirectory ownDirectory("sarvex-entrypoint-test");
    EXPECT_EQ(Run({"-wifi-test-by-file", "first", "-wifi-test-by-file", "second\r"}), 1);
    EXPECT_EQ(console.Err(), "Failed to open test file 'second' or result file.");
}

TEST_F(EntryPointTest, TestDoesNotRunWithoutAConnection) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_EQ(Run({"-wifi-test-by-file", "no such file"}), 1);
    EXPECT_EQ(console.Err(),
              "Failed to connect to daemon. Please ensure that daemon was started.\n");
}

TEST_F(EntryPointTest, FailureWhileRemovingTheTestPairEndsWith256) {
    // The first argument is a typed literal, so that the file name, a literal too, is read once for
    // the list and once more to be compared with the first argument.
    auto& providers = Utilities::FormatProviders::Instance();
    providers.AddStringProvider(ThrowOnSecondBoom);
    const std::vector<std::string> arguments{"{int:5}", "-wifi-test-by-file", "{string:boom}"};
    const int codeOfAValue = Run(arguments);
    const int codeOfAPointer = Run(arguments);
    providers.RemoveStringProvider(ThrowOnSecondBoom);
    EXPECT_EQ(codeOfAValue, 256);
    EXPECT_EQ(codeOfAPointer, 256);
    const std::string message = "Failed to move 'test-by-file arg.\n";
    EXPECT_EQ(console.Err(), message + message);
    EXPECT_EQ(CountCalls("StartSockets"), 0);
}

TEST_F(EntryPointTest, TypedLiteralsAreSentAsTheValuesThatTheyName) {
    struct Case {
        std::string argument;
        std::string sent;
    };
    const Case cases[] = {
        {"{int:0x1F}", "31"},
        {"{nosuchtype:1}", "{nosuchtype:1}"},
        {"{int:x}", "0"},
        {"{int:}", "{int:}"},
        {"{int}", "{int}"},
        {"{}", "{}"},
        {"{int8:65}", "A"},
        {"{string:a:b}", "a:b"},
        {"{string:a b}", "\"a b\""},
        {"x{int:1}", "x{int:1}"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.argument);
        TheWorld().sent.clear();
        TheWorld().received = {"xDone"};
        Run({row.argument});
        EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  " + row.sent);
    }
}

TEST_F(EntryPointTest, RewritesComeBeforeTheChoiceOfThePrefix) {
    ProgramDirectory::Write("SarvexToolCmds.txt", "-connect 0\n");
    Run({"-connect"});
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -connectbin");
}

TEST_F(EntryPointTest, OwnOptionsAreGoneBeforeTheChoiceOfThePrefix) {
    ProgramDirectory::Write("SarvexToolCmds.txt", "-exit 0\n");
    TheWorld().pipeOutput = "vemo.exe";
    Run({"-open_local_daemon", "-exit"});
    EXPECT_EQ(SentCommandLine(), "CLI -1  -exit");
}

TEST_F(EntryPointTest, UsageIsPrintedBeforeTheDaemonIsStarted) {
    TheWorld().childStarts = false;
    EXPECT_EQ(Run({"-help", "-open_local_daemon"}), 258);
    EXPECT_EQ(console.Out(), usageText);
}

TEST_F(EntryPointTest, KnownCommandsGoOutWithoutThePrefix) {
    ProgramDirectory::Write("SarvexToolCmds.txt", "-exit 0\n-remote 1\n");
    EXPECT_EQ(Run({"-remote", "10.1.1.1", "-exit"}), 3);
    EXPECT_EQ(SentCommandLine(), "CLI -1  -remote 10.1.1.1 -exit");
}

TEST_F(EntryPointTest, HelpPrintsTheUsageAndIsSentAllTheSame) {
    for (const std::string option : {"-help", "-?"}) {
        SCOPED_TRACE(option);
        TheWorld().sent.clear();
        TheWorld().received = {"xDone"};
        const ConsoleCapture own;
        EXPECT_EQ(Run({option}), 0);
        EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  " + option);
        EXPECT_EQ(own.Out(), std::string(usageText) + "x\n");
    }
}

TEST_F(EntryPointTest, BothHelpOptionsPrintTheUsageOnce) {
    EXPECT_EQ(Run({"-help", "-?"}), 3);
    EXPECT_EQ(console.Out(), std::string(usageText) + "answer\n");
}

TEST_F(EntryPointTest, UsageTextIsKeptToTheByte) {
    const std::string expected =
        "Use the following syntax to set Sarvex Tool's "
        "configuration:\n\nSarvexToolClient.exe [-option1 <parameter1>] [-option2 <parameter2>] "
        "[-option3 <parameter3>] [\x85]\n\nGeneral options:\n\n\t[-connectBin] \t\tConnect to the "
        "device with Bin Commands.\n\n\t[-disconnectBin] \tDisconnect from the device with Bin "
        "Commands.\n\n\t[-disconnect] \t\tDisconnect from the device with Bin "
        "Commands.\n\n\t[-exit] \t\t\tClose SarvexTool.\n\n\t[-remote <IP Address>]\t\tSet the "
        "remote address.\n\n\t[-set_init_retries <retries count>]\t\tSet number of times the tool "
        "tries to connect to AT@.\n\n\t[-open_local_daemon\t\tStarts Sarvex "
        "Tool.\n\n\t[-no_automation\t\tClient doesn't wait for response.\n\n";
    EXPECT_EQ(usageText, expected);
}

TEST_F(EntryPointTest, UnreachableDaemonEndsWithOneAfterTheUsage) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_EQ(Run({"-help"}), 1);
    EXPECT_EQ(console.Out(), usageText);
    EXPECT_EQ(console.Err(),
              "Failed to connect to daemon. Please ensure that daemon was started.\n");
    EXPECT_EQ(CountCalls("Sleep 20"), 20);
}

TEST_F(EntryPointTest, LinkedPortFileEndsAsAFailedConnection) {
    TheWorld().files[ProgramDirectory::Path("Socket.cfg")].hardLinks = 2;
    EXPECT_EQ(Run({"-x"}), 1);
    EXPECT_EQ(console.Err(),
              "Failed to connect to daemon. Please ensure that daemon was started.\n");
}

TEST_F(EntryPointTest, MissingPortFileEndsAsAFailedConnection) {
    TheWorld().files.clear();
    TheWorld().resolveSucceeds = [](int) { return false; };
    EXPECT_EQ(Run({"-x"}), 1);
    EXPECT_EQ(CountCalls("ResolveAddress [127.0.0.1] []"), 20);
}

TEST_F(EntryPointTest, LinkedCommandFileEndsWith256AndItsMessage) {
    const std::string path = ProgramDirectory::Path("SarvexToolCmds.txt");
    TheWorld().files[path].hardLinks = 2;
    EXPECT_EQ(Run({"-x"}), 256);
    EXPECT_EQ(console.Err(), "File " + path + " is a link\n");
    EXPECT_EQ(CountCalls("StartSockets"), 0);
}

TEST_F(EntryPointTest, LostConnectionEndsWith256AndItsMessage) {
    TheWorld().failingSend = 1;
    EXPECT_EQ(Run({"-x"}), 256);
    EXPECT_EQ(console.Err(), "Failed Sending message\n");
}

TEST_F(EntryPointTest, UnreadableReturnCodeEndsWith256) {
    for (const std::string code : {"abc", "99999999999"}) {
        SCOPED_TRACE(code);
        TheWorld().received = {"x\nSarvex tool RETURN CODE\n" + code + "\nDone"};
        const ConsoleCapture own;
        EXPECT_EQ(Run({"-x"}), 256);
        EXPECT_EQ(own.Err(), "Failed to handle commands.\n");
        EXPECT_EQ(own.Out(), "");
    }
}

TEST_F(EntryPointTest, StreamFailureEndsWith256AndItsOwnText) {
    const std::ios_base::failure failure("the stream broke");
    TheWorld().onReceive = [&failure] { throw failure; };
    EXPECT_EQ(Run({"-x"}), 256);
    EXPECT_EQ(console.Err(),
              std::string("Failed to read daemon response. ") + failure.what() + "\n");
}

TEST_F(EntryPointTest, UnknownExceptionEndsWith256) {
    TheWorld().onReceive = [] { throw 7; };
    EXPECT_EQ(Run({"-x"}), 256);
    EXPECT_EQ(console.Err(), "Failed to handle commands.\n");
}

TEST_F(EntryPointTest, UncalibratedAnswerEndsWithTen) {
    TheWorld().received = {"device is uncalibrated\nSarvex tool RETURN CODE\n3\nDone"};
    EXPECT_EQ(Run({"-x"}), 10);
}

/// Keeps its text as the last flush found it.
class FlushRecorder : public std::stringbuf {
public:
    std::string flushed;

private:
    int sync() override {
        flushed = str();
        return 0;
    }
};

TEST_F(EntryPointTest, UsageIsFlushedBeforeTheDaemonIsLookedFor) {
    FlushRecorder output;
    std::streambuf* const previous = std::cout.rdbuf(&output);
    std::string flushedBefore = "nothing was read";
    TheWorld().onReadPipe = [&] { flushedBefore = output.flushed; };
    Run({"-help", "-open_local_daemon"});
    std::cout.rdbuf(previous);
    EXPECT_EQ(flushedBefore, usageText);
}

TEST_F(EntryPointTest, ArgumentThatLooksLikeAPlaceholderIsSentAsItIs) {
    Run({"-x", "${1}", "a${5}b", "${2}${3}${4}"});
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -x ${1} a${5}b ${2}${3}${4}");
}

TEST_F(EntryPointTest, AddressThatLooksLikeAPlaceholderIsResolvedAfterTheUsage) {
    TheWorld().resolveSucceeds = [](int) { return false; };
    EXPECT_EQ(Run({"-remoteDaemon", "${1}", "-help"}), 1);
    EXPECT_EQ(CountCalls("ResolveAddress [${1}] [8738]"), 20);
    EXPECT_EQ(console.Out(), usageText);
    EXPECT_EQ(console.Err(),
              "Failed to connect to daemon. Please ensure that daemon was started.\n");
    EXPECT_EQ(CountCalls("send"), 0);
}

TEST_F(EntryPointTest, LocalDaemonThatRunsIsNotStarted) {
    TheWorld().pipeOutput = "vemo.exe";
    EXPECT_EQ(Run({"-open_local_daemon", "-x"}), 3);
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -x");
    EXPECT_EQ(CountCalls("CreateChildProcess"), 0);
    EXPECT_EQ(CountCalls("Sleep"), 0);
}

TEST_F(EntryPointTest, OnlyTheFirstOrderToStartTheDaemonLeavesTheList) {
    TheWorld().pipeOutput = "vemo.exe";
    Run({"-open_local_daemon", "-open_local_daemon", "x"});
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -open_local_daemon x");
}

TEST_F(EntryPointTest, LocalDaemonIsStartedBeforeTheConnection) {
    EXPECT_EQ(Run({"-x", "-open_local_daemon"}), 3);
    EXPECT_EQ(CountCalls("CreateChildProcess"), 1);
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  -x");
}

TEST_F(EntryPointTest, LocalDaemonThatCannotBeStartedEndsWith258) {
    TheWorld().childStarts = false;
    TheWorld().lastError = 2;
    EXPECT_EQ(Run({"-open_local_daemon", "-x"}), 258);
    EXPECT_EQ(console.Err(), "Error occurred: Can't start SarvexTool daemon. Error code: 2\n");
    EXPECT_EQ(CountCalls("StartSockets"), 0);
}

TEST_F(EntryPointTest, ThousandsOfArgumentsAndLongOnesAreSentAsTheyAre) {
    const std::vector<std::string> many(10'000, "-x");
    std::string expected = "CLI -1 -vemo ";
    for (const std::string& argument : many)
        expected += " " + argument;
    EXPECT_EQ(Run(many), 3);
    EXPECT_EQ(SentCommandLine(), expected);

    TheWorld().sent.clear();
    const std::string longArgument(1 << 20, 'x');
    EXPECT_EQ(Run({longArgument}), 0);
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  " + longArgument);
}

TEST_F(EntryPointTest, AllByteValuesButNulAreSentAsTheyAre) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(Run({bytes}), 3);
    EXPECT_EQ(SentCommandLine(), "CLI -1 -vemo  \"" + bytes + "\"");
}

} // namespace

} // namespace SarvexTool
