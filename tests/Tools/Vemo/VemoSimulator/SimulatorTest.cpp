#include "Tools/Vemo/VemoSimulator/Simulator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <sstream>

namespace VemoSimulator {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

class SimulatorTest : public testing::Test {
protected:
    Delivery Send(const std::string& command) {
        return m_simulator->Handle({"POST", "/api/oemtools/command", {}, command});
    }

    void AddFault(const std::string& rule) {
        m_settings.faults.emplace_back(rule);
        m_simulator.emplace(m_settings, &m_requestLog, m_problemLog);
    }

    std::ostringstream m_requestLog;
    std::ostringstream m_problemLog;
    Simulator::Settings m_settings;
    std::optional<Simulator> m_simulator{std::in_place, m_settings, &m_requestLog, m_problemLog};
};

} // namespace

TEST_F(SimulatorTest, ACommandGetsTheAnswerOfTheDevice) {
    const Delivery delivery = Send("CLI -1 -vemo  -wifi-get-mcc");
    EXPECT_EQ(delivery.bytes,
              "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n"
              "Content-Length: 63\r\nConnection: close\r\n\r\n"
              "Sarvex tool INFO\nCurrent MCC: US\nSarvex tool RETURN CODE\n0\nDone");
    EXPECT_EQ(delivery.ending, Ending::HalfClose);
    EXPECT_FALSE(delivery.endsProgram);
    EXPECT_EQ(m_problemLog.str(), "");
}

TEST_F(SimulatorTest, ExitEndsTheProgramAfterTheAnswer) {
    const Delivery delivery = Send("CLI -1  -exit");
    EXPECT_TRUE(delivery.endsProgram);
    EXPECT_THAT(delivery.bytes, EndsWith("Done"));
}

