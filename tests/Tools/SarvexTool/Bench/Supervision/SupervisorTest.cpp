#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

#include <gmock/gmock.h>

#include <deque>
#include <set>
#include <utility>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string done = "Sarvex tool RETURN CODE\n0\nDone";
const std::string refusal = "Sarvex tool ERROR\nno\nSarvex tool RETURN CODE\n2\nDone";

const char* NameOf(Timer timer) {
    constexpr const char* names[] = {"pause", "wait", "client", "stop"};
    return names[static_cast<int>(timer)];
}

SupervisorOptions Retrying(unsigned retries) {
    SupervisorOptions options;
    options.retries = retries;
    return options;
}

/// Notes what it is asked for, in the order of the calls. Timers other than those that a test is
/// about are left out.
class RecordingHands : public ISupervisorHands {
public:
    /// What was asked for since the last call.
    std::vector<std::string> Taken() { return std::exchange(m_calls, {}); }

    void ConnectIdle() override { m_calls.emplace_back("connect idle"); }
    void DropIdle() override { m_calls.emplace_back("drop idle"); }
    void PassOn(const std::string& request) override { m_calls.push_back("pass on " + request); }
    void Send(const std::vector<std::string>& command) override {
        std::string text = "send";
        for (const std::string& argument : command)
            text += " " + argument;
        m_calls.push_back(text);
    }
    void AbandonExchange() override { m_calls.emplace_back("abandon"); }
    void Reply(const std::string& answer) override {
        m_calls.emplace_back(answer.empty() ? "reply nothing" : "reply");
    }
    std::optional<Segment> StartClient() override {
        if (segments.empty())
            return std::nullopt;
        m_calls.emplace_back("start client");
        const Segment segment = segments.front();
        segments.pop_front();
        return segment;
    }
    void KillClient() override { m_calls.emplace_back("kill client"); }
    OwnSettings SettingsOf(LineNumber line) override {
        OwnSettings own;
        own.at(static_cast<std::size_t>(Setting::Channel)) = std::to_string(line);
        return own;
    }
    std::optional<std::string> TakeRow() override { return std::exchange(row, std::nullopt); }
    void Keep(const FinishedLine& line) override {
        m_calls.push_back("keep " + std::to_string(line.line) + " " +
                          Bench::NameOf(line.outcome.a.outcome) + " " + line.outcome.a.text);
    }
    void KeepUnfinished(const std::string& unfinished) override {
        m_calls.push_back("keep unfinished " + unfinished);
    }
    void NoteTransmission() override {}
    void NoteFirstCommand(const Answer& answer) override {
        m_calls.push_back("first command " + answer.words);
    }
    void NoteMacType(const Answer& answer) override { macTypes.push_back(answer.words); }
    void NoteCountryCode(const Answer& answer) override { countryCodes.push_back(answer.words); }
    void SetTimer(Timer timer, std::chrono::milliseconds time) override {
        timers.insert(timer);
        if (timer != Timer::Client)
            m_calls.push_back(std::string(NameOf(timer)) + " " + std::to_string(time.count()));
    }
    void CancelTimer(Timer timer) override { timers.erase(timer); }
    void Note(const std::string& text) override { notes.push_back(text); }
    void ShowState(RunState::Kind kind, const std::string& detail) override {
        state = std::string(Bench::NameOf(kind)) + ": " + detail;
    }
    void ShowLine(LineNumber line) override { shownLine = line; }

    std::deque<Segment> segments{{2, 2}};
    std::optional<std::string> row;
    std::vector<std::string> macTypes;
    std::vector<std::string> countryCodes;
    std::vector<std::string> notes;
    std::string state;
    LineNumber shownLine = 0;
    /// Those that were set and not cancelled.
    std::set<Timer> timers;

private:
    std::vector<std::string> m_calls;
};

class SupervisorTest : public testing::Test {
protected:
    Supervisor& Start(const SupervisorOptions& options = {}) {
        m_supervisor.emplace(options, hands);
        m_supervisor->Begin();
        return *m_supervisor;
    }

