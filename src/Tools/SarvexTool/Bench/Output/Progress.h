#pragma once

#include "Tools/SarvexTool/Bench/Core/RunProgress.h"
#include "Tools/SarvexTool/Bench/Output/RunSummary.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>

namespace Bench {

/// Tells how far a run is while it lasts. It has no clock: callers pass the time, which never goes
/// back. Nothing is thrown when the stream does not take what is written.
class IProgress {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~IProgress() = default;

    /// The run begins, or goes on after an interruption.
    virtual void Begin(const RunProgress& progress, TimePoint now) = 0;

    /// A line is finished: it is the last one of the progress and counted there.
    virtual void FinishLine(const RunProgress& progress, TimePoint now) = 0;

    /// To be called when anything else has changed, and several times a second while nothing does.
    virtual void Update(const RunProgress& progress, TimePoint now) = 0;

    /// To be called before anything else is written to the same console.
    virtual void MakeRoom() = 0;

    /// The run has ended. Callers print the summary themselves where people read it.
    virtual void End(const RunSummary& summary) = 0;
};

/// One line in its place on a terminal, drawn at most ten times a second and gone at the end. While
/// the terminal takes nothing, nothing more is drawn.
class TerminalProgress : public IProgress {
public:
    /// width tells how many columns the terminal has now, isWritten whether it has taken all that
    /// the stream was given. The stream lives longer.
    TerminalProgress(std::ostream& stream, std::function<std::size_t()> width,
                     std::function<bool()> isWritten);

    void Begin(const RunProgress& progress, TimePoint now) override { Update(progress, now); }
    void FinishLine(const RunProgress& progress, TimePoint now) override { Update(progress, now); }
    void Update(const RunProgress& progress, TimePoint now) override;
    void MakeRoom() override;
    void End(const RunSummary& summary) override;

private:
    std::ostream& m_stream;
    std::function<std::size_t()> m_width;
    std::function<bool()> m_isWritten;
    TimePoint m_nextDrawing = TimePoint::min();
    /// So many columns of the terminal's line are in use.
    std::size_t m_drawnWidth = 0;
};

/// Tells whether a state is another one than that before; its time does not matter.
class StateChange {
public:
    bool Note(const RunState& state);

private:
    RunState m_last;
};

/// A line of text at the beginning, whenever the state changes, and every 30 s.
class LineProgress : public IProgress {
public:
    /// The stream lives longer.
    explicit LineProgress(std::ostream& stream) : m_stream(stream) {}

    void Begin(const RunProgress& progress, TimePoint now) override;
    void FinishLine(const RunProgress& progress, TimePoint now) override { Update(progress, now); }
    void Update(const RunProgress& progress, TimePoint now) override;
    void MakeRoom() override {}
    void End(const RunSummary& /*summary*/) override {}

private:
    void Write(const RunProgress& progress, TimePoint now);

    std::ostream& m_stream;
    StateChange m_change;
    TimePoint m_nextLine = TimePoint::min();
};

} // namespace Bench
