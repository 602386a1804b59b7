#include "Tools/SarvexTool/Client/CliClient.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "Tools/SarvexTool/Client/Request.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/SarvexTool/Client/ProgramDirectory.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;

class CliClientTest : public testing::Test {
protected:
    CliClientTest() { ProgramDirectory::Reset(); }

    static std::unique_ptr<CliClient> Client(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "client");
        return std::make_unique<CliClient>(static_cast<int>(arguments.size()), arguments.data());
    }

    static CliClient::Arguments Texts(const std::vector<std::string>& texts) {
        return CliClient::Arguments(texts.begin(), texts.end());
    }

    ConsoleCapture console;
};

TEST_F(CliClientTest, DefaultClientHasNoArgumentsNoAnswerAndTheLocalAddress) {
    CliClient client;
    EXPECT_EQ(client.BuildArguments(), "");
    EXPECT_EQ(client.GetResponse(), "");
    EXPECT_TRUE(client.Connect("elsewhere"));
    EXPECT_EQ(CountCalls("ResolveAddress [127.0.0.1] [8738]"), 1);
}

TEST_F(CliClientTest, ArgumentsAfterTheProgramPathAreTakenInOrder) {
    EXPECT_EQ(Client({"-a", "b", "-a"})->BuildArguments(), " -a b -a");
    EXPECT_EQ(Client({})->BuildArguments(), "");
}

TEST_F(CliClientTest, ArgumentsWithBlanksAreQuotedAndNothingIsEscaped) {
    EXPECT_EQ(Client({"a b"})->BuildArguments(), " \"a b\"");
    EXPECT_EQ(Client({" "})->BuildArguments(), " \" \"");
    EXPECT_EQ(Client({""})->BuildArguments(), " ");
    EXPECT_EQ(Client({"a\tb", "\"", "\\", "\"c d\""})->BuildArguments(), " a\tb \" \\ \"\"c d\"\"");
}

TEST_F(CliClientTest, RemoteDaemonTakesItsAddressOutOfTheList) {
    const auto client = Client({"-remoteDaemon", "10.0.0.7", "-exit"});
    EXPECT_EQ(client->BuildArguments(), " -exit");
    EXPECT_TRUE(client->Connect("127.0.0.1"));
    EXPECT_EQ(CountCalls("ResolveAddress [10.0.0.7] [8738]"), 1);
}

TEST_F(CliClientTest, OnlyTheFirstRemoteDaemonCountsUntilTheRuleIsAppliedAgain) {
    const auto client = Client({"-a", "-remoteDaemon", "one", "-remoteDaemon", "two"});
    EXPECT_EQ(client->BuildArguments(), " -a -remoteDaemon two");
    client->ApplyRemoteDaemonOption();
    EXPECT_EQ(client->BuildArguments(), " -a");
    EXPECT_TRUE(client->Connect(""));
    EXPECT_EQ(CountCalls("ResolveAddress [two]"), 1);
}

TEST_F(CliClientTest, RemoteDaemonWithoutAnAddressIsTakenOutAndChangesNothing) {
    const auto client = Client({"-exit", "-remoteDaemon"});
    EXPECT_EQ(client->BuildArguments(), " -exit");
    EXPECT_TRUE(client->Connect(""));
    EXPECT_EQ(CountCalls("ResolveAddress [127.0.0.1]"), 1);
}

TEST_F(CliClientTest, RemoteDaemonInAnotherCaseIsAnArgument) {
    EXPECT_EQ(Client({"-remotedaemon", "x"})->BuildArguments(), " -remotedaemon x");
}

TEST_F(CliClientTest, ArgumentsAreFoundRemovedAndReplacedOneByOne) {
    const auto client = Client({"-a", "-b", "-a"});
    EXPECT_TRUE(client->HasArgument("-a"));
    EXPECT_FALSE(client->HasArgument("-A"));
    EXPECT_FALSE(client->HasArgument("-a "));
    EXPECT_TRUE(client->ReplaceArgument("-a", "-c"));
    EXPECT_EQ(client->BuildArguments(), " -c -b -a");
    EXPECT_FALSE(client->ReplaceArgument("-x", "-c"));
    EXPECT_TRUE(client->RemoveArgument("-a"));
    EXPECT_FALSE(client->RemoveArgument("-a"));
    EXPECT_EQ(client->BuildArguments(), " -c -b");
}

TEST_F(CliClientTest, SetArgumentsReplacesTheList) {
    const auto client = Client({"-a"});
    client->SetArguments(Texts({"-x", "y"}));
    EXPECT_EQ(client->BuildArguments(), " -x y");
    client->SetArguments({});
    EXPECT_EQ(client->BuildArguments(), "");
    // Equal to each other, and each with its own text.
    client->SetArguments({Core::Value("{int:5}")});
    client->SetArguments(Texts({"05"}));
    EXPECT_EQ(client->BuildArguments(), " 05");
}

