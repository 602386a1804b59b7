#include "tests/Tools/SarvexTool/Bench/Supervision/Support/SimulatedRun.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

constexpr LineNumber lastLine = 9;
constexpr std::size_t exchangesAhead = 3;
/// From here on nothing new goes wrong, and the user interrupts the run.
constexpr std::size_t stepsOfTrouble = 400;
constexpr std::size_t mostSteps = 2000;

constexpr const char* accepted = "Sarvex tool RETURN CODE\n0\nDone";
constexpr const char* refused = "Sarvex tool ERROR\nno\nSarvex tool RETURN CODE\n2\nDone";
constexpr const char* withoutCode = "Stopped.\nDone";

/// The even lines write a rate.
std::optional<std::string> RateOf(LineNumber line) {
    return line % 2 == 0 ? std::optional("MCS" + std::to_string(line)) : std::nullopt;
}

SupervisorOptions OptionsFrom(const SimulatedRun::Choice& choice) {
    SupervisorOptions options;
    options.retries = static_cast<unsigned>(choice(3));
    if (choice(2) == 0)
        options.firstCommand = {"-wifi-start"};
    return options;
}

} // namespace

SimulatedRun::SimulatedRun(Choice choice)
    : m_choice(std::move(choice)),
      m_supervisor(OptionsFrom(m_choice), *this),
      m_isUp(m_choice(4) != 0),
      m_isForwarded(m_choice(2) == 0) {}

void SimulatedRun::Require(bool promise, const char* what) const {
    if (!promise)
        throw std::logic_error(std::string(what) + " at step " + std::to_string(m_steps));
}

void SimulatedRun::Run() {
    Guard([this] { m_supervisor.Begin(); });
    for (; !m_supervisor.HasEnded(); ++m_steps) {
        Require(m_steps < mostSteps, "the run does not end");
        std::vector<Possible> events = PossibleEvents();
        Require(!events.empty(), "nothing happens any more");
        std::size_t total = 0;
        for (const Possible& event : events)
            total += event.weight;
        std::size_t chosen = m_choice(total);
        const auto event =
            std::find_if(events.begin(), events.end(), [&chosen](const Possible& one) {
                if (chosen < one.weight)
                    return true;
                chosen -= one.weight;
                return false;
            });
        Guard(event->happen);
    }
    Require(!m_isTransmitting || m_supervisor.End().mayTransmit, "the transmitter was left on");
    Require(m_supervisor.End().kind != RunEnd::Kind::Complete || m_kept == lastLine,
            "a complete run lacks lines");
}

/// Hands an error of the hands to the supervisor, as the loop of a real run does.
void SimulatedRun::Guard(const std::function<void()>& event) {
    try {
        event();
    } catch (const std::runtime_error& error) {
        m_supervisor.EndEarly(error.what());
    }
}

std::vector<SimulatedRun::Possible> SimulatedRun::PossibleEvents() {
    std::vector<Possible> events;
    // A daemon that ends takes its connections along before it can answer again; the client may
    // not have waited for that.
    if (m_isIdleBroken) {
        events.push_back({8, [this] {
                              m_isIdleBroken = false;
                              m_supervisor.IdleLost();
                          }});
        AddClientEvents(events);
        return events;
    }
    AddDaemonEvents(events);
    AddClientEvents(events);
    for (const Timer timer : m_timers) {
        events.push_back({1, [this, timer] {
                              m_timers.erase(timer);
                              m_supervisor.TimerExpired(timer);
                          }});
    }
    AddUserEvents(events);
    return events;
}

