#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <compare>

namespace Bench {

/// A measurement of a run, and a number made from its settings and chain: a run is sorted without
/// looking at all of its settings again and again.
struct HashedMeasurement {
    std::uint64_t hash = 0;
    /// The place in RunResult::measurements.
    std::uint32_t place = 0;
};

/// Some order of the measurements of runs whose texts are of one pool. The same measurement, with
/// the same settings and chain, is equal.
std::strong_ordering Order(const RunResult& leftRun, const HashedMeasurement& left,
                           const RunResult& rightRun, const HashedMeasurement& right);

/// A run's measurements in that order: repeats are beside each other, in their order.
std::vector<HashedMeasurement> Grouped(const RunResult& run);

/// For each measurement of a run which one of the same it is, from 1.
std::vector<std::uint32_t> RepeatNumbers(const RunResult& run);

} // namespace Bench
