#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Client/Program/EntryPoint.h"
#include "Tools/SarvexTool/Client/Request.h"
#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <gmock/gmock.h>

#include <fstream>

namespace EndToEnd {
namespace {

using SarvexTool::BuildRequest;
using SarvexTool::usageText;

constexpr const char* head = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\n";

/// Runs the client against a peer that takes the request and then does what the script says.
class ExchangeTest : public testing::Test {
protected:
    using Answer = std::function<void(Connection&)>;

    ProcessResult Exchange(const std::vector<std::string>& arguments, const Answer& answer) {
        ScriptedPeer peer([this, &answer](Connection& connection, int) {
            request = connection.ReadRequest();
            answer(connection);
        });
        bench.SetPort(peer.Port());
        return bench.RunClient(arguments);
    }

    /// As Exchange, with an answer that is sent at once.
    ProcessResult ExchangeAtOnce(const std::vector<std::string>& arguments,
                                 const std::string& answer) {
        return Exchange(arguments, [&](Connection& connection) { connection.Send(answer); });
    }

    Bench bench;
    std::string request;
};

TEST_F(ExchangeTest, CommandReachesTheDaemonAndItsAnswerTheConsole) {
    const ProcessResult result = ExchangeAtOnce(
        {"-wifi-stop"}, std::string(head) + "Sarvex tool INFO\nstopped\nSarvex tool ERROR\nlate\n"
                                            "Sarvex tool RETURN CODE\n3\nDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1 -vemo  -wifi-stop"));
    EXPECT_EQ(result.out, TextMode("stopped\n"));
    EXPECT_EQ(result.err, TextMode("late\n"));
    EXPECT_EQ(result.exitCode, 3);
}

TEST_F(ExchangeTest, ReturnCodeBecomesTheExitCode) {
    for (const int code : {0, 1, 10, 255, 256, 258, -1, 2147483647}) {
        SCOPED_TRACE(code);
        const ProcessResult result =
            ExchangeAtOnce({"-x"}, "Sarvex tool RETURN CODE\n" + std::to_string(code) + "\nDone");
        // Linux keeps eight bits; a failure must not become a success there.
        EXPECT_EQ(result.exitCode, OSAL::ToExitStatus(code));
    }
}

TEST_F(ExchangeTest, BareCallPrintsItsOwnPath) {
    const ProcessResult result = bench.RunClient({});
    EXPECT_EQ(result.out, TextMode("Usage: " + bench.ClientPath() + " [args]\n"));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(ExchangeTest, HelpIsPrintedByteForByteAndSent) {
    const ProcessResult result = ExchangeAtOnce({"-help"}, "okDone");
    EXPECT_EQ(result.out, TextMode(std::string(usageText) + "ok\n"));
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1 -vemo  -help"));
}

TEST_F(ExchangeTest, ArgumentsArriveAsTheyWereGiven) {
    bench.Write("a.txt", "");
    bench.Write("b.txt", "");
    const std::vector<std::string> arguments = {
        "*", "*.txt",  "?.txt", "[ab].txt", "a b", "tab\there", "\"", "\\", "back\\\\\"slash\\",
        "",  "%PATH%", "$HOME", "{x:1}",    "'",   "-exit\r"};
    ExchangeAtOnce(arguments, "xDone");
    EXPECT_EQ(request,
              BuildRequest("127.0.0.1", "CLI -1 -vemo  * *.txt ?.txt [ab].txt \"a b\" tab\there \" "
                                        "\\ back\\\\\"slash\\  %PATH% $HOME {x:1} ' -exit"));
}

TEST_F(ExchangeTest, TypedLiteralsShowThatTheTypesAreRegisteredBeforeMain) {
    ExchangeAtOnce({"{int:0x1F}", "{nosuchtype:1}", "{int:x}"}, "xDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1 -vemo  31 {nosuchtype:1} 0"));
}

TEST_F(ExchangeTest, RemoteDaemonIsDialledAndNamedInTheHead) {
    ScriptedPeer peer(
        [this](Connection& connection, int) {
            request = connection.ReadRequest();
            connection.Send("xDone");
        },
        "127.0.0.2");
    bench.SetPort(peer.Port());
    EXPECT_EQ(bench.RunClient({"-remoteDaemon", "127.0.0.2", "-exit"}).exitCode, 0);
    EXPECT_EQ(request, BuildRequest("127.0.0.2", "CLI -1 -vemo  -exit"));
}

TEST_F(ExchangeTest, KnownCommandsGoOutBare) {
    bench.Write("SarvexToolCmds.txt", "-EXIT 0\r\n-remote 1\r\n");
    ExchangeAtOnce({"-remote", "10.1.1.1", "-exit"}, "xDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1  -remote 10.1.1.1 -exit"));
}