void SimulatedRun::AddDaemonEvents(std::vector<Possible>& events) {
    if (m_isConnectingIdle) {
        events.push_back({8, [this] {
                              m_isConnectingIdle = false;
                              m_isIdle = m_isUp;
                              m_isIdleBroken = m_isForwarded && !m_isUp;
                              if (m_isUp || m_isForwarded)
                                  m_supervisor.IdleConnected();
                              else
                                  m_supervisor.IdleFailed("cannot be reached");
                          }});
    }
    if (m_isExchangeBroken) {
        events.push_back({8, [this] { EndExchange(ExchangeEnd::Kind::Lost, ""); }});
    } else if (m_exchange && m_isUp) {
        events.push_back({40, [this] { EndExchange(ExchangeEnd::Kind::Answered, accepted); }});
        if (m_steps < stepsOfTrouble) {
            events.push_back({1, [this] { EndExchange(ExchangeEnd::Kind::Answered, refused); }});
            events.push_back(
                {1, [this] { EndExchange(ExchangeEnd::Kind::Answered, withoutCode); }});
            events.push_back({1, [this] { EndExchange(ExchangeEnd::Kind::TimedOut, ""); }});
            events.push_back({1, [this] { EndExchange(ExchangeEnd::Kind::Lost, ""); }});
        }
    }
    if (m_exchange && !m_isUp && !m_isExchangeBroken)
        events.push_back({8, [this] {
                              EndExchange(m_isForwarded ? ExchangeEnd::Kind::Lost
                                                        : ExchangeEnd::Kind::Unreachable,
                                          "");
                          }});
    if (m_steps >= stepsOfTrouble && m_isUp)
        return;
    events.push_back({1, [this] {
                          m_isUp = !m_isUp;
                          m_isTransmitting = false;
                          m_rate = "own";
                          m_isIdleBroken = std::exchange(m_isIdle, false);
                          m_isExchangeBroken = m_exchange && (m_isExchangeBroken || !m_isUp);
                      }});
    if (m_isIdle)
        events.push_back({1, [this] {
                              m_isIdle = false;
                              m_supervisor.IdleLost();
                          }});
}

void SimulatedRun::AddClientEvents(std::vector<Possible>& events) {
    if (m_client == ClientState::Killed)
        events.push_back({8, [this] { EndClient(1); }});
    if (m_client == ClientState::BetweenExchanges)
        events.push_back({30, [this] { ClientGoesOn(); }});
    if (m_client == ClientState::BetweenExchanges || m_client == ClientState::Waiting)
        events.push_back({m_steps < stepsOfTrouble ? 1U : 0U, [this] { EndClient(1); }});
}

void SimulatedRun::AddUserEvents(std::vector<Possible>& events) {
    if (m_steps >= stepsOfTrouble) {
        events.push_back({20, [this] { m_supervisor.Interrupted(); }});
        return;
    }
    // Rare beside all else.
    if (m_choice(20) != 0)
        return;
    events.push_back({1, [this] { m_supervisor.Interrupted(); }});
    events.push_back({1, [this] { m_supervisor.Closing(); }});
    events.push_back({1, [this] { m_supervisor.EndEarly("the disk is full"); }});
}

void SimulatedRun::EndExchange(ExchangeEnd::Kind kind, const std::string& body) {
    const Command command = *std::exchange(m_exchange, std::nullopt);
    const bool isBroken = std::exchange(m_isExchangeBroken, false);
    const bool isTaken = body == accepted || body == withoutCode;
    // What is not answered may have been carried out all the same.
    if (isTaken || (kind != ExchangeEnd::Kind::Unreachable && m_isUp && body.empty() && !isBroken &&
                    m_choice(2) == 0))
        CarryOut(command);
    const std::string rate = m_rate;
    m_isReplied = false;
    m_supervisor.ExchangeEnded({kind, body, body.empty() ? "does not answer" : ""});
    if (!m_isReplied || !isTaken || command.line == 0)
        return;
    m_expectedRate = command.rate ? command.rate : m_expectedRate;
    Require(!m_expectedRate || m_supervisor.ClosesIdleConnections() || rate == *m_expectedRate,
            "a line ran with settings of another time");
}

void SimulatedRun::CarryOut(const Command& command) {
    m_isTransmitting = (m_isTransmitting || command.starts) && !command.stops;
    m_rate = command.rate.value_or(m_rate);
}

void SimulatedRun::ClientGoesOn() {
    if (m_requests > exchangesAhead && (m_requests - exchangesAhead) % 2 == 0)
        m_rows.push_back(RowOf(m_segment.firstLine +
                               static_cast<LineNumber>((m_requests - exchangesAhead) / 2) - 1));
    if (m_requests == exchangesAhead + 2 * m_segment.lines) {
        EndClient(0);
        return;
    }
    m_client = ClientState::Waiting;
    ++m_requests;
    m_supervisor.ClientRequested("request");
}

void SimulatedRun::EndClient(int code) {
    m_client = ClientState::None;
    m_supervisor.ClientEnded(code, "");
}

std::string SimulatedRun::RowOf(LineNumber line) const {
    return std::to_string(line) + ",NA,NA\n";
}

// The hands.

