#pragma once

#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Bench {

/// A run whose client, daemon and device are simulated, and in which anything may happen next that
/// could happen to a real one. Breaking one of the supervisor's promises throws std::logic_error:
/// - one exchange at a time, an answer for each of the client's, one client at a time;
/// - each line is kept once, in order, and only after its start and stop were answered;
/// - the device does what an accepted line asks for with the settings of the accepted lines before,
///   unless restarts cannot be noticed;
/// - the run ends, and says so when the transmitter may be on.
class SimulatedRun : public ISupervisorHands {
public:
    /// Chooses one of so many, from 0.
    using Choice = std::function<std::size_t(std::size_t)>;

    explicit SimulatedRun(Choice choice);

    /// Runs to the end.
    void Run();

    void ConnectIdle() override;
    void DropIdle() override;
    void PassOn(const std::string& request) override;
    void Send(const std::vector<std::string>& command) override;
    void AbandonExchange() override;
    void Reply(const std::string& answer) override;
    std::optional<Segment> StartClient() override;
    void KillClient() override;
    OwnSettings SettingsOf(LineNumber line) override;
    std::optional<std::string> TakeRow() override;
    void Keep(const FinishedLine& line) override;
    void KeepUnfinished(const std::string& row) override;
    void NoteTransmission() override;
    void NoteFirstCommand(const Answer& answer) override;
    void NoteMacType(const Answer& /*answer*/) override {}
    void NoteCountryCode(const Answer& /*answer*/) override {}
    void SetTimer(Timer timer, std::chrono::milliseconds time) override;
    void CancelTimer(Timer timer) override;
    void Note(const std::string& /*text*/) override {}
    void ShowState(RunState::Kind /*state*/, const std::string& /*detail*/) override {}
    void ShowLine(LineNumber /*line*/) override {}

private:
    /// An event that may be next, and how often it is chosen beside the others.
    struct Possible {
        std::size_t weight = 1;
        std::function<void()> happen;
    };

    /// What a command asks the device for.
    struct Command {
        bool starts = false;
        bool stops = false;
        std::optional<std::string> rate;
        /// A line's start, whose effect is looked at.
        LineNumber line = 0;
    };

    enum class ClientState { None, BetweenExchanges, Waiting, Killed };

    void Require(bool promise, const char* what) const;
    std::vector<Possible> PossibleEvents();
    void AddDaemonEvents(std::vector<Possible>& events);
    void AddClientEvents(std::vector<Possible>& events);
    void AddUserEvents(std::vector<Possible>& events);
    void EndExchange(ExchangeEnd::Kind kind, const std::string& body);
    void CarryOut(const Command& command);
    void ClientGoesOn();
    void EndClient(int code);
    void Guard(const std::function<void()>& event);
    std::string RowOf(LineNumber line) const;

    Choice m_choice;
    Supervisor m_supervisor;
    std::size_t m_steps = 0;

    // The daemon and its device.
    bool m_isUp = true;
    /// Something before the daemon takes connections while it is away, and closes them at once.
    bool m_isForwarded = false;
    bool m_isConnectingIdle = false;
    bool m_isIdle = false;
    /// The idle connection ended with the daemon, which is about to show.
    bool m_isIdleBroken = false;
    std::optional<Command> m_exchange;
    /// Its connection ended with the daemon.
    bool m_isExchangeBroken = false;
    /// Whether the client got the answer of the exchange that has just ended.
    bool m_isReplied = false;
    bool m_isTransmitting = false;
    std::string m_rate = "own";
    /// Of the accepted commands.
    std::optional<std::string> m_expectedRate;

    // The client.
    ClientState m_client = ClientState::None;
    Segment m_segment;
    std::size_t m_requests = 0;
    std::deque<std::string> m_rows;
    LineNumber m_nextLine = 2;
    LineNumber m_kept = 1;
    bool m_isTransmissionNoted = false;

    std::set<Timer> m_timers;
};

} // namespace Bench
