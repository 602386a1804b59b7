#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// A measurement of one run beside the same measurement of another.
struct Difference {
    enum class Kind : std::uint8_t {
        /// Measured in both, with a change beyond the tolerance.
        Changed,
        MeasuredInOldOnly,
        MeasuredInNewOnly,
        /// In one of the runs only, measured there or not.
        InOldOnly,
        InNewOnly
    };

    Kind kind = Kind::Changed;
    /// The places in RunResult::measurements; nothing where the run does not have it.
    std::optional<std::uint32_t> oldMeasurement;
    std::optional<std::uint32_t> newMeasurement;
    /// New less old, in dB; for Changed only.
    Decimal change;
    /// The change is not larger than what repeated lines of one run differ by.
    bool isWithinNoise = false;
};

/// How far the powers of one band and rate have moved together.
struct Shift {
    /// Null where the setting is unknown.
    const std::string* band = nullptr;
    const std::string* rate = nullptr;
    std::size_t pairs = 0;
    /// The mean of new less old over the pairs that are measured in both runs, in dB.
    double mean = 0;
};

/// How far the powers have moved together that have the same bench, device or attempt.
struct PlaceShift {
    /// Nothing for those of which nothing tells it.
    std::optional<std::string> name;
    std::size_t pairs = 0;
    /// As for Shift.
    double mean = 0;
};

/// How two runs differ.
struct Differences {
    /// Changes first, the largest first; then what is measured in one only; then what is in one
    /// only; each in the order of the lines.
    std::vector<Difference> all;
    /// Sorted by band and rate, texts in their byte order, unknown ones first.
    std::vector<Shift> shifts;
    /// Pairs of measurements that both runs have.
    std::size_t pairs = 0;
    /// For each measurement of the new run the same one of the old; nothing where it has none.
    std::vector<std::optional<std::uint32_t>> oldOfNew;
    /// The standard deviation of repeated lines within a run, in dB, pooled over the repeats of
    /// both runs: the root of the squared distances from each repeated measurement's mean, summed
    /// and divided by the number of repeats beyond the first of each. Nothing with fewer than three
    /// such repeats. Rounded to a Decimal's digits: repeats of 10, 10.1 and 10.2 deviate by 0.1,
    /// and a change of 0.1 is within that.
    std::optional<double> noise;
    /// Whether one of the runs ended early: what its other lines would have given nobody knows.
    bool hasEndedEarly = false;

    bool AreAlike() const { return all.empty() && !hasEndedEarly; }
};

/// Compares two runs whose texts were kept in one pool. Measurements are the same when all their
/// settings and their chain are; those that a run has several times are paired in their order. A
/// change of exactly the tolerance is none.
Differences Compare(const RunResult& oldRun, const RunResult& newRun, Decimal tolerance);

/// The shifts of pairs that are measured in both runs, by the place that the new run tells, or by
/// that of the old run where the new one tells that part of no line. Without those that have no
/// pair, in the order of LineGroups.
std::vector<PlaceShift> ShiftsBy(PlacePart part, const RunResult& oldRun, const RunResult& newRun,
                                 const Differences& differences);

} // namespace Bench
