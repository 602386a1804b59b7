#include "Tools/SarvexTool/Bench/Commands/Stop.h"

#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Daemon/Connection.h"
#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Run/OutputQueue.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <sstream>
#include <string>

namespace Bench {

namespace {

struct StopOptions {
    std::string daemon = "127.0.0.1";
    std::string timeout = "10";
};

/// Why the stop is not confirmed; empty when it is.
std::string TryToStop(const DaemonAddress& address, double seconds) {
    constexpr double perSecond = 1000;
    const std::chrono::milliseconds timeout(static_cast<std::int64_t>(seconds * perSecond));
    try {
        const Answer answer =
            ReadAnswer(ExchangeBytes(address.host, address.port,
                                     BuildCommandRequest(address.host, {"-wifi-stop"}), timeout));
        return answer.IsConfirmation() ? ""
                                       : "answers without the return code 0 (" + answer.words + ")";
    } catch (const ExchangeFailure& failure) {
        return failure.what();
    }
}

/// Somebody else's run would transmit again; the caller is to be told.
void WarnOfRun(const DaemonAddress& address, Surroundings& surroundings) {
    try {
        LockDaemonAt(address, "");
    } catch (const InUse& inUse) {
        surroundings.err.stream << "This daemon is in use, and the device may transmit again; end "
                                   "that with Ctrl-C in its console:\n";
        PrintProblems(surroundings.err, inUse.File(), inUse.Problems());
    } catch (const std::exception& error) {
        surroundings.err.stream << "Whether this daemon is in use cannot be told: "
                                << MakeHarmless(error.what()) << "\n";
    }
}

/// Last of all, because a transmitter that may be on is told at the end.
int Conclude(const DaemonAddress& address, const std::string& failure, Surroundings& surroundings) {
    if (failure.empty()) {
        surroundings.out.stream << "The daemon at " << MakeHarmless(address.ToText())
                                << " has confirmed the stop.\n"
                                << std::flush;
        return ExitCode::Fine;
    }
    surroundings.err.stream << "The transmitter may still be ON: the daemon at "
                            << MakeHarmless(address.ToText()) << " " << MakeHarmless(failure)
                            << ".\n";
    return ExitCode::StopNotConfirmed;
}

/// Ends the program at once, and does not wait for ever for somebody who reads its last words.
[[noreturn]] void EndUnwaited(const DaemonAddress& address, const std::string& why,
                              Surroundings& surroundings) {
    constexpr std::chrono::milliseconds patience(1000);
    std::ostringstream words;
    words << why;
    Surroundings told{surroundings.in, {words}, {words}};
    const int exitCode = Conclude(address, "was not waited for", told);
    OutputQueue queue;
    queue.Put({&surroundings.err.stream, words.str(), {}});
    queue.WaitUntilEmpty(patience);
    std::_Exit(exitCode);
}

/// What has come of the stop is known: a further request ends the program with its exit code, and
/// does not wait for the reader of its last words. Returns the code, which is the given one where
/// the stop is confirmed.
int Settle(const std::string& failure, int confirmed, EndRequests& requests) {
    const int exitCode = failure.empty() ? confirmed : ExitCode::StopNotConfirmed;
    const auto end = [exitCode](OSAL::InterruptionKind kind) {
        if (kind != OSAL::InterruptionKind::ConsoleClosing)
            std::_Exit(exitCode);
    };
    // What was asked for by now is done when the last words are out.
    if (requests.IsWanted())
        requests.Hold(end);
    else
        requests.BeginRun(end);
    return exitCode;
}

int Stop(const StopOptions& options, Surroundings& surroundings) {
    const DaemonAddress address = DaemonOf(options.daemon);
    const double seconds = SecondsOf("--stop-timeout", options.timeout).ToDouble();
    if (seconds <= 0)
        throw WrongUsage("--stop-timeout is too short");
    const std::string failure = TryToStop(address, seconds);
    WarnOfRun(address, surroundings);
    return Conclude(address, failure, surroundings);
}

} // namespace

int StopUnresumed(const DaemonAddress& address, double seconds, const std::string& why,
                  EndRequests& requests, Surroundings& surroundings) {
    const std::string failure = TryToStop(address, seconds);
    const int exitCode = Settle(failure, ExitCode::Failed, requests);
    surroundings.err.stream << why;
    Conclude(address, failure, surroundings);
    return exitCode;
}

void HoldUntilStopped(EndRequests& requests, const DaemonAddress& address,
                      Surroundings& surroundings, const std::string& why) {
    requests.Hold([address, &surroundings, why](OSAL::InterruptionKind kind) {
        // The system ends the program some seconds later; the stop may be confirmed by then.
        if (kind != OSAL::InterruptionKind::ConsoleClosing)
            EndUnwaited(address, why, surroundings);
    });
}

std::optional<int> StopAhead(const DaemonAddress& address, double seconds, EndRequests& requests,
                             Surroundings& surroundings) {
    const std::string failure = TryToStop(address, seconds);
    if (requests.IsWanted()) {
        const int exitCode = Settle(failure, ExitCode::EndedEarly, requests);
        Conclude(address, failure, surroundings);
        return exitCode;
    }
    if (failure.empty())
        requests.Release();
    return std::nullopt;
}

Command AddStop(Options program) {
    const Options app = program.AddSubcommand("stop", "Stop a device's transmission by hand");
    const auto options = std::make_shared<StopOptions>();
    app.Add("--daemon", options->daemon,
            "The device's daemon. Without PORT the one in Socket.cfg beside this program")
        .TypeName("HOST[:PORT]")
        .ShowDefault();
    app.Add("--stop-timeout", options->timeout, "How long the stop may take")
        .TypeName("SECONDS")
        .ShowDefault();
    app.Footer("Exit code: 0 the daemon has confirmed the stop, 2 wrong usage, 4 it has not.");
    return {app, [options](Surroundings& surroundings) { return Stop(*options, surroundings); },
            true};
}

} // namespace Bench
