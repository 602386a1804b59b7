#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Run/EndRequests.h"
#include "Tools/SarvexTool/Bench/Run/OutputQueue.h"

#include <chrono>
#include <memory>
#include <optional>
#include <ostream>

namespace Bench {

/// The standard streams of a run, which never wait for their readers, and the requests to end it,
/// until its last words are out. Texts of both streams are written in the order in which they were
/// printed, unless just one of the two is a terminal: that one does not wait for the other's
/// reader.
class RunConsole {
public:
    /// While it lives, nothing else writes to the surroundings' streams. What standard output does
    /// not take goes to standard error, but not JSON. The requests may be held already.
    RunConsole(Surroundings& surroundings, bool isJson, std::unique_ptr<EndRequests> pRequests);
    /// Waits until all is written, as long as that may take.
    ~RunConsole();
    RunConsole(const RunConsole&) = delete;
    RunConsole& operator=(const RunConsole&) = delete;

    Surroundings& Streams() { return m_streams; }
    EndRequests& Requests() { return *m_pRequests; }

    /// Whether somebody sits at the other end, known without asking it again.
    bool IsOutTerminal() const { return m_isOutTerminal; }
    bool IsErrTerminal() const { return m_isErrTerminal; }
    /// Whether all that was printed on standard error has been written.
    bool IsErrWritten() const { return m_errQueue.IsEmpty(); }

    /// Waits until all is written. A request to end the program, after the run or the second one,
    /// leaves a second for it and one more for standard error, and then ends the program with the
    /// exit code.
    void Finish(int exitCode);

private:
    OutputQueue& OutQueue() { return m_ownOutQueue ? *m_ownOutQueue : m_errQueue; }
    bool IsWrittenWithin(std::chrono::milliseconds time);
    [[noreturn]] void GiveUp(int exitCode);

    /// Keeps a stream from flushing another one, which would wait for that one's reader.
    class Untied {
    public:
        explicit Untied(std::ostream& stream) : m_stream(stream), m_pTied(stream.tie(nullptr)) {}
        ~Untied() { m_stream.tie(m_pTied); }
        Untied(const Untied&) = delete;
        Untied& operator=(const Untied&) = delete;

    private:
        std::ostream& m_stream;
        std::ostream* m_pTied;
    };

    bool m_isOutTerminal;
    bool m_isErrTerminal;
    std::ostream& m_errTarget;
    Untied m_untied;
    OutputQueue m_errQueue;
    std::optional<OutputQueue> m_ownOutQueue;
    QueuedStream m_out;
    QueuedStream m_err;
    Surroundings m_streams;
    /// The last member: while the others wait for a reader, a request is to end the program.
    std::unique_ptr<EndRequests> m_pRequests;
};

} // namespace Bench