    /// The exchange under way is answered.
    void Answer(const std::string& body = done) {
        m_supervisor->ExchangeEnded({ExchangeEnd::Kind::Answered, body, ""});
    }
    void Lose() {
        m_supervisor->ExchangeEnded({ExchangeEnd::Kind::Lost, "", "closes the connection"});
    }
    void TimeOut() { m_supervisor->ExchangeEnded({ExchangeEnd::Kind::TimedOut, "", "is silent"}); }
    void Miss() { m_supervisor->ExchangeEnded({ExchangeEnd::Kind::Unreachable, "", "is away"}); }

    /// One exchange of the client, with its answer.
    void Exchange(const std::string& request, const std::string& body = done) {
        m_supervisor->ClientRequested(request);
        Answer(body);
    }

    /// Up to the first line.
    Supervisor& StartLines(const SupervisorOptions& options = {}) {
        Start(options).IdleConnected();
        for (const char* request : {"first", "mac", "mcc"})
            Exchange(request);
        hands.Taken();
        return *m_supervisor;
    }

    RecordingHands hands;

private:
    std::optional<Supervisor> m_supervisor;
};

TEST_F(SupervisorTest, LinesAreRunOneAfterTheOtherAndKeptWhenTheirRowsAreThere) {
    hands.segments = {{2, 1}, {3, 1}};
    Supervisor& supervisor = Start();
    EXPECT_THAT(hands.Taken(), ElementsAre("wait 300000", "connect idle"));
    supervisor.IdleConnected();
    EXPECT_THAT(hands.Taken(), ElementsAre("start client"));
    Exchange("first");
    Exchange("mac", "Mac Type: 5\n" + done);
    Exchange("mcc", "Current MCC: US\n" + done);
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on first", "reply", "pass on mac", "reply",
                                           "pass on mcc", "reply"));
    EXPECT_THAT(hands.macTypes, ElementsAre("Mac Type: 5"));
    EXPECT_THAT(hands.countryCodes, ElementsAre("Current MCC: US"));
    Exchange("start");
    EXPECT_EQ(hands.shownLine, 2U);
    Exchange("stop");
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start", "reply", "pass on stop", "reply"));
    hands.row = "5,12,NA\n";
    supervisor.ClientEnded(0, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 2 measured ", "start client"));
    for (const char* request : {"first", "mac", "mcc", "start", "stop"})
        Exchange(request);
    hands.Taken();
    hands.row = "5,NA,NA\n";
    supervisor.ClientEnded(0, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 3 chain not active ", "abandon", "drop idle"));
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Complete);
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, RowIsTakenWhenTheNextLineBegins) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.Taken();
    hands.row = "5,12,12\n";
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 2 measured ", "pass on start"));
}

TEST_F(SupervisorTest, FileWithoutLinesIsComplete) {
    hands.segments = {{2, 0}};
    Supervisor& supervisor = StartLines();
    supervisor.ClientEnded(0, "");
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Complete);
}

TEST_F(SupervisorTest, WhatIsNoAnswerIsRepeatedAfterAStopWhileTheClientWaits) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    TimeOut();
    EXPECT_EQ(hands.state, "repeating: is silent");
    Answer();
    Lose();
    Answer();
    Answer();
    EXPECT_EQ(hands.state, "measuring: ");
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start", "send -wifi-stop", "pass on start",
                                           "send -wifi-stop", "pass on start", "reply"));
}

TEST_F(SupervisorTest, LineWhoseRepeatsAllFailIsRecordedSo) {
    Supervisor& supervisor = StartLines(Retrying(1));
    supervisor.ClientRequested("start");
    Lose();
    Answer();
    TimeOut();
    Answer();
    Exchange("stop");
    EXPECT_THAT(hands.Taken(),
                ElementsAre("pass on start", "send -wifi-stop", "pass on start", "send -wifi-stop",
                            "reply nothing", "pass on stop", "reply"));
    hands.row = "5,NA,NA\n";
    supervisor.ClientRequested("start");
    EXPECT_EQ(hands.Taken().front(), "keep 2 time-out is silent");
}

