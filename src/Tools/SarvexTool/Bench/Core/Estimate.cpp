#include "Tools/SarvexTool/Bench/Core/Estimate.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr double pause = 1;
constexpr double slowPause = 5;
constexpr double exchangesBeforeLines = 2;
constexpr double exchangesOfLine = 2;

} // namespace

double EstimateSeconds(std::size_t lines, const RunConditions& conditions) {
    const auto count = static_cast<double>(lines);
    const double exchanges = exchangesBeforeLines + exchangesOfLine * count;
    return count * (conditions.isSlowDevice ? slowPause : pause) +
           exchanges * conditions.exchangeSeconds;
}

std::uint64_t MostLines(const ConnectionLimits& limits) {
    return std::min(limits.openFiles, limits.ports) / 2;
}

} // namespace Bench
