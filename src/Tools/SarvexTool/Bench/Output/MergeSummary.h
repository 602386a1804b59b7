#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Bench {

/// What one bench has measured of a plan.
struct BenchShare {
    /// Nothing for runs that were not told their bench.
    std::optional<std::string> name;
    std::size_t chunks = 0;
    std::size_t lines = 0;
    /// What its lines have taken together.
    double seconds = 0;
};

/// What a merged run has come to. Texts may hold any bytes.
struct MergeSummary {
    std::size_t chunksTotal = 0;
    /// Those with a complete run.
    std::size_t chunksDone = 0;
    std::size_t linesTotal = 0;
    std::size_t linesDone = 0;
    std::vector<BenchShare> benches;
    /// Runs of the chunks that were not used.
    std::size_t otherAttempts = 0;
    /// Of all lines, run or not.
    std::size_t measurements = 0;
    std::size_t measured = 0;
    /// What else there is to know, each a sentence with its end.
    std::vector<std::string> notes;
    std::string directory;
};

/// Tells people, in lines of 80 columns where names allow it.
void PrintSummary(std::ostream& stream, const MergeSummary& summary);

} // namespace Bench
