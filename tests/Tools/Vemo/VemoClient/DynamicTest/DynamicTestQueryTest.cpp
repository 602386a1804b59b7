#include "tests/Modules/xFramework/Utilities/LogRecorder.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"

// The exchanges of a test, and its two queries.

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class DynamicTestQueryTest : public DynamicTestFixture {
protected:
    std::int32_t MacTypeOf(const std::string& answer) {
        Answer(answer);
        return test.GetMacType();
    }
    std::string CountryOf(const std::string& answer) {
        Answer(answer);
        return test.GetCurrentMccValue();
    }

    DynamicTest test{"test.csv"};
};

TEST_F(DynamicTestQueryTest, ExchangeSendsTheArgumentsAfterOneBlankAndReturnsTheWholeAnswer) {
    Answer("Sarvex tool INFO\nhello\nSarvex tool ERROR\nbad\nSarvex tool RETURN CODE\n7\n");
    EXPECT_EQ(test.SendCommands({std::string("-a"), std::string("b c")}),
              "Sarvex tool INFO\nhello\nSarvex tool ERROR\nbad\nSarvex tool RETURN CODE\n7\n\n");
    EXPECT_THAT(TheWorld().sent, EndsWith("\r\n\r\nCLI -1 -vemo -a \"b c\""));
    EXPECT_EQ(console.Out(), "hello\n");
    EXPECT_EQ(console.Err(), "bad\n");
}

TEST_F(DynamicTestQueryTest, EachExchangeHasAConnectionAndAnArgumentListOfItsOwn) {
    Answer("one\n");
    Answer("two\n");
    EXPECT_EQ(test.SendCommands({std::string("-a")}), "one\n\n");
    EXPECT_EQ(test.SendCommands({std::string("-b")}), "two\n\n");
    EXPECT_THAT(Commands(), ElementsAre("-a", "-b"));
    EXPECT_EQ(CountCalls("ConnectSocket"), 2);
}

TEST_F(DynamicTestQueryTest, RemoteDaemonInTheListSelectsTheHost) {
    test.SendCommands({std::string("-remoteDaemon"), std::string("10.0.0.7"), std::string("-a")});
    EXPECT_EQ(CountCalls("ResolveAddress [10.0.0.7] [8738]"), 1);
    EXPECT_THAT(Commands(), ElementsAre("-a"));
}

TEST_F(DynamicTestQueryTest, ExchangeWithoutAConnectionHasAnEmptyReply) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_EQ(test.SendCommands({std::string("-a")}).find_first_not_of('\n'), std::string::npos);
    EXPECT_EQ(TheWorld().sent, "");
}

TEST_F(DynamicTestQueryTest, MacTypeIsReadFromTheReply) {
    const std::pair<const char*, int> cases[] = {
        {"Mac Type: 16\n", 16},          {"Mac Type: 016\n", 16}, {"x\nMac Type: 5x\n", 5},
        {"Mac Type: 3\nMac Type: 4", 3}, {"no such line\n", 0},   {"", 0},
    };
    for (const auto& [answer, expected] : cases) {
        SCOPED_TRACE(answer);
        EXPECT_EQ(MacTypeOf(answer), expected);
    }
    EXPECT_EQ(console.Err(), "");
    EXPECT_EQ(Commands(), std::vector<std::string>(std::size(cases), "-wifi-get-mac-type"));
}

TEST_F(DynamicTestQueryTest, MacTypeWithoutDigitsIsReportedAndTakenForZero) {
    EXPECT_EQ(MacTypeOf("Mac Type: \n"), 0);
    EXPECT_EQ(console.Err(), "-wifi-get-mac-type command failed: invalid stoi argument.");
}

TEST_F(DynamicTestQueryTest, MacTypeBeyond32BitsIsReportedAndTakenForZero) {
    EXPECT_EQ(MacTypeOf("Mac Type: 2147483648\n"), 0);
    EXPECT_EQ(console.Err(), "-wifi-get-mac-type command failed: stoi argument out of range.");
    EXPECT_EQ(MacTypeOf("Mac Type: 2147483647\n"), 2147483647);
}

TEST_F(DynamicTestQueryTest, CountryCodeIsReadFromTheReply) {
    const std::pair<const char*, const char*> cases[] = {
        {"Current MCC: US\n", "US"}, {"Current MCC: USA\n", "US"}, {"Current MCC: U\n", "-"},
        {"Current MCC: U", "-"},     {"no such line\n", "-"},      {"", "-"},
    };
    for (const auto& [answer, expected] : cases) {
        SCOPED_TRACE(answer);
        EXPECT_EQ(CountryOf(answer), expected);
    }
    EXPECT_EQ(console.Err(), "");
    EXPECT_EQ(Commands(), std::vector<std::string>(std::size(cases), "-wifi-get-mcc"));
}

TEST_F(DynamicTestQueryTest, FailedSendIsReportedAndAbsorbedByBothQueries) {
    for (const int send : {0, 1}) {
        TheWorld().sends = 0;
        TheWorld().failingSend = send;
        EXPECT_EQ(test.GetMacType(), 0);
        TheWorld().sends = 0;
        EXPECT_EQ(test.GetCurrentMccValue(), "-");
    }
    const std::string both = "-wifi-get-mac-type command failed: Failed Sending message."
                             "-wifi-get-mcc command failed: Failed Sending message.";
    EXPECT_EQ(console.Err(), both + both);
}

TEST_F(DynamicTestQueryTest, ReturnCodeThatIsNoNumberIsReportedByTheQuery) {
    EXPECT_EQ(MacTypeOf("Mac Type: 5\nSarvex tool RETURN CODE\nabc\n"), 0);
    EXPECT_EQ(CountryOf("Current MCC: US\nSarvex tool RETURN CODE\n99999999999\n"), "-");
    EXPECT_EQ(console.Err(), "-wifi-get-mac-type command failed: invalid stoi argument."
                             "-wifi-get-mcc command failed: stoi argument out of range.");
}

/// The functions that were entered and left, in their order.
std::vector<std::string> Traces(const Utilities::LogRecorder& log) {
    std::vector<std::string> traces;
    const std::string name = "|DynamicTest::";
    for (const std::string& record : log.records) {
        const std::size_t hit = record.find(name);
        if (hit != std::string::npos)
            traces.push_back(record.substr(hit + name.size()));
    }
    return traces;
}

TEST_F(DynamicTestQueryTest, QueriesAreTracedAlsoWhenTheyFail) {
    const Utilities::LogRecorder log(Utilities::LogLevel::Info);
    MacTypeOf("Mac Type: \n");
    TheWorld().failingSend = TheWorld().sends;
    test.GetCurrentMccValue();
    EXPECT_THAT(Traces(log), ElementsAre("GetMacType|--------------------->Enter",
                                         "SendCommands|--------------------->Enter",
                                         "SendCommands|<---------------------Exit",
                                         "GetMacType|<---------------------Exit",
                                         "GetCurrentMccValue|--------------------->Enter",
                                         "SendCommands|--------------------->Enter",
                                         "GetCurrentMccValue|<---------------------Exit"));
}

} // namespace
