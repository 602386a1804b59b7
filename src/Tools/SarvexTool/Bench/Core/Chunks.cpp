#include "Tools/SarvexTool/Bench/Core/Chunks.h"

#include <cstdint>

namespace Bench {

std::vector<LineRange> CutLines(LineRange lines, LineNumber most) {
    const std::uint64_t total = lines.Count();
    const std::uint64_t count = (total + most - 1) / most;
    std::vector<LineRange> chunks;
    chunks.reserve(count);
    LineNumber first = lines.first;
    for (std::uint64_t index = 0; index < count; ++index) {
        const std::uint64_t size = total / count + (index < total % count ? 1 : 0);
        chunks.push_back({first, first + static_cast<LineNumber>(size) - 1});
        first = chunks.back().last + 1;
    }
    return chunks;
}

double EstimateSeconds(const std::vector<LineRange>& chunks, std::size_t benches,
                       const RunConditions& conditions) {
    double seconds = 0;
    // The benches take as long as the one that gets the first chunk, which no other is larger than.
    for (std::size_t index = 0; index < chunks.size(); index += benches)
        seconds += EstimateSeconds(chunks[index].Count(), conditions);
    return seconds;
}

} // namespace Bench
