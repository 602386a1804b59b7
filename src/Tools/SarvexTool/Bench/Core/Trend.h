#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Bench {

/// A bench whose runs are followed. The devices and their firmwares are told beside it: a change of
/// them shows in the same way as a drift, or hides one.
struct TrendStation {
    /// "unknown" stands for the runs of which nothing tells the bench. Any text.
    std::string name;
    /// Each once, in the order of their names.
    std::vector<std::string> devices;
    std::vector<std::string> firmwares = {};
};

/// What one station measured in one run.
struct TrendVisit {
    /// The place in TrendData::stations.
    std::uint32_t station = 0;
    /// In seconds since 1970, UTC.
    std::int64_t measuredAt = 0;
    /// The first digits of the run's hash, as the commands take them.
    std::string run;
    /// That of its powers. Empty where nothing tells it, or there are several. Any text.
    std::string device;
    bool hasSeveralDevices = false;
};

/// What is measured again and again: a configuration and a chain. The texts belong to a pool.
struct TrendItem {
    Settings settings;
    Chain chain = Chain::A;
};

/// What a visit was asked for and has not measured.
struct TrendMissing {
    /// The place in TrendData::visits.
    std::uint32_t visit = 0;
    /// The place in TrendData::items: some other visit has measured it.
    std::uint32_t item = 0;
};

/// A measured power; what was not measured is no row.
struct TrendRow {
    /// The place in TrendData::visits.
    std::uint32_t visit = 0;
    /// The place in TrendData::items.
    std::uint32_t item = 0;
    /// In dBm: finite, with at most nine digits before the point.
    double power = 0;
};

/// A value of a setting, any text.
struct SettingValue {
    Setting setting = Setting::Band;
    std::string value;

    bool operator==(const SettingValue&) const = default;
};

/// The kept powers that a trend is made of, in no order but that of the visits, which are in the
/// order of time.
struct TrendData {
    std::vector<TrendStation> stations;
    std::vector<TrendVisit> visits;
    std::vector<TrendItem> items;
    std::vector<TrendRow> rows;
    std::vector<TrendMissing> missing = {};
    /// The moment that the runs are followed to, in seconds since 1970, UTC; the time of the last
    /// visit where that is later.
    std::int64_t followedTo = 0;
    /// Whether there was no run at all to choose from: none is kept, or the filter leaves none.
    bool hasNoRun = false;
    /// What was chosen of which nothing was ever kept; then there are no rows.
    std::vector<SettingValue> neverKept = {};
};

/// The median: of an even number, the mean of the two in the middle. The numbers, at least one, are
/// put in another order.
double MedianOf(std::span<double> numbers);

/// The limits of an individuals control chart, from its moving ranges.
struct ControlLimits {
    double mean = 0;
    /// The standard deviation of a run, estimated from the mean moving range: a step, which is one
    /// of many ranges, widens it little. An outlier is in two of them, and a large one among few
    /// runs widens it much.
    double sigma = 0;

    double Lower() const { return mean - Distance(); }
    double Upper() const { return mean + Distance(); }
    /// From the mean to each of the limits.
    double Distance() const { return std::max(Sigmas * sigma, Least); }
    /// The share of the usual number of measurements that the value is made of, at most 1: the
    /// standard deviation of fewer is larger, by the root of their number.
    bool AreKeptBy(double value, double share = 1) const;
    /// How many standard deviations a value is from the mean.
    double DistanceOf(double value, double share = 1) const;

    static constexpr double Sigmas = 3;
    /// In dB: a smaller change is not shown, and is none.
    static constexpr double Least = 0.01;
    /// The expected range of two values, in standard deviations: d2 for a sample of two.
    static constexpr double RangeOfTwo = 1.128;
    /// With fewer values there are no limits.
    static constexpr std::size_t FewestValues = 8;
};

/// The mean of the values, and their standard deviation as the mean of the ranges of neighbours,
/// divided by 1.128. Source: NIST/SEMATECH e-Handbook of Statistical Methods, 6.3.2.2, "Individuals
/// Control Charts". Nothing for fewer values than FewestValues.
std::optional<ControlLimits> ControlLimitsOf(std::span<const double> values);

/// One run of a station, held against the references.
struct TrendPoint {
    /// The place in TrendData::visits.
    std::uint32_t visit = 0;
    /// The median of the run's differences from the references, in dB.
    double median = 0;
    /// How many differences.
    std::uint32_t count = 0;
    bool isBeyond = false;
};

/// The medians of the points, in their order.
std::vector<double> MediansOf(std::span<const TrendPoint> points);

/// The last runs that were displaced, of a station with a run beyond its limits.
struct Drift {
    /// Places in StationTrend::points.
    std::size_t first = 0;
    std::size_t last = 0;
    /// The median of these runs less that of the runs before, or of those after where there are
    /// none before; in dB.
    double change = 0;
    /// Else it is an outlier, one run alone, as by chance 3 of 1,000 are beyond: the station does
    /// not drift.
    bool isLasting = false;
    /// Whether the last run of all is one of these: else it is over.
    bool goesOn = false;
    /// No two runs beyond are together on one side of the mean, none is the last run of all, and
    /// those after the only one of a side have come back.
    bool isOfLoneRuns = false;