TEST_F(SupervisorTest, QuestionWithoutAnAnswerEndsTheRun) {
    Supervisor& supervisor = Start(Retrying(0));
    supervisor.IdleConnected();
    Exchange("first");
    supervisor.ClientRequested("mac");
    Lose();
    Answer();
    supervisor.ClientEnded(1, "");
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().reason, "there is no answer to the question for the MAC type: the "
                                       "daemon closes the connection");
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, StopThatIsNotAnsweredIsRepeatedByItself) {
    Supervisor& supervisor = StartLines(Retrying(1));
    Exchange("start");
    hands.Taken();
    supervisor.ClientRequested("stop");
    Lose();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on stop", "pass on stop", "reply"));
}

TEST_F(SupervisorTest, DaemonThatAnswersNoStopCountsAsGoneAndTheLineGoesOnWhenItIsBack) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.row = "5,12,12\n";
    supervisor.ClientRequested("start");
    hands.Taken();
    Lose();
    Lose();
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-stop", "wait 300000", "pause 1000"));
    EXPECT_EQ(hands.state, "waiting for the daemon: closes the connection");
    supervisor.TimerExpired(Timer::Pause);
    supervisor.IdleFailed("is away");
    supervisor.TimerExpired(Timer::Pause);
    supervisor.IdleConnected();
    TimeOut();
    EXPECT_THAT(hands.Taken(), ElementsAre("drop idle", "connect idle", "pause 1000", "drop idle",
                                           "connect idle", "send -wifi-stop", "pause 1000"));
    supervisor.TimerExpired(Timer::Pause);
    supervisor.IdleConnected();
    Answer();
    Answer();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("drop idle", "connect idle", "send -wifi-stop",
                                           "send -wifi-channel 2", "pass on start", "reply"));
}

TEST_F(SupervisorTest, DaemonThatStaysAwayEndsTheRun) {
    Supervisor& supervisor = Start();
    supervisor.IdleFailed("cannot be reached");
    supervisor.TimerExpired(Timer::Wait);
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Early);
    EXPECT_EQ(supervisor.End().reason, "the daemon is gone: it cannot be reached");
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, LineAtWhichTheDaemonDiesEachTimeEndsTheRun) {
    Supervisor& supervisor = StartLines(Retrying(1));
    supervisor.ClientRequested("start");
    for (int time = 0; time < 2; ++time) {
        Miss();
        supervisor.TimerExpired(Timer::Pause);
        supervisor.IdleConnected();
        Answer();
    }
    Miss();
    supervisor.ClientEnded(1, "");
    EXPECT_EQ(hands.Taken().back(), "send -wifi-stop");
    supervisor.TimerExpired(Timer::Stop);
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().reason,
              "the daemon went away 3 times at line 2: at last it is away");
    EXPECT_TRUE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, SettingsAreSentAgainWhenTheUnusedConnectionHasEnded) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    supervisor.IdleLost();
    supervisor.IdleConnected();
    hands.row = "5,12,12\n";
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 2 measured ", "send -wifi-channel 2"));
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start"));
}

TEST_F(SupervisorTest, LineBeginsWhenTheUnusedConnectionIsThereAgain) {
    Supervisor& supervisor = StartLines();
    supervisor.IdleLost();
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), testing::IsEmpty());
    supervisor.IdleConnected();
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start"));
}

TEST_F(SupervisorTest, DaemonThatTakesNoUnusedConnectionIsGone) {
    Supervisor& supervisor = StartLines();
    supervisor.IdleLost();
    supervisor.IdleFailed("is away");
    hands.Taken();
    supervisor.ClientRequested("start");
    supervisor.IdleFailed("is still away");
    EXPECT_THAT(hands.Taken(), ElementsAre("connect idle", "wait 300000", "pause 1000"));
    EXPECT_EQ(hands.state, "waiting for the daemon: is still away");
    supervisor.TimerExpired(Timer::Wait);
    supervisor.ClientEnded(9, "");
    EXPECT_EQ(supervisor.End().reason, "the daemon is gone: it is still away");
}

