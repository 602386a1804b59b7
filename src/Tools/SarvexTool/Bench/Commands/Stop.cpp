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
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>

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
    } catch (const std::exception& error) {
        return std::string("cannot be asked (") + error.what() + ")";
    }
}

/// Somebody else's run would transmit again; the caller is to be told.
std::string WarningOfRun(const DaemonAddress& address, bool hasColours) {
    std::ostringstream words;
    try {
        LockDaemonAt(address, "");
    } catch (const InUse& inUse) {
        words << "This daemon is in use, and the device may transmit again; end that with Ctrl-C "
                 "in its console:\n";
        PrintProblems({words, hasColours}, inUse.File(), inUse.Problems());
    } catch (const std::exception& error) {
        words << "Whether this daemon is in use cannot be told: " << MakeHarmless(error.what())
              << "\n";
    }
    return words.str();
}

/// What has come of the stop; without a failure it is confirmed.
std::string Conclusion(const DaemonAddress& address, const std::string& failure) {
    const std::string daemon = MakeHarmless(address.ToText());
    if (failure.empty())
        return "The daemon at " + daemon + " has confirmed the stop.\n";
    return "The transmitter may still be ON: the daemon at " + daemon + " " +
           MakeHarmless(failure) + ".\n";
}

/// The last words of a program that has sent a stop, and its exit code.
struct LastWords {
    /// Comes before what has come of the stop.
    std::string before;
    std::string conclusion;
    bool isConfirmed = false;
    int exitCode = ExitCode::StopNotConfirmed;

    std::ostream& StreamOfConclusion(const Surroundings& surroundings) const {
        return isConfirmed ? surroundings.out.stream : surroundings.err.stream;
    }
};

LastWords WordsOf(const DaemonAddress& address, const std::string& failure, int confirmed,
                  const std::string& before) {
    const bool isConfirmed = failure.empty();
    return {before, Conclusion(address, failure), isConfirmed,
            isConfirmed ? confirmed : ExitCode::StopNotConfirmed};
}

/// For a program that ends before the stop is answered.
LastWords UnwaitedWords(const DaemonAddress& address, const std::string& before) {
    return WordsOf(address, "was not waited for", ExitCode::StopNotConfirmed, before);
}

/// How long a request to end the program waits for the reader of the last words.
constexpr std::chrono::milliseconds patience(1000);

void Say(const LastWords& words, OutputQueue& queue, Surroundings& surroundings) {
    queue.Put({&surroundings.err.stream, words.before, nullptr});
    queue.Put({&words.StreamOfConclusion(surroundings), words.conclusion, nullptr});
}

/// Where there is no thread for a queue.
void SayDirectly(const LastWords& words, Surroundings& surroundings) {
    surroundings.err.stream << words.before << std::flush;
    words.StreamOfConclusion(surroundings) << words.conclusion << std::flush;
}

/// Ends the program with these words for a request, unless the system does that some seconds later:
/// the stop may be confirmed by then.
EndRequests::Function EndingWith(const LastWords& words, Surroundings& surroundings) {
    return [words, &surroundings](OSAL::InterruptionKind kind) {
        if (kind == OSAL::InterruptionKind::ConsoleClosing)
            return;
        try {
            OutputQueue queue;
            Say(words, queue, surroundings);
            queue.WaitUntilEmpty(patience);
            std::_Exit(words.exitCode);
        } catch (const std::system_error&) {
            SayDirectly(words, surroundings);
        }
        std::_Exit(words.exitCode);
    };
}

/// Where the system has no pipe or thread for it, no request is heard: the stop matters more.
void BeginIfPossible(EndRequests& requests, const EndRequests::Function& function) {
    try {
        requests.Begin(function);
    } catch (const std::system_error&) {
        requests.End();
    }
}

/// Says the words while a further request ends the program with them, and does not wait for ever
/// for their reader.
void SayUntilRequested(const LastWords& words, EndRequests& requests, Surroundings& surroundings) {
    OutputQueue queue;
    std::once_flag isSaid;
    const auto say = [&] { Say(words, queue, surroundings); };
    const auto end = [&](OSAL::InterruptionKind kind) {
        if (kind == OSAL::InterruptionKind::ConsoleClosing)
            return;
        std::call_once(isSaid, say);
        queue.WaitUntilEmpty(patience);
        std::_Exit(words.exitCode);
    };
    // What was asked for by now is done when the last words are out.
    if (requests.IsWanted())
        requests.Hold(end);
    else
        BeginIfPossible(requests, end);
    std::call_once(isSaid, say);
    while (!queue.WaitUntilEmpty(patience)) {
    }
    requests.End();
}

/// Says the words and returns the exit code.
int Conclude(const LastWords& words, EndRequests& requests, Surroundings& surroundings) {
    try {
        SayUntilRequested(words, requests, surroundings);
    } catch (const std::system_error&) {
        SayDirectly(words, surroundings);
    }
    return words.exitCode;
}

int Stop(const StopOptions& options, Surroundings& surroundings) {
    const DaemonAddress address = DaemonOf(options.daemon);
    const double seconds = TimeOf("--stop-timeout", options.timeout);
    EndRequests requests;
    BeginIfPossible(requests, EndingWith(UnwaitedWords(address, ""), surroundings));
    const std::string failure = TryToStop(address, seconds);
    // To look for a run may take seconds, too.
    BeginIfPossible(requests,
                    EndingWith(WordsOf(address, failure, ExitCode::Fine, ""), surroundings));
    const std::string warning = WarningOfRun(address, surroundings.err.hasColours);
    return Conclude(WordsOf(address, failure, ExitCode::Fine, warning), requests, surroundings);
}

} // namespace

int StopUnresumed(const DaemonAddress& address, double seconds, const std::string& why,
                  EndRequests& requests, Surroundings& surroundings) {
    const std::string failure = TryToStop(address, seconds);
    return Conclude(WordsOf(address, failure, ExitCode::Failed, why), requests, surroundings);
}

void HoldUntilStopped(EndRequests& requests, const DaemonAddress& address,
                      Surroundings& surroundings, const std::string& why) {
    // As with BeginIfPossible.
    try {
        requests.Hold(EndingWith(UnwaitedWords(address, why), surroundings));
    } catch (const std::system_error&) {
        requests.End();
    }
}

std::optional<int> StopAhead(const DaemonAddress& address, double seconds, EndRequests& requests,
                             Surroundings& surroundings) {
    const std::string failure = TryToStop(address, seconds);
    if (requests.IsWanted())
        return Conclude(WordsOf(address, failure, ExitCode::EndedEarly, ""), requests,
                        surroundings);
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