    bool IsNow() const { return isLasting && goesOn; }
    /// Whether a place is one of these, or between them.
    bool Has(std::size_t place) const { return first <= place && place <= last; }
};

/// What a station's runs tell of it.
struct StationTrend {
    /// The place in TrendData::stations.
    std::uint32_t station = 0;
    /// In the order of time; without the runs that share nothing with another station.
    std::vector<TrendPoint> points;
    /// Stations of one group have measured the same, each at least with one other of it.
    std::size_t group = 0;
    /// It has no point for more than three times the usual time between its points: with runs of
    /// it since, for more than a day; with runs of others only, for more than four weeks.
    bool isBehind = false;
    /// Whether it has runs after its last point.
    bool hasRunSince = false;
    /// The median of the points. Nothing where there are no points, or no other station.
    std::optional<double> offset;
    /// The offset is farther from the mean of the others' than one is by chance in 370; told only
    /// of a station that does not drift, and with three such others in its group.
    bool isApart = false;
    /// How many times as much as those of others of its group its neighbouring runs differ, where
    /// that is so much that a small drift would not show; else 0.
    double timesAsErratic = 0;
    /// How many measurements the last of its visits that was asked for them has not made, though it
    /// or another station has made them at another time.
    std::size_t lost = 0;
    /// Where anything was not made: how many measurements its visits were asked for.
    std::size_t asked = 0;
    bool HasLostAll() const { return lost != 0 && lost == asked; }
    /// Where measurements are lost, the last visit that has lost one.
    std::uint32_t lastLoss = 0;
    /// Nothing with too few points.
    std::optional<ControlLimits> limits;
    /// How many points the limits leave out, because each of them was alone beyond those of all.
    std::size_t leftOut = 0;
    std::size_t beyond = 0;
    /// The largest distance from the mean, in standard deviations, of a point beyond that is one of
    /// the drift, without what the limits leave out between them; 0 where none is.
    double farthest = 0;
    /// There is one where a point is beyond.
    std::optional<Drift> drift;
    std::size_t powers = 0;
    /// With limits of powers only.
    std::size_t outOfLimits = 0;
    std::size_t withoutLimit = 0;
    /// Where powers are out of their limits, the last visit with such a one.
    std::uint32_t lastOut = 0;
};

/// What the stations' runs are held against.
enum class TrendBasis : std::uint8_t {
    /// There is no power.
    Nothing,
    /// There is one station, and each power is held against the mean of the same ones.
    OwnMean,
    /// The references are half-way between the two.
    TwoStations,
    /// The references are medians, which a drifting station moves little.
    Stations
};

/// The stations' trends.
struct Trend {
    TrendBasis basis = TrendBasis::Nothing;
    /// What drifts comes first, the farthest beyond its limits leading; then what has drifted; then
    /// what has outliers; then what has lost measurements or is erratic; then what is apart, then
    /// what has too few runs; all else by name.
    std::vector<StationTrend> stations;
    /// How many items have a reference.
    std::size_t sharedItems = 0;
    /// How many powers have no reference.
    std::size_t withoutReference = 0;
    /// How many groups of stations share nothing with each other.
    std::size_t groups = 0;
    /// Whether one of several groups has two stations, between which the references are half-way.
    bool hasPairs = false;
    /// Whether there were limits of powers.
    bool isJudged = false;
    /// Whether a station has measured several devices, or firmwares.
    bool isMixed = false;

    /// Those that drift now.
    std::size_t CountDrifting() const;
    /// Whether all stations, at least three, drift now, and to one side.
    bool HasCommonDrift() const;
    /// Those without control limits.
    std::size_t CountTooFew() const;
    std::size_t CountPowers() const;
    std::size_t CountOutOfLimits() const;
    /// Powers that no limit fits, where there were limits.
    std::size_t CountWithoutLimit() const;
    /// Whether there were limits, and none of them fits any power.
    bool HasNoLimit() const;
    /// Those that are behind and have run since.
    std::size_t CountNotFollowed() const;
    /// Those that have lost measurements.
    std::size_t CountWithLost() const;
    /// Those whose runs differ far more than the others'.
    std::size_t CountErratic() const;
    /// Nothing drifts or is lost, no power is out of its limits, there was enough to tell up to the
    /// last run, limits that were given fit something, no station's runs differ far more than the
    /// others', and each station has measured one device with one firmware.
    bool IsFine() const;
};

/// Follows the stations. An item's reference is the median of the stations' mean powers of it,
/// where at least two stations have it. The limits are null, or one for each item: null where there
/// is none.
Trend TrendOf(const TrendData& data, const std::vector<const Limit*>* limits = nullptr);

/// The first limit of the table for each item.
std::vector<const Limit*> LimitsOf(const TrendData& data, LimitTable& table);

/// The mean power of a run, where there is one item.
struct TrendPower {
    std::uint32_t visit = 0;
    double power = 0;
    bool isOut = false;
};

/// The powers of the visits in their order, where the data have just one item; else none.
std::vector<TrendPower> PowersOf(const TrendData& data,
                                 const std::vector<const Limit*>* limits = nullptr);

} // namespace Bench
