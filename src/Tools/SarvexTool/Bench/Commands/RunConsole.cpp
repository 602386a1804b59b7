#include "Tools/SarvexTool/Bench/Commands/RunConsole.h"

#include "Modules/xFramework/OSAL/Console.h"

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

namespace Bench {

using std::chrono::milliseconds;

namespace {

/// How long a reader has when the program is to end at once.
constexpr milliseconds patience(1000);

std::function<void(std::string)> Into(OutputQueue& queue, std::ostream& stream) {
    return [&](std::string bytes) { queue.Put({&stream, std::move(bytes), nullptr}); };
}

} // namespace

RunConsole::RunConsole(Surroundings& surroundings, bool isJson,
                       std::unique_ptr<EndRequests> pRequests)
    : m_isOutTerminal(OSAL::IsTerminal(OSAL::StandardStream::Output)),
      m_isErrTerminal(OSAL::IsTerminal(OSAL::StandardStream::Error)),
      m_errTarget(surroundings.err.stream),
      m_untied(m_errTarget),
      m_out(m_isOutTerminal == m_isErrTerminal ? m_errQueue : m_ownOutQueue.emplace(),
            surroundings.out.stream, isJson ? nullptr : Into(m_errQueue, m_errTarget)),
      m_err(m_errQueue, m_errTarget),
      m_streams{surroundings.in,
                {m_out, surroundings.out.hasColours},
                {m_err, surroundings.err.hasColours}},
      m_pRequests(std::move(pRequests)) {
    m_err.tie(&m_out);
    m_err.setf(std::ios_base::unitbuf);
}

RunConsole::~RunConsole() {
    m_err.tie(nullptr);
}

void RunConsole::Finish(int exitCode) {
    constexpr milliseconds pause(50);
    m_out.flush();
    m_err.flush();
    while (!IsWrittenWithin(pause)) {
        if (m_pRequests->AreUrgent() && !IsWrittenWithin(patience))
            GiveUp(exitCode);
    }
}

void RunConsole::GiveUp(int exitCode) {
    // Standard error may have another reader than standard output; if not, this one is missing too.
    OutputQueue others;
    for (OutputQueue::Text& text : m_errQueue.Withdraw(m_errTarget))
        others.Put(std::move(text));
    others.WaitUntilEmpty(patience);
    // A thread that waits for a reader cannot be ended otherwise.
    std::_Exit(exitCode);
}

bool RunConsole::IsWrittenWithin(milliseconds time) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + time;
    // What the one does not take is put into the other.
    return OutQueue().WaitUntilEmpty(time) &&
           m_errQueue.WaitUntilEmpty(std::chrono::ceil<milliseconds>(end - Clock::now()));
}

} // namespace Bench