TEST_F(CliClientTest, EmptyValueInTheListGivesEmptyText) {
    CliClient client;
    client.SetArguments({Core::Value(), Core::Value(std::string("x"))});
    EXPECT_EQ(client.BuildArguments(), "  x");
}

TEST_F(CliClientTest, CommandFileDecidesWhatIsKnown) {
    const auto client = Client({"-remote", "10.1.1.1", "-exit"});
    EXPECT_FALSE(client->AreAllKnownCommands());
    ProgramDirectory::Write("SarvexToolCmds.txt", "-exit 0\n-remote 1\n");
    EXPECT_TRUE(client->AreAllKnownCommands());
    ProgramDirectory::Write("SarvexToolCmds.txt", "-exit 0\n\n-remote 1\n");
    EXPECT_FALSE(client->AreAllKnownCommands());
}

/// Keeps the records of the process log.
class RecordingFormatter : public Utilities::ILogFormatter {
public:
    void Format(std::uint32_t level, const char* file, const char* function,
                const std::string& message, std::ostream&) override {
        records.push_back(std::to_string(level) + " " + file + " " + function + " " + message);
    }
    std::vector<std::string> records;
};

class SilentDevice : public Utilities::ILogDevice {
public:
    void Write(const std::string&) override {}
};

TEST_F(CliClientTest, LinkedCommandFileIsLoggedAndRaised) {
    RecordingFormatter formatter;
    SilentDevice device;
    SingletonWrapper<Utilities::LogPrinter> printer;
    printer->AddDevice("test", &device);
    printer->SetFormatter("test", &formatter);
    printer->SetLevelMask("test", 15);
    const std::string path = ProgramDirectory::Path("SarvexToolCmds.txt");
    TheWorld().files[path].hardLinks = 2;
    try {
        Client({"-exit"})->AreAllKnownCommands();
        ADD_FAILURE() << "nothing was thrown";
    } catch (Utilities::Exception* pException) {
        const std::unique_ptr<Utilities::Exception> owner(pException);
        EXPECT_EQ(owner->what(), "File " + path + " is a link");
        EXPECT_EQ(owner->GetLocation()->GetFile(), "src/Tools/SarvexTool/Client/CliClient");
        EXPECT_EQ(owner->GetLocation()->GetLine(), 293u);
        EXPECT_EQ(owner->GetLocation()->GetFunction(), "CliClient::ReadSarvexToolCommands");
    }
    printer->RemoveDevice("test");
    EXPECT_THAT(formatter.records, ElementsAre("1 src/Tools/SarvexTool/Client/CliClient "
                                               "CliClient::ReadSarvexToolCommands File " +
                                               path + " is a link"));
}

TEST_F(CliClientTest, FailedConnectionIsFalseAndSilent) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_FALSE(CliClient().Connect("127.0.0.1"));
    EXPECT_EQ(CountCalls("Sleep 20"), 20);
    EXPECT_EQ(console.Err() + console.Out(), "");
}

TEST_F(CliClientTest, WhateverTheConnectionThrowsIsSwallowed) {
    TheWorld().files[ProgramDirectory::Path("Socket.cfg")].hardLinks = 2;
    EXPECT_FALSE(CliClient().Connect("127.0.0.1"));
    TheWorld().files[ProgramDirectory::Path("Socket.cfg")].hardLinks = 1;
    TheWorld().connectSucceeds = [](int) -> bool { throw 7; };
    EXPECT_FALSE(CliClient().Connect("127.0.0.1"));
}

TEST_F(CliClientTest, ReplacedConnectionStaysOpenAndTheLastIsClosed) {
    {
        CliClient client;
        EXPECT_TRUE(client.Connect(""));
        EXPECT_TRUE(client.Connect(""));
        EXPECT_EQ(CountCalls("CloseSocket"), 0);
    }
    EXPECT_EQ(CountCalls("CloseSocket 100"), 0);
    EXPECT_EQ(CountCalls("CloseSocket 101"), 1);
}

TEST_F(CliClientTest, FailedReconnectionKeepsTheConnectionBefore) {
    CliClient client;
    EXPECT_TRUE(client.Connect(""));
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_FALSE(client.Connect(""));
    client.SendCommand(false, "-vemo");
    EXPECT_EQ(CountCalls("send 100"), 2);
}

