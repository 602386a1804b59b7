#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/RunProgress.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Bench {

/// A measurement without a power, and why.
struct MissingMeasurement {
    LineNumber line = 0;
    Chain chain = Chain::A;
    ChainOutcome outcome;
};

/// What a run has come to. Texts may hold any bytes.
struct RunSummary {
    /// Whether each line has its row.
    bool isComplete = false;
    /// Why the run ended early, as a sentence without its end; empty when it is complete.
    std::string whyEnded;
    std::size_t linesDone = 0;
    std::size_t linesTotal = 0;
    OutcomeCounts outcomes;
    /// With limits only.
    std::optional<VerdictTotals> verdicts;
    /// The first ones, as many as are to be shown.
    std::vector<MissingMeasurement> missing;
    /// The run directory; empty when it is not there any more.
    std::string directory;
    /// What else there is to know, each a sentence with its end.
    std::vector<std::string> notes;
    /// Whether a transmission was ever started.
    bool hasTransmitted = false;
    /// The table of limits, where there is one.
    std::optional<std::string> limits;
    /// Why it is not known that the last transmission was stopped, as a sentence without its end;
    /// nothing when it is known.
    std::optional<std::string> unconfirmedStop;
    /// What the option --daemon has to be for the daemon of the run; empty when it is not needed.
    std::string daemon;
    int exitCode = 0;
};

/// Tells people, in lines of 80 columns. Where the transmitter may be on, that comes last.
void PrintSummary(std::ostream& stream, const RunSummary& summary);

} // namespace Bench