// It may have come to a daemon that was restarted after the last look at the connection.
TEST_F(SupervisorTest, AnswerToAStartDoesNotCountWhenTheUnusedConnectionEndedMeanwhile) {
    SupervisorOptions options;
    options.settings.Accept(SettingsIn({"-wifi-band", "6"}));
    Supervisor& supervisor = StartLines(options);
    supervisor.ClientRequested("start");
    Answer();
    supervisor.IdleLost();
    hands.Taken();
    Answer();
    EXPECT_EQ(hands.state, "repeating: may have been restarted");
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-stop"));
    Answer();
    supervisor.IdleConnected();
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-band 6"));
    Answer();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start", "reply"));
}

TEST_F(SupervisorTest, SettingsGoOutOnceMoreWhenTheUnusedConnectionEndedMeanwhile) {
    SupervisorOptions options;
    options.settings.Accept(SettingsIn({"-wifi-band", "6"}));
    Supervisor& supervisor = StartLines(options);
    supervisor.ClientRequested("start");
    supervisor.IdleLost();
    supervisor.IdleConnected();
    hands.Taken();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-band 6"));
    Answer();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("pass on start", "reply"));
}

TEST_F(SupervisorTest, SettingsOfARefusedLineAreNotSentAgain) {
    Supervisor& supervisor = StartLines();
    Exchange("start", refusal);
    Exchange("stop");
    supervisor.IdleLost();
    supervisor.IdleConnected();
    hands.row = "5,NA,NA\n";
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 2 refused no", "pass on start"));
}

TEST_F(SupervisorTest, SettingsThatTheDaemonNoLongerTakesEndTheRun) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    supervisor.IdleLost();
    supervisor.IdleConnected();
    hands.row = "5,12,12\n";
    supervisor.ClientRequested("start");
    Answer(refusal);
    EXPECT_EQ(hands.Taken().back(), "abandon");
    supervisor.ClientEnded(1, "");
    EXPECT_EQ(supervisor.End().reason,
              "the daemon refuses settings that it had accepted before: no");
}

TEST_F(SupervisorTest, DaemonThatClosesUnusedConnectionsGetsTheSettingsForEachSegment) {
    hands.segments = {{2, 1}, {3, 1}};
    Supervisor& supervisor = Start();
    supervisor.IdleConnected();
    for (const char* request : {"first", "mac"}) {
        Exchange(request);
        supervisor.IdleLost();
        supervisor.IdleConnected();
    }
    Exchange("mcc");
    EXPECT_FALSE(supervisor.ClosesIdleConnections());
    supervisor.IdleLost();
    EXPECT_TRUE(supervisor.ClosesIdleConnections());
    EXPECT_EQ(hands.notes.size(), 1U);
    Exchange("start");
    Exchange("stop");
    hands.row = "5,12,12\n";
    supervisor.ClientEnded(0, "");
    for (const char* request : {"first", "mac", "mcc"})
        Exchange(request);
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-channel 2"));
}

TEST_F(SupervisorTest, ConnectionThatIsLostAtOnceIsMadeAnewForTheNextStart) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.Taken();
    supervisor.IdleLost();
    for (int time = 0; time < 5; ++time) {
        supervisor.IdleConnected();
        supervisor.IdleLost();
    }
    EXPECT_THAT(hands.Taken(), ElementsAre("connect idle"));
    EXPECT_FALSE(supervisor.ClosesIdleConnections());
    hands.row = "5,12,12\n";
    supervisor.ClientRequested("start");
    supervisor.IdleConnected();
    EXPECT_THAT(hands.Taken(),
                ElementsAre("keep 2 measured ", "connect idle", "send -wifi-channel 2"));
}

// Else a start that takes longer than such a connection would be repeated for ever.
TEST_F(SupervisorTest, StartsThatOutlastUnusedConnectionsAreRepeatedAFewTimesOnly) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    for (int time = 0; time < 2; ++time) {
        supervisor.IdleLost();
        supervisor.IdleConnected();
        supervisor.IdleLost();
        Answer();
        EXPECT_EQ(hands.Taken().back(), "send -wifi-stop");
        Answer();
        supervisor.IdleConnected();
    }
    supervisor.IdleLost();
    EXPECT_TRUE(supervisor.ClosesIdleConnections());
    Answer();
    Answer();
    hands.Taken();
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("reply"));
}