void SimulatedRun::ConnectIdle() {
    Require(!m_isConnectingIdle && !m_isIdle, "two idle connections");
    m_isConnectingIdle = true;
}

void SimulatedRun::DropIdle() {
    m_isConnectingIdle = false;
    m_isIdle = false;
    m_isIdleBroken = false;
}

void SimulatedRun::PassOn(const std::string& /*request*/) {
    Require(m_client == ClientState::Waiting, "an exchange that the client did not begin");
    Require(!m_exchange, "two exchanges at a time");
    const bool isLine = m_requests > exchangesAhead;
    const bool isStart = isLine && (m_requests - exchangesAhead) % 2 == 1;
    Command command;
    command.starts = isStart || m_requests == 1;
    command.stops = isLine && !isStart;
    if (isStart) {
        command.line =
            m_segment.firstLine + static_cast<LineNumber>((m_requests - exchangesAhead) / 2);
        command.rate = RateOf(command.line);
        Require(m_isTransmissionNoted, "a transmission that nobody knows of after a crash");
    }
    // The first command starts only where the user's own does.
    if (m_requests == 1)
        command.starts = m_isTransmissionNoted &&
                         m_nextLine == m_segment.firstLine + m_segment.lines &&
                         m_segment.firstLine == 2;
    m_exchange = command;
}

void SimulatedRun::Send(const std::vector<std::string>& command) {
    Require(!m_exchange, "two exchanges at a time");
    Command sent;
    sent.stops = command.front() == "-wifi-stop";
    if (!sent.stops)
        sent.rate = command.back();
    m_exchange = sent;
}

void SimulatedRun::AbandonExchange() {
    // It may have got through.
    if (m_exchange && m_isUp && !m_isExchangeBroken && m_choice(2) == 0)
        CarryOut(*m_exchange);
    m_exchange.reset();
    m_isExchangeBroken = false;
}

void SimulatedRun::Reply(const std::string& /*answer*/) {
    Require(m_client == ClientState::Waiting, "an answer that nobody waits for");
    m_client = ClientState::BetweenExchanges;
    m_isReplied = true;
}

std::optional<Segment> SimulatedRun::StartClient() {
    Require(m_client == ClientState::None, "two clients");
    if (m_nextLine > lastLine)
        return std::nullopt;
    if (m_steps < stepsOfTrouble && m_choice(50) == 0)
        throw std::runtime_error("the client cannot be started");
    const std::size_t lines = std::min<std::size_t>(1 + m_choice(4), lastLine + 1 - m_nextLine);
    m_segment = {m_nextLine, lines};
    m_nextLine += static_cast<LineNumber>(lines);
    m_requests = 0;
    m_rows.clear();
    m_client = ClientState::BetweenExchanges;
    return m_segment;
}

void SimulatedRun::KillClient() {
    Require(m_client == ClientState::BetweenExchanges || m_client == ClientState::Waiting,
            "no client to be killed");
    m_client = ClientState::Killed;
}

OwnSettings SimulatedRun::SettingsOf(LineNumber line) {
    OwnSettings own;
    own.at(static_cast<std::size_t>(Setting::Rate)) = RateOf(line);
    return own;
}

std::optional<std::string> SimulatedRun::TakeRow() {
    if (m_rows.empty())
        return std::nullopt;
    std::string row = m_rows.front();
    m_rows.pop_front();
    return row;
}

void SimulatedRun::Keep(const FinishedLine& line) {
    Require(line.line == m_kept + 1, "a line is kept twice, or not at all");
    Require(line.row == RowOf(line.line), "a line is kept with another one's row");
    if (m_steps < stepsOfTrouble && m_choice(100) == 0)
        throw std::runtime_error("the disk is full");
    m_kept = line.line;
}

void SimulatedRun::KeepUnfinished(const std::string& row) {
    Require(row == RowOf(m_kept + 1), "another line's row is kept");
}

void SimulatedRun::NoteTransmission() {
    m_isTransmissionNoted = true;
}

void SimulatedRun::NoteFirstCommand(const Answer& /*answer*/) {
    Require(m_segment.firstLine == 2, "the first command is sent again");
}

void SimulatedRun::SetTimer(Timer timer, std::chrono::milliseconds time) {
    Require(time.count() > 0, "a timer without time");
    m_timers.insert(timer);
}

void SimulatedRun::CancelTimer(Timer timer) {
    m_timers.erase(timer);
}

} // namespace Bench
