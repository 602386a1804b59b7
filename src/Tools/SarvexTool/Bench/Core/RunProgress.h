#pragma once

#include "Tools/SarvexTool/Bench/Core/Decimal.h"
#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace Bench {

/// The outcomes of a line that was run.
inline constexpr std::size_t OutcomeCount =
    static_cast<std::size_t>(Outcome::OtherConfiguration) + 1;

/// How often each outcome was that of a measurement.
class OutcomeCounts {
public:
    /// Adds the chains that the line's configuration names. When these are not known, what was
    /// measured counts, or one measurement when nothing was.
    void Add(const LineOutcome& line, ExpectedChains chains);

    std::size_t Count(Outcome outcome) const {
        return m_counts.at(static_cast<std::size_t>(outcome));
    }
    std::size_t Total() const;
    /// All but the measured ones. A power of another configuration is not one of the line's.
    std::size_t NotMeasured() const { return Total() - Count(Outcome::Measured); }

    bool operator==(const OutcomeCounts&) const = default;

private:
    void Add(Outcome outcome) { ++m_counts.at(static_cast<std::size_t>(outcome)); }

    std::array<std::size_t, OutcomeCount> m_counts{};
};

using VerdictTotals = std::array<std::size_t, VerdictCount>;

/// What a run is doing.
struct RunState {
    enum class Kind : std::uint8_t {
        /// The client measures, line after line.
        Measuring,
        /// The daemon does not answer.
        WaitingForDaemon,
        /// An exchange without a whole answer is made once more.
        Repeating,
        /// The run ends; the transmission is being stopped.
        Stopping
    };

    Kind kind = Kind::Measuring;
    /// How long it has been so, in seconds.
    double seconds = 0;
    /// Why, or what is waited for, in a few words; may be empty. It may hold a daemon's text.
    std::string detail;
};

/// "measuring", "waiting for the daemon", "repeating" or "stopping the transmission".
const char* NameOf(RunState::Kind kind);

/// A chain of a finished line.
struct FinishedChain {
    ChainOutcome outcome;
    /// In dBm; nothing where there is none.
    std::optional<Decimal> power;
    /// With limits, where the chain is one to be judged.
    std::optional<Verdict> verdict;
};

/// The line that was finished last; number 0 before the first. The settings are those that the line
/// writes itself, for example "Band 5, Channel 42", with cells as they are in the file.
struct LastLine {
    LineNumber line = 0;
    std::string settings;
    /// Whether the daemon took them.
    bool isAccepted = false;
    FinishedChain a;
    FinishedChain b;
};

/// How far a run is: what its console shows while it lasts. Line numbers are those of the test
/// file; counts of lines do not include its header.
struct RunProgress {
    std::size_t linesDone = 0;
    std::size_t linesTotal = 0;
    /// Of this call of the program, in seconds.
    double elapsedSeconds = 0;
    /// Nothing while it cannot be told.
    std::optional<double> remainingSeconds;
    /// The line that is under way, 0 between two, and the settings that it writes itself.
    LineNumber line = 0;
    std::string settings;
    LastLine last;
    OutcomeCounts outcomes;
    /// With limits only.
    std::optional<VerdictTotals> verdicts;
    RunState state;
};

/// How fast lines were run.
struct RunPace {
    /// The lines that were run in this call of the program, not in an earlier one.
    std::size_t lines = 0;
    /// What they took together, in seconds, less the time in which the daemon was waited for.
    double seconds = 0;
    /// What a line was expected to take, in seconds.
    double expectedSeconds = 1;
};

/// How long so many more lines will take, in seconds. The expectation counts as much as a few lines
/// that were run: the first ones alone tell little.
double EstimateRemaining(const RunPace& pace, std::size_t lines);

} // namespace Bench
