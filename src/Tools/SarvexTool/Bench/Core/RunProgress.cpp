#include "Tools/SarvexTool/Bench/Core/RunProgress.h"

#include <numeric>

namespace Bench {

void OutcomeCounts::Add(const LineOutcome& line, ExpectedChains chains) {
    if (!chains.AreKnown()) {
        chains.a = line.a.outcome == Outcome::Measured;
        chains.b = line.b.outcome == Outcome::Measured;
        // One of the two says why there is no power: one with a reason, if there is one.
        if (!chains.AreKnown()) {
            chains.b = line.a.outcome == Outcome::ChainNotActive;
            chains.a = !chains.b;
        }
    }
    if (chains.a)
        Add(line.a.outcome);
    if (chains.b)
        Add(line.b.outcome);
}

std::size_t OutcomeCounts::Total() const {
    return std::accumulate(m_counts.begin(), m_counts.end(), std::size_t{0});
}

const char* NameOf(RunState::Kind kind) {
    constexpr std::array<const char*, 4> names{"measuring", "waiting for the daemon", "repeating",
                                               "stopping the transmission"};
    return names.at(static_cast<std::size_t>(kind));
}

double EstimateRemaining(const RunPace& pace, std::size_t lines) {
    constexpr double weightOfExpectation = 5;
    const double seconds = pace.seconds + weightOfExpectation * pace.expectedSeconds;
    return seconds / (static_cast<double>(pace.lines) + weightOfExpectation) *
           static_cast<double>(lines);
}

} // namespace Bench
