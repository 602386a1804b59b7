#include "Tools/SarvexTool/Bench/Run/SupervisedRun.h"

#include "Modules/xFramework/Utilities/StringToInt.h"
#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/Run/ClientFeed.h"
#include "Tools/SarvexTool/Bench/Run/ClientLog.h"
#include "Tools/SarvexTool/Bench/Run/ClientProcess.h"
#include "Tools/SarvexTool/Bench/Run/IdleConnection.h"
#include "Tools/SarvexTool/Bench/Run/LoggedExchanges.h"
#include "Tools/SarvexTool/Bench/Run/Relay.h"
#include "Tools/SarvexTool/Bench/Run/RunSetup.h"
#include "Tools/SarvexTool/Bench/Run/Timers.h"
#include "Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

using Clock = std::chrono::steady_clock;

/// A timer beside those of the supervisor.
constexpr int tick = static_cast<int>(Timer::Stop) + 1;
constexpr std::chrono::milliseconds tickTime(100);
/// A daemon that is there takes a connection at once.
constexpr std::chrono::milliseconds longestConnecting(10'000);

constexpr const char* folderIsGone = "the folder of the run is not there any more";

std::string Now() {
    return UtcTime(std::chrono::system_clock::now());
}

/// What went wrong, in one line.
std::string WordsOf(const std::exception& error) {
    const auto* const pBadFile = dynamic_cast<const BadFile*>(&error);
    if (pBadFile == nullptr)
        return error.what();
    const Problem& first = pBadFile->Problems().front();
    return pBadFile->File() +
           (first.line == 0 ? " " : ", line " + std::to_string(first.line) + ": ") + first.text;
}

std::optional<std::int32_t> MacTypeIn(const Answer& answer) {
    try {
        const auto digits = PowerTest::FindInReply(answer.lines, PowerTest::macTypePattern);
        return digits ? std::optional(Utilities::StringToInt(*digits)) : std::nullopt;
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
}

/// The hands of a supervisor, on a loop of their own.
class Hands : private ISupervisorHands {
public:
    Hands(RunDirectory& directory, IRunWatcher& watcher)
        : m_directory(directory),
          m_watcher(watcher),
          m_address(DaemonIn(directory.Facts())),
          m_peer(m_loop, m_address),
          m_relay(
              m_loop,
              [this](const std::string& request) {
                  Tell([&request](Supervisor& supervisor) { supervisor.ClientRequested(request); });
              }),
          m_timers(m_loop, [this](int timer) { TimerExpired(timer); }),
          m_feed(directory.Files().testFile, directory.LastLine()),
          m_supervisor(OptionsOf(directory), *this),
          m_exchanges(m_loop, m_peer, directory.Files().exchanges,
                      Milliseconds(directory.Facts().options.answerTimeout),
                      [this](const ExchangeEnd& end, const std::string& failure) {
                          EndExchange(end, failure);
                      }) {}

    RunEnd Run(EndRequests& requests) {
        m_loop.Post([this] { Tell([](Supervisor& supervisor) { supervisor.Begin(); }); });
        // After that one, for a request may be waiting.
        requests.Begin([this](OSAL::InterruptionKind kind) {
            m_loop.Post([this, kind] { Interrupt(kind); });
        });
        m_timers.Set(tick, tickTime);
        while (!m_supervisor.HasEnded())
            RunLoop();
        requests.End();
        m_client.reset();
        if (m_supervisor.ClosesIdleConnections())
            m_directory.Facts().closesIdleConnections = true;
        return CompleteResult(m_supervisor.End());
    }

private:
    /// What a callback throws, beside what Tell catches, is an error of the hands too: for instance
    /// the relay can take no more connections.
    void RunLoop() {
        try {
            m_loop.Run();
        } catch (const std::exception& error) {
            Tell([&error](Supervisor& supervisor) { supervisor.EndEarly(WordsOf(error)); });
        }
    }

    void Interrupt(OSAL::InterruptionKind kind) {
        Tell([kind](Supervisor& supervisor) {
            if (kind == OSAL::InterruptionKind::ConsoleClosing)
                supervisor.Closing();
            else
                supervisor.Interrupted();
        });
    }

    /// Tells the supervisor what happened. An error of its hands is one more event.
    void Tell(const std::function<void(Supervisor&)>& event) {
        try {
            event(m_supervisor);
        } catch (const std::exception& error) {
            m_supervisor.EndEarly(WordsOf(error));
        }
        if (m_supervisor.HasEnded())
            m_loop.Stop();
    }

    void TimerExpired(int timer) {
        if (timer == tick) {
            m_watcher.Tick();
            m_timers.Set(tick, tickTime);
            return;
        }
        Tell([timer](Supervisor& supervisor) {
            supervisor.TimerExpired(static_cast<Timer>(timer));
        });
    }

    RunEnd CompleteResult(RunEnd end) {
        try {
            KeepHeader();
            if (end.kind == RunEnd::Kind::Complete)
                WriteResultTree({m_directory.Files().result, m_feed.Header(),
                                 m_directory.Facts().countryCode.value_or(PowerTest::unsetCell)},
                                m_directory.Files().tree);
        } catch (const std::exception& error) {
            if (end.kind == RunEnd::Kind::Complete)
                end.reason = WordsOf(error);
            end.kind = RunEnd::Kind::Early;
        }
        return end;
    }

    // The daemon.

    void ConnectIdle() override {
        m_idle.emplace(
            m_loop, m_peer,
            std::min(Milliseconds(m_directory.Facts().options.answerTimeout), longestConnecting),
            IdleConnection::Events{
                [this] { Tell([](Supervisor& supervisor) { supervisor.IdleConnected(); }); },
                [this](const std::string& words) {
                    Tell([words](Supervisor& supervisor) { supervisor.IdleFailed(words); });
                },
                [this] { Tell([](Supervisor& supervisor) { supervisor.IdleLost(); }); }});
    }

    void DropIdle() override { m_idle.reset(); }

    void PassOn(const std::string& request) override { Exchange(request, Sender::Client); }

    void Send(const std::vector<std::string>& command) override {
        Exchange(BuildCommandRequest(m_address.host, command), Sender::Supervisor);
    }

    void Exchange(const std::string& request, Sender sender) {
        m_exchanges.Begin(m_line, sender, request);
    }

    /// The supervisor hears of the end even if it cannot be logged.
    void EndExchange(const ExchangeEnd& end, const std::string& failure) {
        Tell([&](Supervisor& supervisor) {
            supervisor.ExchangeEnded(end);
            if (!failure.empty())
                supervisor.EndEarly(failure);
        });
    }

    /// The run is ending: a log that takes no more is only told.
    void AbandonExchange() override {
        const std::string failure = m_exchanges.Abandon();
        if (!failure.empty())
            Note(failure);
    }

    // The client.

    void Reply(const std::string& answer) override { m_relay.Reply(answer); }

    std::optional<Segment> StartClient() override {
        // A client without lines leaves no row to be taken, only the header.
        KeepHeader();
        // Not before: what hinders it ends the run early, and a transmitter that a killed run has
        // left on is stopped by then.
        if (!m_folder)
            m_folder.emplace(m_directory.Files().client, m_directory.Facts().options.client,
                             m_relay.Port());
        m_feed.WriteNext(*m_folder, m_directory.Facts().options.segment);
        const std::vector<TestLine>& lines = m_feed.Lines();
        // A file without lines has a header, which its client writes too.
        const bool isWithoutLines = !m_client && m_directory.LastLine() == 0;
        if (lines.empty() && !isWithoutLines)
            return std::nullopt;
        OSAL::ChildStart start;
        start.program = m_folder->Program();
        start.arguments = {"-wifi-test-by-file", "lines.csv"};
        const RunOptions& options = m_directory.Facts().options;
        if (!options.firstCommandAnswered)
            start.arguments.insert(start.arguments.end(), options.firstCommand.begin(),
                                   options.firstCommand.end());
        start.workingDirectory = m_folder->Path();
        start.outputFile = m_directory.Files().console;
        m_clientLog = ClientLog(start.outputFile);
        m_client.emplace(m_loop, start, [this](OSAL::ChildEnd end) { ClientEnded(end); });
        return Segment{lines.empty() ? 0 : lines.front().number, lines.size()};
    }

    void ClientEnded(OSAL::ChildEnd end) {
        std::string words = m_clientLog.LastLine();
        if (end.isBySignal)
            words = "killed by signal " + std::to_string(end.code);
        else if (end.code != 0 && IsFolderGone())
            words = folderIsGone;
        Tell([&](Supervisor& supervisor) { supervisor.ClientEnded(end.code, words); });
    }

    bool IsFolderGone() const {
        std::error_code ignored;
        return !std::filesystem::exists(PathOf(m_folder->Path()), ignored);
    }

    void KillClient() override { m_client->Kill(); }

    OwnSettings SettingsOf(LineNumber line) override { return m_feed.Line(line).own; }

    // What is kept.

    std::optional<std::string> TakeRow() override {
        std::optional<std::string> row = m_feed.TakeRow();
        if (!row && IsFolderGone())
            throw std::runtime_error(folderIsGone);
        KeepHeader();
        return row;
    }

    void KeepHeader() {
        if (!m_directory.IsResultEmpty())
            return;
        const std::string header = m_feed.ResultHeader();
        if (!header.empty())
            m_directory.KeepHeader(header);
    }

    void Keep(const FinishedLine& line) override {
        const std::chrono::duration<double> taken = Clock::now() - m_lineStart;
        m_directory.KeepLine(line, m_lineStarted, taken.count());
        const std::string reason = m_watcher.FinishLine(line, SettingsOf(line.line));
        if (!reason.empty())
            m_supervisor.EndEarly(reason);
    }

    void KeepUnfinished(const std::string& row) override { m_directory.KeepUnfinishedRow(row); }

    void NoteTransmission() override {
        RunFacts& facts = m_directory.Facts();
        if (facts.startPassedOn && !facts.stopConfirmed)
            return;
        facts.startPassedOn = true;
        facts.stopConfirmed = false;
        m_directory.SaveFacts();
    }

    void NoteFirstCommand(const Answer& answer) override {
        RunFacts& facts = m_directory.Facts();
        facts.options.firstCommandAnswered = true;
        facts.options.firstCommandAccepted = answer.IsAccepted();
        if (!answer.IsAccepted())
            Note("the daemon refused the first command: " + answer.words);
        m_directory.SaveFacts();
    }

    void NoteMacType(const Answer& answer) override {
        const std::optional<std::int32_t> macType = MacTypeIn(answer);
        RunFacts& facts = m_directory.Facts();
        if (!facts.macType)
            facts.macType = macType;
        else if (macType != facts.macType)
            Note("the device's MAC type has changed while the run went on");
    }

    void NoteCountryCode(const Answer& answer) override {
        const auto code = PowerTest::FindInReply(answer.lines, PowerTest::countryCodePattern);
        RunFacts& facts = m_directory.Facts();
        // Of the first segment, also when the daemon tells none there.
        if (facts.countryCode && code.value_or(PowerTest::unsetCell) != *facts.countryCode)
            Note("the device's country code has changed while the run went on");
        if (facts.countryCode)
            return;
        facts.countryCode = code.value_or(PowerTest::unsetCell);
        m_directory.SaveFacts();
    }

    void SetTimer(Timer timer, std::chrono::milliseconds time) override {
        m_timers.Set(static_cast<int>(timer), time);
    }
    void CancelTimer(Timer timer) override { m_timers.Cancel(static_cast<int>(timer)); }

    void Note(const std::string& text) override { m_directory.Facts().AddNote(text); }

    void ShowState(RunState::Kind state, const std::string& detail) override {
        const bool isWaiting = state == RunState::Kind::WaitingForDaemon;
        m_watcher.ShowState(state, isWaiting ? m_address.ToText() + " " + detail : detail);
    }

    void ShowLine(LineNumber line) override {
        m_line = line;
        m_lineStart = Clock::now();
        m_lineStarted = Now();
        m_watcher.BeginLine(line, SettingsOf(line));
    }

    EventLoop m_loop;
    RunDirectory& m_directory;
    IRunWatcher& m_watcher;
    DaemonAddress m_address;
    DaemonPeer m_peer;
    Relay m_relay;
    Timers m_timers;
    std::optional<ClientFolder> m_folder;
    ClientFeed m_feed;
    Supervisor m_supervisor;
    std::optional<IdleConnection> m_idle;
    LoggedExchanges m_exchanges;
    std::optional<ClientProcess> m_client;
    ClientLog m_clientLog;
    /// The line that is under way.
    LineNumber m_line = 0;
    Clock::time_point m_lineStart;
    std::string m_lineStarted;
};

} // namespace

RunEnd RunSupervised(RunDirectory& directory, IRunWatcher& watcher, EndRequests& requests) {
    return Hands(directory, watcher).Run(requests);
}

} // namespace Bench
