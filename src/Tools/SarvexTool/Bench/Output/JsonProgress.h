#pragma once

#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"
#include "Tools/SarvexTool/Bench/Output/Progress.h"

namespace Bench {

/// One JSON object on a line of its own for each event, for other programs.
///
/// Each has the key "event": "begin", "line" (one is finished), "state" (it has changed) or "end".
/// All but "end" have "linesDone", "linesTotal", "elapsedSeconds", "remainingSeconds" (null while
/// it cannot be told), "state", "detail", "outcomes" (measurements by outcome) and, with limits,
/// "verdicts". Of "line" there are also "line", "settings", "accepted", and "a" and "b", each with
/// "outcome", "text", "power" (dBm or null) and, with limits, "verdict" (null for a chain that is
/// not judged). "end" has the keys of the summary: "complete", "why", "linesDone", "linesTotal",
/// "outcomes", "verdicts", "directory", "notes", "stopConfirmed" (null where no transmission was
/// started), "stopProblem" and "exitCode".
class JsonProgress : public IProgress {
public:
    /// The stream lives longer, and nothing else is written to it.
    explicit JsonProgress(std::ostream& stream) : m_stream(stream) {}

    void Begin(const RunProgress& progress, TimePoint now) override;
    void FinishLine(const RunProgress& progress, TimePoint now) override;
    void Update(const RunProgress& progress, TimePoint now) override;
    void MakeRoom() override {}
    void End(const RunSummary& summary) override;

private:
    std::ostream& m_stream;
    StateChange m_change;
};

} // namespace Bench