TEST_F(SupervisorTest, FirstCommandOfTheUserCountsWithItsSettingsAndItsStart) {
    SupervisorOptions options;
    options.firstCommand = {"-wifi-band", "6", "-wifi-start"};
    Supervisor& supervisor = Start(options);
    supervisor.IdleConnected();
    Exchange("first");
    EXPECT_THAT(hands.Taken(),
                ElementsAre("wait 300000", "connect idle", "start client", "pass on first",
                            "first command return code 0", "reply"));
    supervisor.IdleLost();
    supervisor.IdleConnected();
    Exchange("mac");
    Exchange("mcc");
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-band 6"));
    supervisor.Interrupted();
    EXPECT_THAT(hands.Taken(),
                ElementsAre("kill client", "abandon", "stop 10000", "send -wifi-stop"));
}

TEST_F(SupervisorTest, InterruptionBetweenLinesKeepsTheRowAndEndsWithoutAStop) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.Taken();
    supervisor.Interrupted();
    EXPECT_THAT(hands.Taken(), ElementsAre("kill client", "abandon"));
    hands.row = "5,12,12\n";
    supervisor.ClientEnded(9, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep 2 measured ", "drop idle"));
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Interrupted);
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, StartUnderWayIsAwaitedBeforeTheLastStop) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    hands.Taken();
    supervisor.Interrupted();
    supervisor.ClientEnded(9, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("kill client", "stop 10000"));
    Answer();
    EXPECT_THAT(hands.Taken(), ElementsAre("stop 10000", "send -wifi-stop"));
    Answer();
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, StartThatIsNotAnsweredInTimeIsStoppedAllTheSame) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    supervisor.Interrupted();
    supervisor.ClientEnded(9, "");
    hands.Taken();
    supervisor.TimerExpired(Timer::Stop);
    EXPECT_THAT(hands.Taken(), ElementsAre("abandon", "stop 10000", "send -wifi-stop"));
}

TEST_F(SupervisorTest, LastStopIsRepeatedUntilItsTimeIsOver) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    supervisor.Interrupted();
    supervisor.ClientEnded(9, "");
    hands.Taken();
    Answer("Stopped.\nDone");
    supervisor.TimerExpired(Timer::Pause);
    Miss();
    EXPECT_THAT(hands.Taken(), ElementsAre("pause 250", "send -wifi-stop", "pause 250"));
    supervisor.TimerExpired(Timer::Stop);
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_TRUE(supervisor.End().mayTransmit);
    EXPECT_EQ(supervisor.End().stopProblem, "is away");
}

TEST_F(SupervisorTest, StopWithoutTheReturnCodeZeroIsNotConfirmed) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    supervisor.Interrupted();
    supervisor.ClientEnded(9, "");
    Answer(refusal);
    supervisor.TimerExpired(Timer::Stop);
    EXPECT_TRUE(supervisor.End().mayTransmit);
    EXPECT_EQ(supervisor.End().stopProblem, "answered without the return code 0 (no)");
}

TEST_F(SupervisorTest, StopUnderWayIsTheLastOne) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    supervisor.ClientRequested("stop");
    hands.Taken();
    supervisor.Interrupted();
    supervisor.ClientEnded(9, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("kill client", "stop 10000"));
    Answer();
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_FALSE(supervisor.End().mayTransmit);
}

TEST_F(SupervisorTest, SecondInterruptionEndsTheRunAtOnce) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    supervisor.Interrupted();
    EXPECT_FALSE(supervisor.HasEnded());
    supervisor.Interrupted();
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_TRUE(supervisor.End().mayTransmit);
    EXPECT_EQ(supervisor.End().stopProblem, "was not waited for");
}

TEST_F(SupervisorTest, ClosingConsoleLeavesTimeForOneStopOnly) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    hands.Taken();
    supervisor.Closing();
    EXPECT_THAT(hands.Taken(), ElementsAre("abandon", "kill client", "abandon", "stop 3000",
                                           "send -wifi-stop", "stop 3000"));
}

