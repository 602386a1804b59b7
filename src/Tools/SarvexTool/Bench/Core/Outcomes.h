#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// What became of one chain of a line that was run under supervision.
enum class Outcome : std::uint8_t {
    Measured,
    /// The daemon answered with an error.
    Refused,
    Uncalibrated,
    /// The daemon reported no power of the chain and no error.
    ChainNotActive,
    /// No whole answer came in time.
    TimedOut,
    ConnectionLost,
    /// There is a power, of other settings than those that the line asked for.
    OtherConfiguration,
    /// No run has come to the line; only where runs of some lines were put together.
    NotRun
};

/// "measured", "refused", "uncalibrated", "chain not active", "time-out", "connection lost",
/// "other configuration" or "not run".
const char* NameOf(Outcome outcome);

/// The outcome of that name; nothing for any other text.
std::optional<Outcome> OutcomeNamed(std::string_view name);

/// An outcome, and the daemon's words or what differs, in one line; empty where there are none.
struct ChainOutcome {
    Outcome outcome = Outcome::Measured;
    std::string text;

    bool operator==(const ChainOutcome&) const = default;
};

/// What became of a line.
struct LineOutcome {
    ChainOutcome a;
    ChainOutcome b;
    /// Whether the daemon took the line's settings, and keeps them.
    bool isAccepted = false;

    bool operator==(const LineOutcome&) const = default;
};

/// A line whose transmission has ended and whose row is whole.
struct FinishedLine {
    LineNumber line = 0;
    LineOutcome outcome;
    /// The bytes that the client wrote into result.csv, the line end included.
    std::string row;
};

} // namespace Bench