TEST_F(ExchangeTest, CommandWithANegativeCountIsUnknownAndTheOthersStayKnown) {
    bench.Write("SarvexToolCmds.txt", "-less -1\n-exit 0\n");
    ExchangeAtOnce({"-exit"}, "xDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1  -exit"));
    ExchangeAtOnce({"-exit", "-less", "-exit"}, "xDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1 -vemo  -exit -less -exit"));
}

TEST_F(ExchangeTest, CommandTableIsReadWhileSomeoneWritesIt) {
    std::ofstream writer(bench.Path("SarvexToolCmds.txt"));
    writer << "-exit 0\n" << std::flush;
    ExchangeAtOnce({"-exit"}, "xDone");
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1  -exit"));
}

TEST_F(ExchangeTest, EndOfFileByteInTheCommandTableFollowsThePlatformsTextMode) {
    bench.Write("SarvexToolCmds.txt", "-exit 0\n\x1A\n");
    ExchangeAtOnce({"-exit"}, "xDone");
    // Elsewhere the byte is a malformed line.
    const std::string prefix = TextMode("\n") == "\n" ? "-vemo " : "";
    EXPECT_EQ(request, BuildRequest("127.0.0.1", "CLI -1 " + prefix + " -exit"));
}

TEST_F(ExchangeTest, AnswerInOneSegmentEndsAtTheMarkWhileTheConnectionIsOpen) {
    const ProcessResult result = ExchangeAtOnce({"-x"}, std::string(head) + "hello\nDone");
    EXPECT_EQ(result.out, TextMode("hello\n\n"));
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(ExchangeTest, MarkInASegmentOfItsOwnIsTextAndTheCloseEndsTheAnswer) {
    const ProcessResult result = Exchange({"-x"}, [](Connection& connection) {
        connection.Send(std::string(head) + "hello\n");
        connection.SendApart("Done");
        connection.FinishSending();
    });
    EXPECT_EQ(result.out, TextMode("hello\nDone\n"));
}

TEST_F(ExchangeTest, ConnectionThatEndsWithoutAnAnswerPrintsAnEmptyLine) {
    const ProcessResult closed =
        Exchange({"-x"}, [](Connection& connection) { connection.Close(); });
    EXPECT_EQ(closed.out, TextMode("\n"));
    EXPECT_EQ(closed.err, "");
    EXPECT_EQ(closed.exitCode, 0);
    const ProcessResult reset =
        Exchange({"-x"}, [](Connection& connection) { connection.Reset(); });
    EXPECT_EQ(reset.exitCode, 0);
    EXPECT_EQ(reset.out, TextMode("\n"));
}

TEST_F(ExchangeTest, AnswerCutAtAnyByteIsProcessedAsFarAsItCame) {
    const std::string answer = "HTTP/1.1 200 OK\r\n\r\nhello\nSarvex tool RETURN CODE\n3\nDone";
    for (std::size_t size = 0; size < answer.size(); ++size) {
        SCOPED_TRACE(size);
        const ProcessResult result = Exchange({"-x"}, [&](Connection& connection) {
            connection.Send(answer.substr(0, size));
            connection.FinishSending();
        });
        // After the code's marker a missing number ends the run; everything else is text.
        const bool codeIsEmpty = answer.substr(0, size).ends_with("CODE\n");
        const bool codeIsThere = answer.substr(0, size).find("CODE\n3") != std::string::npos;
        const int expected = codeIsEmpty ? 256 : codeIsThere ? 3 : 0;
        EXPECT_EQ(result.exitCode, OSAL::ToExitStatus(expected));
        EXPECT_EQ(result.err, codeIsEmpty ? TextMode("Failed to handle commands.\n") : "");
    }
}

TEST_F(ExchangeTest, GarbageIsPrintedAsItCame) {
    std::string garbage;
    for (int round = 0; round < 4; ++round) {
        for (int byte = 1; byte < 256; ++byte) {
            // Text mode would translate these on Windows, which TextMode does not model.
            if (byte != '\r' && byte != 0x1A)
                garbage += static_cast<char>(byte);
        }
    }
    const ProcessResult result = Exchange({"-x"}, [&](Connection& connection) {
        connection.Send(garbage);
        connection.FinishSending();
    });
    EXPECT_EQ(result.out, TextMode(garbage + "\n"));
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(ExchangeTest, UncalibratedAnswerEndsWithTen) {
    EXPECT_EQ(
        ExchangeAtOnce({"-x"}, "device uncalibrated\nSarvex tool RETURN CODE\n3\nDone").exitCode,
        10);
}

TEST_F(ExchangeTest, UnreadableReturnCodeEndsWith256) {
    const ProcessResult result = ExchangeAtOnce({"-x"}, "Sarvex tool RETURN CODE\nabc\nDone");
    EXPECT_EQ(result.exitCode, OSAL::ToExitStatus(256));
    EXPECT_EQ(result.err, TextMode("Failed to handle commands.\n"));
    EXPECT_EQ(result.out, "");
}

TEST_F(ExchangeTest, ArgumentThatLooksLikeAPlaceholderIsSentAsItIs) {
    const ProcessResult result = ExchangeAtOnce({"-x", "${1}", "a${5}b", "${2}${3}${4}"}, "okDone");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(request.ends_with("\r\n\r\nCLI -1 -vemo  -x ${1} a${5}b ${2}${3}${4}")) << request;
}

TEST_F(ExchangeTest, AddressThatLooksLikeAPlaceholderIsOneThatCannotBeResolved) {
    bench.SetPort(UnusedPort());
    // A name with so long a part is refused before anybody is asked for it.
    const std::string address = "${1}" + std::string(64, 'x');
    const ProcessResult result = bench.RunClient({"-help", "-remoteDaemon", address});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, TextMode(usageText));
    EXPECT_EQ(result.err,
              TextMode("Failed to connect to daemon. Please ensure that daemon was started.\n"));
}

TEST_F(ExchangeTest, LargeAnswerIsProcessedWithinFiveTimesItsSize) {
#ifdef _WIN32
    // Wine takes 0.3 to 2 ms for each of the client's calls to receive.
    constexpr std::size_t size = 16 << 20;
#else
    constexpr std::size_t size = 100 << 20;
#endif
    struct Case {
        const char* section;
        const char* before;
        char filler;
        std::string ProcessResult::*printed;
    };
    // The last answer has its section in two places, which are joined.
    const std::string twice = "Sarvex tool ERROR\nfirst\nSarvex tool ERROR\n";
    for (const Case& row : {Case{"Sarvex tool INFO\n", "", 'x', &ProcessResult::out},
                            Case{"Sarvex tool INFO\n", "", '\n', &ProcessResult::out},
                            Case{"Sarvex tool ERROR\n", "", 'x', &ProcessResult::err},
                            Case{twice.c_str(), "first\n", '\n', &ProcessResult::err}}) {
        SCOPED_TRACE(row.section + testing::PrintToString(row.filler));
        const ProcessResult result = Exchange({"-x"}, [&](Connection& connection) {
            connection.Send(head + std::string(row.section) + std::string(size, row.filler));
            connection.FinishSending();
        });
        EXPECT_EQ(result.exitCode, 0);
        // Too long for a message.
        EXPECT_TRUE(result.*row.printed ==
                    TextMode(row.before + std::string(size, row.filler) + "\n"));
        EXPECT_EQ(result.out.size() + result.err.size(), (result.*row.printed).size());
        EXPECT_GT(result.peakBytes, size);
        EXPECT_LT(result.peakBytes, PEAK_LIMIT_FACTOR * size);
        std::cout << "peak: " << static_cast<double>(result.peakBytes) / static_cast<double>(size)
                  << " of the answer" << std::endl;
    }
}

} // namespace
} // namespace EndToEnd
