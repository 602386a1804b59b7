#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <compare>

namespace Bench {

/// Some order of the measurements of runs whose texts are of one pool. The same measurement, with
/// the same settings and chain, is equal.
std::strong_ordering Order(const RunResult& leftRun, std::uint32_t left, const RunResult& rightRun,
                           std::uint32_t right);

/// The places of a run's measurements in that order: repeats are beside each other, in their order.
std::vector<std::uint32_t> Grouped(const RunResult& run);

/// For each measurement of a run which one of the same it is, from 1.
std::vector<std::uint32_t> RepeatNumbers(const RunResult& run);

} // namespace Bench
