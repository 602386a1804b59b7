#include "tests/Support/Files.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace VemoSimulator {

using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

const std::string stopCommand = "CLI -1 -vemo -wifi-stop";
const std::string stopBody =
    "Sarvex tool INFO\nNothing was running.\nSarvex tool RETURN CODE\n0\nDone";
const std::string stopAnswer = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n"
                               "Content-Length: 68\r\nConnection: close\r\n\r\n" +
                               stopBody;

const std::string startCommand = "CLI -1 -vemo -wifi-calibrate-tx -wifi-start";
const std::string startLines = "The transmitter is calibrated.\nStarted in mode tx_modulated.\n";
const std::string targetA =
    "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Rate MCS0 Chain A (1) 17.86 dBm\n";
const std::string targetB =
    "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Rate MCS0 Chain B (2) 17.61 dBm\n";

std::string BodyWith(const std::string& information) {
    return "Sarvex tool INFO\n" + information + "Sarvex tool RETURN CODE\n0\nDone";
}

/// One command to a simulator of its own, whose only rule makes all answers faulty.
class FaultyExchange {
public:
    explicit FaultyExchange(const std::string& fault, const std::string& command = stopCommand)
        : m_simulator({"--noise", "0", "--fault", "*:" + fault}), m_peer(m_simulator.Port()) {
        m_peer.SendCommand(command);
    }

    Peer& Client() { return m_peer; }
    std::string Body() { return BodyOf(m_peer.ReadToEnd()); }

private:
    RunningSimulator m_simulator;
    Peer m_peer;
};

} // namespace

TEST(FaultsTest, CloseBeforeEndsTheConnectionInOrderWithoutAnAnswer) {
    FaultyExchange exchange("close-before");
    EXPECT_EQ(exchange.Client().ReadToEnd(), "");
    EXPECT_FALSE(exchange.Client().WasReset());
}

TEST(FaultsTest, CloseAfterSendsTheFirstBytesAlone) {
    FaultyExchange exchange("close-after=100");
    EXPECT_EQ(exchange.Client().ReadToEnd(), stopAnswer.substr(0, 100));
    EXPECT_FALSE(exchange.Client().WasReset());
}

TEST(FaultsTest, ResetBreaksTheConnectionOff) {
    FaultyExchange exchange("reset");
    EXPECT_EQ(exchange.Client().ReadToEnd(), "");
    EXPECT_TRUE(exchange.Client().WasReset());
}

TEST(FaultsTest, NoAnswerLeavesTheClientWaiting) {
    const RunningSimulator simulator({"--fault", "1:no-answer"});
    Peer waiting(simulator.Port());
    waiting.SendCommand(stopCommand);
    EXPECT_EQ(Exchange(simulator.Port(), stopCommand), stopBody);
    EXPECT_FALSE(waiting.HasBytes());
    EXPECT_TRUE(waiting.IsOpen());
    waiting.FinishSending();
    EXPECT_EQ(waiting.ReadToEnd(), "");
}

TEST(FaultsTest, ADelayedAnswerComesLateAndHoldsNobodyUp) {
    const auto start = std::chrono::steady_clock::now();
    const RunningSimulator simulator({"--fault", "1:delay=500"});
    Peer late(simulator.Port());
    late.SendCommand(stopCommand);
    EXPECT_EQ(Exchange(simulator.Port(), stopCommand), stopBody);
    EXPECT_EQ(late.ReadToEnd(), stopAnswer);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 500ms);
}

TEST(FaultsTest, SplitMarkSendsTheMarkApart) {
    FaultyExchange exchange("split-mark=1000");
    EXPECT_EQ(exchange.Client().Read(stopAnswer.size() - 4),
              stopAnswer.substr(0, stopAnswer.size() - 4));
    EXPECT_FALSE(exchange.Client().HasBytes());
    EXPECT_EQ(exchange.Client().ReadToEnd(), "Done");
}

