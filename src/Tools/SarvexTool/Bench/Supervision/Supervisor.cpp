#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

#include "Tools/SarvexTool/Bench/Supervision/RowOutcome.h"

#include <utility>

namespace Bench {

namespace {

/// Between two tries to reach a daemon that is gone.
constexpr std::chrono::milliseconds waitPause(1000);
/// Between two tries to stop the last transmission.
constexpr std::chrono::milliseconds stopPause(250);
/// A client pauses for five seconds at most; one that takes longer than this does not go on.
constexpr std::chrono::milliseconds clientLimit(60'000);
constexpr std::chrono::milliseconds clientGrace(1000);
/// What the system leaves to a program whose console was closed.
constexpr std::chrono::milliseconds closingLimit(3000);

} // namespace

Supervisor::Supervisor(SupervisorOptions options, ISupervisorHands& hands)
    : m_options(std::move(options)), m_hands(hands), m_mayTransmit(m_options.mayTransmit) {}

// The daemon, there and gone.

void Supervisor::Begin() {
    m_doing = Doing::WaitingForDaemon;
    m_hands.SetTimer(Timer::Wait, m_options.wait);
    ConnectIdle();
}

void Supervisor::ConnectIdle() {
    m_idle.Connecting();
    m_hands.ConnectIdle();
}

void Supervisor::IdleConnected() {
    m_idle.Connected();
    if (m_doing == Doing::ConnectingIdle)
        return TryRequest();
    if (m_doing != Doing::WaitingForDaemon)
        return;
    if (m_mayTransmit || m_request)
        SendStop(Doing::StoppingAfterWait);
    else
        DaemonBack();
}

void Supervisor::IdleFailed(const std::string& words) {
    m_idle.Failed();
    if (m_doing == Doing::ConnectingIdle)
        return DaemonGone(words);
    if (m_doing != Doing::WaitingForDaemon)
        return;
    m_whyGone = words;
    WaitForDaemon();
}

void Supervisor::IdleLost() {
    const bool closesIdle = m_idle.ClosesIdle();
    if (m_idle.Lost() && !m_isEnding)
        ConnectIdle();
    if (m_idle.ClosesIdle() && !closesIdle)
        m_hands.Note("the daemon closes connections that are not used, so that its restart may not "
                     "show; the settings are sent again for each segment");
}

void Supervisor::WaitForDaemon() {
    m_doing = Doing::WaitingForDaemon;
    m_hands.ShowState(RunState::Kind::WaitingForDaemon, m_whyGone);
    m_hands.SetTimer(Timer::Pause, waitPause);
}

void Supervisor::DaemonGone(const std::string& words) {
    m_whyGone = words;
    m_idle.DaemonGone();
    // A line at which the daemon dies each time would keep the run waiting for ever.
    if (++m_request->timesGone > m_options.retries + 1) {
        EndEarly("the daemon went away " + std::to_string(m_request->timesGone) + " times at " +
                 Place() + ": at last it " + words);
        return;
    }
    m_hands.SetTimer(Timer::Wait, m_options.wait);
    WaitForDaemon();
}

void Supervisor::DaemonBack() {
    m_doing = Doing::Nothing;
    m_hands.CancelTimer(Timer::Wait);
    m_hands.ShowState(RunState::Kind::Measuring, "");
    if (!m_request) {
        StartNextClient();
        return;
    }
    m_request->failures = 0;
    TryRequest();
}

// The client and its requests.

void Supervisor::StartNextClient() {
    const std::optional<Segment> segment = m_hands.StartClient();
    if (!segment) {
        EndRun(RunEnd::Kind::Complete, "");
        return;
    }
    m_exchanges = ClientExchanges(*segment);
    m_isClientRunning = true;
    m_idle.BeginSegment();
    m_hands.SetTimer(Timer::Client, clientLimit);
}

void Supervisor::ClientRequested(const std::string& request) {
    if (m_isEnding)
        return;
    m_hands.CancelTimer(Timer::Client);
    m_isClientLate = false;
    if (m_request || m_exchanges.IsComplete()) {
        EndEarly("the client sends a command too many at " + Place());
        return;
    }
    if (m_exchanges.Next() == ExchangeKind::Start) {
        RequireRow();
        if (m_isEnding)
            return;
        BeginLine();
    }
    m_request = Request{m_exchanges.Next(), request};
    m_exchanges.Count();
    TryRequest();
}

void Supervisor::BeginLine() {
    m_line = RunningLine();
    m_line->line = m_exchanges.NextLine();
    m_line->own = m_hands.SettingsOf(m_line->line);
    m_line->expected = m_options.settings.With(m_line->own);
    m_hands.ShowLine(m_line->line);
}

void Supervisor::TryRequest() {
    if (m_request->kind != ExchangeKind::Start) {
        PassRequestOn();
        return;
    }
    if (m_idle.IsNeeded()) {
        m_doing = Doing::ConnectingIdle;
        if (m_idle.IsMissing())
            ConnectIdle();
        return;
    }
    const std::vector<std::string> command = m_options.settings.Command();
    const bool isToBeRestored = m_idle.IsDoubtful() && !command.empty();
    m_idle.Settle();
    if (!isToBeRestored) {
        PassRequestOn();
        return;
    }
    m_doing = Doing::Restoring;
    m_hands.Send(command);
}

bool Supervisor::StartsTransmission(ExchangeKind kind) const {
    return kind == ExchangeKind::Start ||
           (kind == ExchangeKind::FirstCommand && MayStart(m_options.firstCommand));
}

void Supervisor::PassRequestOn() {
    if (StartsTransmission(m_request->kind)) {
        m_hands.NoteTransmission();
        m_mayTransmit = true;
    }
    m_doing = Doing::PassingOn;
    m_hands.PassOn(m_request->bytes);
}

void Supervisor::SendStop(Doing doing) {
    m_doing = doing;
    m_hands.Send({"-wifi-stop"});
}

// What comes of an exchange.

void Supervisor::ExchangeEnded(const ExchangeEnd& end) {
    if (end.kind == ExchangeEnd::Kind::Answered)
        m_idle.Answered();
    else if (end.kind != ExchangeEnd::Kind::TimedOut)
        m_idle.DaemonGone();
    switch (m_doing) {
    case Doing::PassingOn:
        return RequestEnded(end);
    case Doing::Restoring:
        return RestoreEnded(end);
    case Doing::StoppingBeforeRepeat:
        return StopBeforeRepeatEnded(end);
    case Doing::StoppingAfterWait:
        return StopAfterWaitEnded(end);
    case Doing::AwaitingLastAnswer:
        return StopLast();
    case Doing::StoppingLast:
        return LastStopEnded(end);
    case Doing::Nothing:
    case Doing::WaitingForDaemon:
    case Doing::ConnectingIdle:
        return;
    }
}

void Supervisor::RequestEnded(const ExchangeEnd& end) {
    m_doing = Doing::Nothing;
    if (end.kind == ExchangeEnd::Kind::Answered && MayBeOfAnother())
        RepeatStart();
    else if (end.kind == ExchangeEnd::Kind::Answered)
        TakeAnswer(end.bytes);
    else if (end.kind == ExchangeEnd::Kind::Unreachable)
        DaemonGone(end.words);
    else
        RepeatAfter(end);
}

void Supervisor::RestoreEnded(const ExchangeEnd& end) {
    m_doing = Doing::Nothing;
    if (end.kind != ExchangeEnd::Kind::Answered) {
        m_idle.Doubt();
        if (end.kind == ExchangeEnd::Kind::Unreachable)
            DaemonGone(end.words);
        else
            RepeatAfter(end);
        return;
    }
    const Answer answer = ReadAnswer(end.bytes);
    if (MayBeOfAnother())
        TryRequest();
    else if (answer.IsAccepted())
        PassRequestOn();
    else
        EndEarly("the daemon refuses settings that it had accepted before: " + answer.words);
}

/// Whether the daemon may have been restarted after the start was begun with the settings as they
/// were: its answer tells nothing then.
bool Supervisor::MayBeOfAnother() const {
    return m_request->kind == ExchangeKind::Start && m_idle.IsDoubtful();
}

void Supervisor::RepeatStart() {
    m_hands.ShowState(RunState::Kind::Repeating, "may have been restarted");
    SendStop(Doing::StoppingBeforeRepeat);
}

void Supervisor::RepeatAfter(const ExchangeEnd& end) {
    ++m_request->failures;
    m_whyGone = end.words;
    // Whether the daemon has taken the settings is not known.
    m_idle.Doubt();
    if (m_line)
        m_line->failure = {end.kind == ExchangeEnd::Kind::TimedOut ? Outcome::TimedOut
                                                                   : Outcome::ConnectionLost,
                           end.words};
    m_hands.ShowState(RunState::Kind::Repeating, end.words);
    if (m_request->kind != ExchangeKind::Stop)
        SendStop(Doing::StoppingBeforeRepeat);
    else if (m_request->failures <= m_options.retries)
        PassRequestOn();
    else
        DaemonGone(end.words);
}

void Supervisor::StopBeforeRepeatEnded(const ExchangeEnd& end) {
    m_doing = Doing::Nothing;
    if (end.kind != ExchangeEnd::Kind::Answered) {
        DaemonGone(end.words);
        return;
    }
    NoteStop(end);
    if (m_request->failures <= m_options.retries)
        TryRequest();
    else
        GiveUp();
}

void Supervisor::StopAfterWaitEnded(const ExchangeEnd& end) {
    if (end.kind != ExchangeEnd::Kind::Answered) {
        m_whyGone = end.words;
        WaitForDaemon();
        return;
    }
    NoteStop(end);
    DaemonBack();
}

void Supervisor::NoteStop(const ExchangeEnd& end) {
    if (ReadAnswer(end.bytes).IsConfirmation())
        m_mayTransmit = false;
}

void Supervisor::TakeAnswer(const std::string& bytes) {
    Answer answer = ReadAnswer(bytes);
    switch (m_request->kind) {
    case ExchangeKind::FirstCommand:
        TakeFirstAnswer(answer);
        break;
    case ExchangeKind::MacType:
        m_hands.NoteMacType(answer);
        break;
    case ExchangeKind::CountryCode:
        m_hands.NoteCountryCode(answer);
        break;
    case ExchangeKind::Start:
        if (answer.IsAccepted())
            m_options.settings.Accept(m_line->own);
        m_line->answer = std::move(answer);
        break;
    case ExchangeKind::Stop:
        if (answer.IsConfirmation())
            m_mayTransmit = false;
        m_line->isStopped = true;
        m_idle.EndLine();
        break;
    }
    ReplyToClient(bytes);
}

void Supervisor::TakeFirstAnswer(const Answer& answer) {
    if (answer.IsAccepted())
        m_options.settings.Accept(SettingsIn(m_options.firstCommand));
    if (!m_options.firstCommand.empty())
        m_hands.NoteFirstCommand(answer);
    m_options.firstCommand.clear();
}

void Supervisor::GiveUp() {
    if (m_request->kind == ExchangeKind::Start)
        ReplyToClient("");
    else
        EndEarly("there is no answer to " + Place() + ": the daemon " + m_whyGone);
}

void Supervisor::ReplyToClient(const std::string& bytes) {
    m_request.reset();
    m_hands.ShowState(RunState::Kind::Measuring, "");
    m_hands.SetTimer(Timer::Client, clientLimit);
    m_hands.Reply(bytes);
}

// Rows.

/// Whether there is no line to be kept, or its row was there.
bool Supervisor::KeepLine() {
    if (!m_line || !m_line->isStopped)
        return !m_line;
    std::optional<std::string> row = m_hands.TakeRow();
    if (!row)
        return false;
    const RunningLine line = *std::exchange(m_line, std::nullopt);
    LineOutcome outcome = line.answer ? OutcomeOfRow(*row, *line.answer, line.expected)
                                      : LineOutcome{line.failure, line.failure, false};
    m_hands.Keep({line.line, std::move(outcome), std::move(*row)});
    return true;
}

void Supervisor::RequireRow() {
    if (!KeepLine())
        EndEarly("the client has written no row for " + Place());
}

void Supervisor::ClientEnded(int code, const std::string& words) {
    m_isClientRunning = false;
    m_hands.CancelTimer(Timer::Client);
    if (m_isEnding) {
        KeepLine();
        EndIfAllIsDone();
        return;
    }
    if (code == 0 && !m_request && m_exchanges.IsComplete()) {
        RequireRow();
        if (!m_isEnding)
            StartNextClient();
        return;
    }
    // The client may have failed at this very row, for instance at filing it in result.xml.
    const std::optional<std::string> row =
        m_line && m_line->isStopped ? m_hands.TakeRow() : std::nullopt;
    const std::string reason = "the client ended with code " + std::to_string(code) + " at " +
                               Place() + (words.empty() ? "" : ": " + words);
    m_line.reset();
    if (row)
        m_hands.KeepUnfinished(*row);
    EndEarly(reason);
}

// The end.

void Supervisor::TimerExpired(Timer timer) {
    switch (timer) {
    case Timer::Pause:
        if (m_doing == Doing::WaitingForDaemon) {
            m_hands.DropIdle();
            m_idle.Dropped();
            ConnectIdle();
        } else if (m_doing == Doing::StoppingLast) {
            SendStop(Doing::StoppingLast);
        }
        return;
    case Timer::Wait:
        return EndEarly("the daemon is gone: it " + m_whyGone);
    case Timer::Client:
        // Where this program was held up, the client's request may be here already.
        if (!std::exchange(m_isClientLate, true)) {
            m_hands.SetTimer(Timer::Client, clientGrace);
            return;
        }
        return EndEarly("the client does not go on after " + Place());
    case Timer::Stop:
        m_hands.AbandonExchange();
        if (m_doing == Doing::AwaitingLastAnswer)
            return StopLast();
        if (m_end.stopProblem.empty())
            m_end.stopProblem = "gave no answer in time";
        m_doing = Doing::Nothing;
        return EndIfAllIsDone();
    }
}

void Supervisor::Interrupted() {
    if (!std::exchange(m_isInterrupted, true)) {
        EndRun(RunEnd::Kind::Interrupted, "it was interrupted");
        return;
    }
    m_hands.AbandonExchange();
    if (m_end.stopProblem.empty())
        m_end.stopProblem = "was not waited for";
    m_doing = Doing::Nothing;
    m_isClientRunning = false;
    EndIfAllIsDone();
}

void Supervisor::Closing() {
    if (m_hasEnded)
        return;
    m_options.stopTimeout = closingLimit;
    const bool isStopping = m_doing == Doing::StoppingLast ||
                            (m_doing == Doing::PassingOn && m_request->kind == ExchangeKind::Stop);
    if (!isStopping) {
        m_hands.AbandonExchange();
        m_doing = Doing::Nothing;
    }
    EndRun(RunEnd::Kind::Interrupted, "the console was closed");
    if (m_doing == Doing::StoppingLast)
        m_hands.SetTimer(Timer::Stop, closingLimit);
    else
        StopLast();
}

void Supervisor::EndEarly(const std::string& reason) {
    if (m_isEnding)
        m_hands.Note(reason);
    EndRun(RunEnd::Kind::Early, reason);
    EndIfAllIsDone();
}

void Supervisor::EndRun(RunEnd::Kind kind, const std::string& reason) {
    if (std::exchange(m_isEnding, true))
        return;
    m_end.kind = kind;
    m_end.reason = reason;
    for (const Timer timer : {Timer::Pause, Timer::Wait, Timer::Client})
        m_hands.CancelTimer(timer);
    if (m_isClientRunning)
        m_hands.KillClient();
    EndTransmission();
}

/// Takes up the exchange that is under way: a start is to be answered before the stop is sent, and
/// a stop is the last one.
void Supervisor::EndTransmission() {
    const std::optional<Request> request = std::exchange(m_request, std::nullopt);
    const bool isPassingOn = m_doing == Doing::PassingOn;
    if (isPassingOn && StartsTransmission(request->kind)) {
        m_doing = Doing::AwaitingLastAnswer;
        m_hands.ShowState(RunState::Kind::Stopping, "the last answer is awaited first");
        m_hands.SetTimer(Timer::Stop, m_options.stopTimeout);
    } else if ((isPassingOn && request->kind == ExchangeKind::Stop) ||
               m_doing == Doing::StoppingBeforeRepeat || m_doing == Doing::StoppingAfterWait) {
        m_doing = Doing::StoppingLast;
        m_hands.ShowState(RunState::Kind::Stopping, "");
        m_hands.SetTimer(Timer::Stop, m_options.stopTimeout);
    } else {
        m_hands.AbandonExchange();
        StopLast();
    }
}

void Supervisor::StopLast() {
    if (!m_mayTransmit) {
        m_doing = Doing::Nothing;
        EndIfAllIsDone();
        return;
    }
    m_hands.ShowState(RunState::Kind::Stopping, "");
    // Of a stop that was tried before.
    m_hands.CancelTimer(Timer::Pause);
    m_hands.SetTimer(Timer::Stop, m_options.stopTimeout);
    SendStop(Doing::StoppingLast);
}

void Supervisor::LastStopEnded(const ExchangeEnd& end) {
    m_end.stopProblem = end.words;
    if (end.kind == ExchangeEnd::Kind::Answered) {
        NoteStop(end);
        m_end.stopProblem =
            "answered without the return code 0 (" + ReadAnswer(end.bytes).words + ")";
    }
    if (m_mayTransmit) {
        m_hands.SetTimer(Timer::Pause, stopPause);
        return;
    }
    m_doing = Doing::Nothing;
    EndIfAllIsDone();
}

void Supervisor::EndIfAllIsDone() {
    if (!m_isEnding || m_doing != Doing::Nothing || m_isClientRunning || m_hasEnded)
        return;
    m_hasEnded = true;
    m_end.mayTransmit = m_mayTransmit;
    m_hands.DropIdle();
    for (const Timer timer : {Timer::Pause, Timer::Stop})
        m_hands.CancelTimer(timer);
}

std::string Supervisor::Place() const {
    return m_line ? "line " + std::to_string(m_line->line) : m_exchanges.LastInWords();
}

} // namespace Bench