TEST_F(CliClientTest, ExchangeSendsTheRequestAndSortsTheAnswer) {
    const auto client = Client({"-remoteDaemon", "bench", "-wifi-stop", "a b"});
    ASSERT_TRUE(client->Connect(""));
    TheWorld().received = {"HTTP/1.1 200 OK\r\n\r\nhello\nSarvex tool ERROR\noops\nSarvex tool "
                           "RETURN CODE\n3\nDone"};
    EXPECT_EQ(client->SendCommand(true, "-vemo "), 3);
    EXPECT_EQ(TheWorld().sent,
              SarvexTool::BuildRequest("bench", "CLI -1 -vemo  -wifi-stop \"a b\""));
    EXPECT_EQ(console.Out(), "hello\n");
    EXPECT_EQ(console.Err(), "oops\n");
    EXPECT_EQ(client->GetResponse(),
              "hello\nSarvex tool ERROR\noops\nSarvex tool RETURN CODE\n3\n\n");
}

TEST_F(CliClientTest, EveryExchangeStartsWithAnEmptyResponse) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    TheWorld().received = {"first\nDone", "second\nDone"};
    client.SendCommand(true, "");
    EXPECT_EQ(client.GetResponse(), "first\n\n");
    client.SendCommand(true, "");
    EXPECT_EQ(client.GetResponse(), "second\n\n");
    client.SendCommand(false, "");
    EXPECT_EQ(client.GetResponse(), "");
}

TEST_F(CliClientTest, FailedExchangeLeavesAnEmptyResponse) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    TheWorld().received = {"first\nDone"};
    client.SendCommand(true, "");
    TheWorld().failingSend = TheWorld().sends;
    try {
        client.SendCommand(true, "");
        ADD_FAILURE() << "nothing was thrown";
    } catch (Utilities::Exception* pException) {
        delete pException;
    }
    EXPECT_EQ(client.GetResponse(), "");
}

TEST_F(CliClientTest, InformationIsPrintedBeforeTheErrors) {
    std::ostringstream both;
    std::streambuf* const oldOut = std::cout.rdbuf(both.rdbuf());
    std::streambuf* const oldErr = std::cerr.rdbuf(both.rdbuf());
    CliClient client;
    EXPECT_TRUE(client.Connect(""));
    TheWorld().received = {
        "Sarvex tool ERROR\ne\nSarvex tool INFO\ni\nSarvex tool RETURN CODE\n0Done"};
    client.SendCommand(true, "");
    std::cout.rdbuf(oldOut);
    std::cerr.rdbuf(oldErr);
    EXPECT_EQ(both.str(), "i\ne\n");
}

TEST_F(CliClientTest, AddressThatLooksLikeAPlaceholderIsResolved) {
    const auto client = Client({"-remoteDaemon", "a${3}"});
    ASSERT_TRUE(client->Connect(""));
    client->SendCommand(true, "");
    EXPECT_EQ(CountCalls("ResolveAddress [a${3}]"), 1);
    EXPECT_THAT(TheWorld().sent, testing::HasSubstr("\r\nHost: a${3}:8738\r\n"));
}

TEST_F(CliClientTest, WithoutWaitingNothingIsReceivedNorPrinted) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    TheWorld().received = {"answerDone"};
    EXPECT_EQ(client.SendCommand(false, "-vemo "), 0);
    EXPECT_EQ(CountCalls("recv"), 0);
    EXPECT_EQ(console.Out() + console.Err(), "");
}

TEST_F(CliClientTest, EmptyAnswerPrintsOneLineEndAndReturnsZero) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    EXPECT_EQ(client.SendCommand(true, ""), 0);
    EXPECT_EQ(console.Out(), "\n");
    EXPECT_EQ(console.Err(), "");
}

TEST_F(CliClientTest, ClientWithoutAConnectionYieldsAnEmptyAnswer) {
    CliClient client;
    EXPECT_EQ(client.SendCommand(true, "-vemo"), 0);
    EXPECT_EQ(client.SendCommand(false, "-vemo"), 0);
    EXPECT_EQ(console.Out(), "\n");
    EXPECT_EQ(CountCalls("send"), 0);
}

TEST_F(CliClientTest, UnreadableReturnCodeThrowsBeforeAnythingIsPrinted) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    TheWorld().received = {"hello\nSarvex tool RETURN CODE\nabc\nDone"};
    EXPECT_THROW(client.SendCommand(true, ""), std::invalid_argument);
    EXPECT_EQ(console.Out(), "");
    EXPECT_EQ(client.GetResponse(), "hello\nSarvex tool RETURN CODE\nabc\n");
}

TEST_F(CliClientTest, LostConnectionRaisesWhatTheStreamRaises) {
    CliClient client;
    ASSERT_TRUE(client.Connect(""));
    TheWorld().failingSend = 0;
    try {
        client.SendCommand(true, "");
        FAIL() << "nothing was thrown";
    } catch (Utilities::Exception* pException) {
        const std::unique_ptr<Utilities::Exception> owner(pException);
        EXPECT_STREQ(owner->what(), "Failed Sending message");
    }
}

} // namespace
