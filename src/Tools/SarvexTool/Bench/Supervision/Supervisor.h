#pragma once

#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Core/RunProgress.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"
#include "Tools/SarvexTool/Bench/Supervision/ClientExchanges.h"
#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"
#include "Tools/SarvexTool/Bench/Supervision/IdleWatch.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// How an exchange with the daemon ended.
struct ExchangeEnd {
    enum class Kind : std::uint8_t {
        /// With a whole answer: one with the end mark or a return code.
        Answered,
        /// Nothing came for the time-out.
        TimedOut,
        /// The connection was broken, or closed too early.
        Lost,
        /// There was no connection.
        Unreachable
    };

    Kind kind = Kind::Answered;
    /// All that came, as it came.
    std::string bytes;
    /// What went wrong, without an end mark; empty for Answered.
    std::string words;
};

/// The one-shot timers of a supervisor.
enum class Timer : std::uint8_t {
    /// Until the next try to reach the daemon or to stop the transmission.
    Pause,
    /// How long the run waits for a daemon that is gone.
    Wait,
    /// How long the client may take between two of its exchanges.
    Client,
    /// How long the last answer, and then the last stop, may take.
    Stop
};

/// What a supervisor does to the world. Nothing here blocks for long; what takes time ends in one
/// of the supervisor's events. What throws an exception ends the run.
class ISupervisorHands {
public:
    virtual ~ISupervisorHands() = default;

    /// Opens the connection to the daemon over which nothing is sent; ends in IdleConnected or
    /// IdleFailed, and after the former some day in IdleLost.
    virtual void ConnectIdle() = 0;
    /// Closes it, without an event.
    virtual void DropIdle() = 0;

    /// Sends the client's request to the daemon; ends in ExchangeEnded. There is one exchange at a
    /// time.
    virtual void PassOn(const std::string& request) = 0;
    /// The same for a command of the supervisor's own.
    virtual void Send(const std::vector<std::string>& command) = 0;
    /// Ends the exchange without an event.
    virtual void AbandonExchange() = 0;
    /// Gives the client its answer; an empty one closes the connection.
    virtual void Reply(const std::string& answer) = 0;

    /// Starts a client on the next lines that are to be run; nothing when there are none left. It
    /// is the first client that gets the user's own first command.
    virtual std::optional<Segment> StartClient() = 0;
    /// Ends in ClientEnded.
    virtual void KillClient() = 0;

    /// The settings that a line of the current segment writes itself.
    virtual OwnSettings SettingsOf(LineNumber line) = 0;
    /// The next row that the client has written; nothing when it has not, or not to its end.
    virtual std::optional<std::string> TakeRow() = 0;
    /// Keeps a line so that no crash can lose it.
    virtual void Keep(const FinishedLine& line) = 0;
    /// Keeps the row of a line at which the client failed; it goes again when the run goes on.
    virtual void KeepUnfinished(const std::string& row) = 0;
    /// Makes sure that a later call knows of a transmission, before the first one.
    virtual void NoteTransmission() = 0;
    /// The answer to the user's own first command, which needs not be sent again.
    virtual void NoteFirstCommand(const Answer& answer) = 0;
    /// The answers that each client gets, for those who want to know what the device is.
    virtual void NoteMacType(const Answer& answer) = 0;
    virtual void NoteCountryCode(const Answer& answer) = 0;

    virtual void SetTimer(Timer timer, std::chrono::milliseconds time) = 0;
    virtual void CancelTimer(Timer timer) = 0;

    /// Something that the user should know at the end of the run too, without an end mark.
    virtual void Note(const std::string& text) = 0;
    /// What the run does now, for the user to watch; with what is wrong with the daemon, as in "the
    /// daemon ...".
    virtual void ShowState(RunState::Kind state, const std::string& detail) = 0;
    virtual void ShowLine(LineNumber line) = 0;
};

/// What a run is started with.
struct SupervisorOptions {
    /// How often an exchange without a whole answer is repeated.
    unsigned retries = 2;
    /// How long to wait for a daemon that is gone.
    std::chrono::milliseconds wait{std::chrono::seconds(300)};
    std::chrono::milliseconds stopTimeout{std::chrono::seconds(10)};
    /// The user's own first command, empty when it went out before.
    std::vector<std::string> firstCommand;
    /// What the daemon was set to by an earlier part of the run.
    DeviceSettings settings;
    /// Whether an earlier part of the run may have left the transmitter on.
    bool mayTransmit = false;
};