TEST_F(SupervisorTest, ConsoleThatClosesAfterTheTimeOfTheStopsGetsOneStopMore) {
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("start");
    supervisor.Interrupted();
    Answer();
    Miss();
    EXPECT_TRUE(hands.timers.contains(Timer::Pause));
    // The client has not ended yet.
    supervisor.TimerExpired(Timer::Stop);
    hands.Taken();
    supervisor.Closing();
    EXPECT_THAT(hands.Taken(), ElementsAre("abandon", "stop 3000", "send -wifi-stop"));
    EXPECT_FALSE(hands.timers.contains(Timer::Pause)) << "it would send one beside it";
}

TEST_F(SupervisorTest, ClientThatDiesIsFollowedByAStopAndTheLineIsNamed) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.row = "5,12,12\n";
    Exchange("start");
    hands.Taken();
    supervisor.ClientEnded(256, "no number");
    EXPECT_THAT(hands.Taken(), ElementsAre("abandon", "stop 10000", "send -wifi-stop"));
    Answer();
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Early);
    EXPECT_EQ(supervisor.End().reason, "the client ended with code 256 at line 3: no number");
}

TEST_F(SupervisorTest, RowAtWhichTheClientFailsIsKeptAsUnfinished) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    hands.Taken();
    hands.row = "A+B,12,12\n";
    supervisor.ClientEnded(1, "");
    EXPECT_THAT(hands.Taken(), ElementsAre("keep unfinished A+B,12,12\n", "abandon", "drop idle"));
    EXPECT_EQ(supervisor.End().kind, RunEnd::Kind::Early);
}

TEST_F(SupervisorTest, ClientThatDoesNotGoOnEndsTheRun) {
    Supervisor& supervisor = StartLines();
    supervisor.TimerExpired(Timer::Client);
    EXPECT_THAT(hands.Taken(), testing::IsEmpty());
    supervisor.TimerExpired(Timer::Client);
    EXPECT_THAT(hands.Taken(), ElementsAre("kill client", "abandon"));
    supervisor.ClientEnded(9, "");
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_THAT(supervisor.End().reason, HasSubstr("does not go on"));
}

TEST_F(SupervisorTest, ClientThatWritesNoRowEndsTheRun) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    Exchange("stop");
    supervisor.ClientRequested("start");
    EXPECT_EQ(supervisor.HasEnded(), false);
    supervisor.ClientEnded(9, "");
    EXPECT_EQ(supervisor.End().reason, "the client has written no row for line 2");
}

TEST_F(SupervisorTest, ClientThatAsksTooMuchEndsTheRun) {
    hands.segments = {{2, 0}};
    Supervisor& supervisor = StartLines();
    supervisor.ClientRequested("more");
    supervisor.ClientEnded(9, "");
    EXPECT_THAT(supervisor.End().reason, HasSubstr("a command too many"));
}

TEST_F(SupervisorTest, ResumedRunStopsFirstAndRestoresTheSettings) {
    SupervisorOptions options;
    options.mayTransmit = true;
    options.settings.Accept(SettingsIn({"-wifi-band", "6"}));
    Supervisor& supervisor = Start(options);
    supervisor.IdleConnected();
    EXPECT_THAT(hands.Taken(), ElementsAre("wait 300000", "connect idle", "send -wifi-stop"));
    Answer();
    for (const char* request : {"first", "mac", "mcc"})
        Exchange(request);
    hands.Taken();
    supervisor.ClientRequested("start");
    EXPECT_THAT(hands.Taken(), ElementsAre("send -wifi-band 6"));
}

TEST_F(SupervisorTest, ErrorOfTheHandsEndsTheRunWithAStop) {
    Supervisor& supervisor = StartLines();
    Exchange("start");
    hands.Taken();
    supervisor.EndEarly("the disk is full");
    EXPECT_THAT(hands.Taken(),
                ElementsAre("kill client", "abandon", "stop 10000", "send -wifi-stop"));
    supervisor.EndEarly("and so it stays");
    EXPECT_THAT(hands.notes, ElementsAre("and so it stays"));
    supervisor.ClientEnded(9, "");
    Answer();
    EXPECT_TRUE(supervisor.HasEnded());
    EXPECT_EQ(supervisor.End().reason, "the disk is full");
    hands.Taken();
    supervisor.Closing();
    supervisor.Interrupted();
    EXPECT_THAT(hands.Taken(), testing::IsEmpty());
}

} // namespace
} // namespace Bench
