#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/RunProgress.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"
#include "Tools/SarvexTool/Bench/Output/Progress.h"
#include "Tools/SarvexTool/Bench/Run/RunWatcher.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// Follows a run line by line: keeps what its console shows, and holds each line against the limits
/// as it comes.
class RunWatch : public IRunWatcher {
public:
    /// How a run is judged while it lasts.
    struct Judging {
        /// Null without limits; its texts belong to the pool.
        LimitTable* pLimits = nullptr;
        bool failFast = false;
    };

    /// The pool, the limits and the progress live longer.
    RunWatch(IProgress& progress, TextPool& texts, const Judging& judging, std::size_t linesTotal);

    /// Takes a line of an earlier part of the run, before Begin.
    void AddEarlier(const FinishedLine& line, const OwnSettings& own) { Add(line, own); }

    /// The time that a line takes, as far as it is known beforehand, in seconds.
    void Begin(double expectedSecondsOfALine);

    void BeginLine(LineNumber line, const OwnSettings& own) override;
    std::string FinishLine(const FinishedLine& line, const OwnSettings& own) override;
    void ShowState(RunState::Kind state, const std::string& detail) override;
    void Tick() override;

    /// Whether a run that ended early for this reason did so because a line did not pass.
    bool HasFailedFast(const std::string& reason) const {
        return !reason.empty() && reason == m_whyFailedFast;
    }
    const RunProgress& Progress() const { return m_progress; }
    /// The first measurements without a power, as many as a summary shows.
    const std::vector<MissingMeasurement>& Missing() const { return m_missing; }

private:
    using Clock = std::chrono::steady_clock;

    /// Whether all its measurements have passed or, without limits, have a power.
    bool Add(const FinishedLine& line, const OwnSettings& own);
    bool Judge(const RunResult& result);
    void NoteMissing(const FinishedLine& line, const RunResult& result);
    Settings Kept(const OwnSettings& own);
    void SetTimes();

    IProgress& m_shown;
    TextPool& m_texts;
    Judging m_judging;
    RunProgress m_progress;
    RunResultBuilder m_builder;
    std::vector<MissingMeasurement> m_missing;
    std::string m_whyFailedFast;
    RunPace m_pace;
    Clock::time_point m_start;
    Clock::time_point m_stateStart;
    /// How long the run did anything but measure.
    Clock::duration m_lost{};
};

} // namespace Bench