TEST_F(SimulatorTest, RequestsThatAreNoCommandAreRefused) {
    const struct {
        Request request;
        const char* status;
        const char* text;
    } rows[] = {
        {{"POST", "/", {}, "CLI -1 -exit"},
         "404 Not Found",
         "Commands go to /api/oemtools/command."},
        {{"POST", "/api/oemtools/command?x", {}, "CLI -1 -exit"},
         "404 Not Found",
         "Commands go to /api/oemtools/command."},
        {{"GET", "/api/oemtools/command", {}, "CLI -1 -exit"},
         "400 Bad Request",
         "A command comes with the method POST."},
        {{"POST", "/api/oemtools/command", {}, "-exit"},
         "400 Bad Request",
         "A command begins with \"CLI -1 \"."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        m_problemLog.str("");
        const Delivery delivery = m_simulator->Handle(row.request);
        EXPECT_THAT(delivery.bytes, StartsWith(std::string("HTTP/1.1 ") + row.status + "\r\n"));
        EXPECT_THAT(delivery.bytes, EndsWith(std::string("\r\n\r\n") + row.text + "\n"));
        EXPECT_FALSE(delivery.endsProgram);
        EXPECT_EQ(m_problemLog.str(), std::string("Request refused: ") + row.text + "\n");
    }
}

TEST_F(SimulatorTest, BytesThatAreNoRequestAreRefused) {
    const Delivery delivery = m_simulator->HandleInvalid(400, "bad version");
    EXPECT_THAT(delivery.bytes, EndsWith("\r\n\r\nThis is no valid request: bad version.\n"));
    EXPECT_EQ(m_problemLog.str(), "Request refused: This is no valid request: bad version.\n");
}

TEST_F(SimulatorTest, OnlyCommandsCountForFaultsByNumber) {
    AddFault("2:return-code=77");
    m_simulator->HandleInvalid(400, "bad version");
    m_simulator->Handle({"GET", "/", {}, ""});
    EXPECT_THAT(Send("CLI -1 ").bytes, HasSubstr("RETURN CODE\n0\n"));
    m_simulator->Handle({"GET", "/", {}, ""});
    EXPECT_THAT(Send("CLI -1 ").bytes, HasSubstr("RETURN CODE\n77\n"));
    EXPECT_THAT(Send("CLI -1 ").bytes, HasSubstr("RETURN CODE\n0\n"));
}

TEST_F(SimulatorTest, AllRulesThatMatchApplyInOrder) {
    AddFault("*:return-code=1");
    AddFault("text=-wifi-stop:return-code=2");
    AddFault("text=-wifi-stop:crlf");
    EXPECT_THAT(Send("CLI -1 -wifi-stop").bytes, HasSubstr("RETURN CODE\r\n2\r\n"));
    EXPECT_THAT(Send("CLI -1 -wifi-get-mcc").bytes, HasSubstr("RETURN CODE\n1\n"));
}

TEST_F(SimulatorTest, TheLatencyDelaysCommandsAlone) {
    m_settings.latency = 30ms;
    AddFault("2:delay=5");
    EXPECT_EQ(Send("CLI -1 ").delay, 30ms);
    EXPECT_EQ(Send("CLI -1 ").delay, 35ms);
    EXPECT_EQ(m_simulator->Handle({"GET", "/", {}, ""}).delay, 0ms);
}

TEST_F(SimulatorTest, TheSamePowerIsToldWhateverCameBefore) {
    const std::string command = "CLI -1 -vemo -wifi-channel 40 -wifi-calibrate-tx -wifi-start";
    const std::string first = Send(command).bytes;
    Send("CLI -1 -vemo -wifi-channel 44 -wifi-calibrate-tx -wifi-start");
    EXPECT_EQ(Send(command).bytes, first);
    m_settings.seed = 2;
    EXPECT_NE(Simulator(m_settings, nullptr, m_problemLog)
                  .Handle({"POST", "/api/oemtools/command", {}, command})
                  .bytes,
              first);
}

TEST_F(SimulatorTest, TheRequestLogHasALineForEachRequest) {
    AddFault("*:close-after=10");
    Send("CLI -1 -bogus");
    m_simulator->Handle({"GET", "/", {{"Host", "x"}}, ""});
    EXPECT_EQ(m_requestLog.str(),
              R"({"number":1,"method":"POST","target":"/api/oemtools/command",)"
              R"("command":"CLI -1 -bogus","bodyBytes":13,"headers":{},"httpStatus":200,)"
              R"("returnCode":"1","answerBytes":10,"faults":["*:close-after=10"]})"
              "\n"
              R"({"method":"GET","target":"/","command":"","bodyBytes":0,"headers":{"Host":"x"},)"
              R"("httpStatus":404,"answerBytes":129,"faults":[]})"
              "\n");
}

TEST_F(SimulatorTest, ARequestLogThatFailsIsReportedOnceAndGivenUp) {
    m_requestLog.setstate(std::ios::badbit);
    Send("CLI -1 ");
    EXPECT_THAT(Send("CLI -1 ").bytes, EndsWith("Done"));
    EXPECT_EQ(m_problemLog.str(), "The request log cannot be written; it ends here.\n");
}

TEST_F(SimulatorTest, ARecordingAnswersInPlaceOfTheDevice) {
    std::istringstream lines(R"({"command":"CLI -1 -wifi-start","answer":"1","end":"answered"})"
                             "\n"
                             R"({"command":"CLI -1 -wifi-start","answer":"2","end":"answered"})");
    m_settings.pRecording = std::make_shared<Recording>(lines, "FILE");
    AddFault("4:delay=5");
    EXPECT_EQ(Send("CLI -1 -wifi-start").bytes, "1");
    EXPECT_THAT(Send("CLI -1 -vemo -wifi-start").bytes,
                EndsWith("\r\n\r\nSarvex tool ERROR\n"
                         "The command 'CLI -1 -vemo -wifi-start' is not in FILE.\n"
                         "Sarvex tool RETURN CODE\n1\nDone"));
    EXPECT_EQ(m_problemLog.str(), "The command 'CLI -1 -vemo -wifi-start' is not in FILE.\n");
    EXPECT_EQ(Send("CLI -1 -wifi-start").bytes, "2");
    const Delivery late = Send("CLI -1 -wifi-start");
    EXPECT_EQ(late.bytes, "2");
    EXPECT_EQ(late.delay, 5ms);
}

TEST_F(SimulatorTest, ExitEndsAReplayToo) {
    std::istringstream lines(R"({"command":"CLI -1  -exit","answer":"bye","end":"answered"})");
    m_settings.pRecording = std::make_shared<Recording>(lines, "FILE");
    m_simulator.emplace(m_settings, &m_requestLog, m_problemLog);
    const Delivery recorded = Send("CLI -1  -exit");
    EXPECT_EQ(recorded.bytes, "bye");
    EXPECT_TRUE(recorded.endsProgram);
    const Delivery own = Send("CLI -1 -vemo  -Exit");
    EXPECT_THAT(own.bytes, EndsWith("The simulated daemon ends.\n"
                                    "Sarvex tool RETURN CODE\n0\nDone"));
    EXPECT_TRUE(own.endsProgram);
    EXPECT_FALSE(Send("CLI -1  -exit -wifi-stop").endsProgram);
    EXPECT_EQ(m_problemLog.str(), "The command 'CLI -1  -exit -wifi-stop' is not in FILE.\n");
}

} // namespace VemoSimulator