TEST(FaultsTest, DripSendsByteAfterByte) {
    const auto start = std::chrono::steady_clock::now();
    FaultyExchange exchange("drip=2");
    EXPECT_EQ(exchange.Client().ReadToEnd(), stopAnswer);
    const auto pauses = static_cast<int>(stopAnswer.size()) - 1;
    EXPECT_GE(std::chrono::steady_clock::now() - start, pauses * 2ms);
}

TEST(FaultsTest, NoMarkLeavesTheMarkOutAndCloses) {
    FaultyExchange exchange("no-mark");
    EXPECT_EQ(exchange.Body(), stopBody.substr(0, stopBody.size() - 4));
    EXPECT_FALSE(exchange.Client().WasReset());
}

TEST(FaultsTest, CrLfEndsAllLines) {
    EXPECT_EQ(FaultyExchange("crlf").Body(), "Sarvex tool INFO\r\nNothing was running.\r\n"
                                             "Sarvex tool RETURN CODE\r\n0\r\nDone");
}

TEST(FaultsTest, NulPutsANulIntoTheBody) {
    std::string expected = stopBody;
    expected.insert(20, 1, '\0');
    EXPECT_EQ(FaultyExchange("nul=20").Body(), expected);
}

TEST(FaultsTest, RawSendsTheBytesOfTheFileAsTheyAre) {
    const TestSupport::TemporaryDirectory directory;
    const std::string bytes("no head\r\n\0\x1A\xFF, no mark\n", 23);
    TestSupport::WriteBytes(directory.Path("answer.bin"), bytes);
    FaultyExchange exchange("raw=" + directory.Path("answer.bin"));
    EXPECT_EQ(exchange.Client().ReadToEnd(), bytes);
}

TEST(FaultsTest, MissingChainLeavesOnePowerOut) {
    EXPECT_EQ(FaultyExchange("missing-chain=A", startCommand).Body(),
              BodyWith(startLines + targetB));
    EXPECT_EQ(FaultyExchange("missing-chain=B", startCommand).Body(),
              BodyWith(startLines + targetA));
}

TEST(FaultsTest, UncalibratedLeavesAllPowersOut) {
    EXPECT_EQ(FaultyExchange("uncalibrated", startCommand).Body(),
              BodyWith(startLines + "The transmitter is uncalibrated.\n"));
}

TEST(FaultsTest, ReturnCodeIsGivenAsItIs) {
    EXPECT_EQ(FaultyExchange("return-code=12abc").Body(),
              "Sarvex tool INFO\nNothing was running.\nSarvex tool RETURN CODE\n12abc\nDone");
}

TEST(FaultsTest, BigAddsSoManyBytes) {
    const std::string body = FaultyExchange("big=10000000").Body();
    EXPECT_EQ(body.size(), stopBody.size() + 10'000'000);
    EXPECT_EQ(body.substr(0, 17 + 81), "Sarvex tool INFO\n" + std::string(79, '.') + "\n.");
    EXPECT_EQ(body.substr(body.size() - 50), stopBody.substr(stopBody.size() - 50));
}

TEST(FaultsTest, LongLineAddsALineOfSoManyBytes) {
    EXPECT_EQ(FaultyExchange("long-line=5000000").Body(),
              BodyWith(std::string(5'000'000, '.') + "\nNothing was running.\n"));
}

TEST(FaultsTest, OnlyTheCommandsThatARuleNamesAreFaulty) {
    const RunningSimulator simulator(
        {"--fault", "2:return-code=22", "--fault", "text=-wifi-get-mcc:return-code=33"});
    for (const auto& [command, code] :
         {std::pair("CLI -1 ", "0"), std::pair("CLI -1 ", "22"), std::pair("CLI -1 ", "0"),
          std::pair("CLI -1 -wifi-get-mcc", "33")}) {
        SCOPED_TRACE(command);
        EXPECT_THAT(Exchange(simulator.Port(), command),
                    HasSubstr(std::string("RETURN CODE\n") + code + "\nDone"));
    }
}

} // namespace VemoSimulator