/// How a run ended.
struct RunEnd {
    enum class Kind : std::uint8_t { Complete, Early, Interrupted };

    Kind kind = Kind::Complete;
    /// Why it ended early, without an end mark.
    std::string reason;
    /// Whether the transmitter may still be on.
    bool mayTransmit = false;
    /// Why the last stop is not confirmed, as in "the daemon ...".
    std::string stopProblem;
};

/// Leads a run: decides what follows from each event. Told apart by their count, a client's
/// exchanges are the first command, the MAC type, the country code, and then a start and a stop for
/// each line.
///
/// Whatever the order of the events: once a start was passed on, the run does not end before a stop
/// was confirmed, or else says that the transmitter may be on.
class Supervisor {
public:
    /// The hands outlive the supervisor.
    Supervisor(SupervisorOptions options, ISupervisorHands& hands);

    void Begin();

    void IdleConnected();
    void IdleFailed(const std::string& words);
    void IdleLost();
    void ClientRequested(const std::string& request);
    void ExchangeEnded(const ExchangeEnd& end);
    /// A code other than 0 comes with the client's last words.
    void ClientEnded(int code, const std::string& words);
    void TimerExpired(Timer timer);
    /// Ctrl-C or the like; the second one ends the run at once.
    void Interrupted();
    /// The system ends the program in a few seconds.
    void Closing();
    /// Ends the run early for a reason of the caller's, for example an error of the hands.
    void EndEarly(const std::string& reason);

    bool HasEnded() const { return m_hasEnded; }
    const RunEnd& End() const { return m_end; }
    /// Whether the daemon closes connections that are not used.
    bool ClosesIdleConnections() const { return m_idle.ClosesIdle(); }

private:
    /// Which exchange the supervisor waits for.
    enum class Doing : std::uint8_t {
        Nothing,
        WaitingForDaemon,
        ConnectingIdle,
        StoppingAfterWait,
        PassingOn,
        Restoring,
        StoppingBeforeRepeat,
        AwaitingLastAnswer,
        StoppingLast
    };

    /// The client's exchange that is not answered yet.
    struct Request {
        ExchangeKind kind{};
        std::string bytes;
        unsigned failures = 0;
        unsigned timesGone = 0;
    };

    /// The line from its start until its row is kept.
    struct RunningLine {
        LineNumber line = 0;
        OwnSettings own;
        /// What the device is to be set to: what it has accepted so far, and the line's own.
        OwnSettings expected;
        std::optional<Answer> answer;
        /// Why there is no answer.
        ChainOutcome failure;
        bool isStopped = false;
    };

    void ConnectIdle();
    void WaitForDaemon();
    void DaemonGone(const std::string& words);
    void DaemonBack();

    void StartNextClient();
    void BeginLine();
    void TryRequest();
    bool StartsTransmission(ExchangeKind kind) const;
    void PassRequestOn();
    void SendStop(Doing doing);

    void RequestEnded(const ExchangeEnd& end);
    void RestoreEnded(const ExchangeEnd& end);
    void StopBeforeRepeatEnded(const ExchangeEnd& end);
    void StopAfterWaitEnded(const ExchangeEnd& end);
    void LastStopEnded(const ExchangeEnd& end);
    void TakeAnswer(const std::string& bytes);
    void TakeFirstAnswer(const Answer& answer);
    bool MayBeOfAnother() const;
    void RepeatStart();
    void RepeatAfter(const ExchangeEnd& end);
    void GiveUp();
    void ReplyToClient(const std::string& bytes);
    void NoteStop(const ExchangeEnd& end);

    bool KeepLine();
    void RequireRow();

    void EndRun(RunEnd::Kind kind, const std::string& reason);
    void EndTransmission();
    void StopLast();
    void EndIfAllIsDone();
    /// Where the run is, in words.
    std::string Place() const;

    SupervisorOptions m_options;
    ISupervisorHands& m_hands;
    Doing m_doing = Doing::Nothing;

    bool m_isClientRunning = false;
    /// It was given a little more time than it may take.
    bool m_isClientLate = false;
    ClientExchanges m_exchanges;
    std::optional<Request> m_request;
    std::optional<RunningLine> m_line;

    IdleWatch m_idle;
    bool m_mayTransmit = false;
    std::string m_whyGone;

    bool m_isEnding = false;
    bool m_isInterrupted = false;
    bool m_hasEnded = false;
    RunEnd m_end;
};

} // namespace Bench
