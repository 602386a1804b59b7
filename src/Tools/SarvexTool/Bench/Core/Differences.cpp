#include "Tools/SarvexTool/Bench/Core/Differences.h"

#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <map>
#include <span>
#include <tuple>
#include <utility>

namespace Bench {

namespace {

using Kind = Difference::Kind;

/// A number with no more digits than a decimal has: sums of the same numbers in another order
/// differ in the last ones.
double InDecimalDigits(double number) {
    return Decimal::FromUnits(std::llround(number / Decimal::FromUnits(1).ToDouble())).ToDouble();
}

/// Gathers the squared distances of repeated powers from their means.
class RepeatSpread {
public:
    void Add(const RunResult& run, const std::vector<HashedMeasurement>& grouped) {
        std::vector<double> powers;
        for (std::size_t index = 0; index < grouped.size(); ++index) {
            const std::optional<Decimal>& power = run.measurements[grouped[index].place].power;
            if (power)
                powers.push_back(power->ToDouble());
            const bool isLast = index + 1 == grouped.size() ||
                                std::is_neq(Order(run, grouped[index], run, grouped[index + 1]));
            if (isLast) {
                AddGroup(powers);
                powers.clear();
            }
        }
    }

    std::optional<double> StandardDeviation() const {
        constexpr std::size_t fewest = 3;
        if (m_repeats < fewest)
            return std::nullopt;
        return InDecimalDigits(std::sqrt(m_squares / static_cast<double>(m_repeats)));
    }

private:
    void AddGroup(std::span<const double> powers) {
        if (powers.size() < 2)
            return;
        double sum = 0;
        for (const double power : powers)
            sum += power;
        const double mean = sum / static_cast<double>(powers.size());
        for (const double power : powers)
            m_squares += (power - mean) * (power - mean);
        m_repeats += powers.size() - 1;
    }

    double m_squares = 0;
    std::size_t m_repeats = 0;
};

/// Gathers the changes of each band and rate.
class ShiftSums {
public:
    void Add(const Settings& settings, Decimal change) {
        Sum& sum = m_sums[{TextOf(settings[Setting::Band]), TextOf(settings[Setting::Rate])}];
        sum.band = settings[Setting::Band];
        sum.rate = settings[Setting::Rate];
        sum.total += change.ToDouble();
        ++sum.pairs;
    }

    std::vector<Shift> Means() const {
        std::vector<Shift> shifts;
        for (const auto& [key, sum] : m_sums)
            shifts.push_back({sum.band, sum.rate, sum.pairs,
                              InDecimalDigits(sum.total / static_cast<double>(sum.pairs))});
        return shifts;
    }

private:
    struct Sum {
        const std::string* band = nullptr;
        const std::string* rate = nullptr;
        double total = 0;
        std::size_t pairs = 0;
    };

    /// Nothing comes before every text.
    static std::optional<std::string_view> TextOf(const std::string* text) {
        return text == nullptr ? std::nullopt : std::optional<std::string_view>(*text);
    }

    using Key = std::pair<std::optional<std::string_view>, std::optional<std::string_view>>;
    std::map<Key, Sum> m_sums;
};

/// Walks two runs side by side.
class Comparison {
public:
    Comparison(const RunResult& oldRun, const RunResult& newRun, Decimal tolerance)
        : m_old(oldRun), m_new(newRun), m_tolerance(tolerance) {}

    Differences Make() {
        const std::vector<HashedMeasurement> oldPlaces = Grouped(m_old);
        const std::vector<HashedMeasurement> newPlaces = Grouped(m_new);
        RepeatSpread spread;
        spread.Add(m_old, oldPlaces);
        spread.Add(m_new, newPlaces);
        m_result.noise = spread.StandardDeviation();
        m_result.oldOfNew.resize(m_new.measurements.size());
        Merge(oldPlaces, newPlaces);
        m_result.shifts = m_shifts.Means();
        SortDifferences();
        return std::move(m_result);
    }

private:
    void Merge(std::span<const HashedMeasurement> oldPlaces,
               std::span<const HashedMeasurement> newPlaces) {
        while (!oldPlaces.empty() || !newPlaces.empty()) {
            const std::strong_ordering order = Next(oldPlaces, newPlaces);
            if (std::is_lt(order))
                m_result.all.push_back(
                    {Kind::InOldOnly, oldPlaces.front().place, std::nullopt, {}, false});
            else if (std::is_gt(order))
                m_result.all.push_back(
                    {Kind::InNewOnly, std::nullopt, newPlaces.front().place, {}, false});
            else
                AddPair(oldPlaces.front().place, newPlaces.front().place);
            oldPlaces = oldPlaces.subspan(std::is_lteq(order) ? 1 : 0);
            newPlaces = newPlaces.subspan(std::is_gteq(order) ? 1 : 0);
        }
    }

    std::strong_ordering Next(std::span<const HashedMeasurement> oldPlaces,
                              std::span<const HashedMeasurement> newPlaces) const {
        if (newPlaces.empty())
            return std::strong_ordering::less;
        if (oldPlaces.empty())
            return std::strong_ordering::greater;
        return Order(m_old, oldPlaces.front(), m_new, newPlaces.front());
    }

    void AddPair(std::uint32_t oldPlace, std::uint32_t newPlace) {
        ++m_result.pairs;
        m_result.oldOfNew[newPlace] = oldPlace;
        const std::optional<Decimal>& before = m_old.measurements[oldPlace].power;
        const std::optional<Decimal>& after = m_new.measurements[newPlace].power;
        if (before && after)
            AddMeasuredPair(oldPlace, newPlace, *after - *before);
        else if (before)
            m_result.all.push_back({Kind::MeasuredInOldOnly, oldPlace, newPlace, {}, false});
        else if (after)
            m_result.all.push_back({Kind::MeasuredInNewOnly, oldPlace, newPlace, {}, false});
    }

    void AddMeasuredPair(std::uint32_t oldPlace, std::uint32_t newPlace, Decimal change) {
        m_shifts.Add(m_old.SettingsOf(m_old.measurements[oldPlace]), change);
        if (Magnitude(change) <= m_tolerance)
            return;
        const bool isWithinNoise =
            m_result.noise && Magnitude(change).ToDouble() <= *m_result.noise;
        m_result.all.push_back({Kind::Changed, oldPlace, newPlace, change, isWithinNoise});
    }

    void SortDifferences() {
        std::sort(m_result.all.begin(), m_result.all.end(),
                  [](const Difference& left, const Difference& right) {
                      return SortKey(left) < SortKey(right);
                  });
    }

    /// Changes, then measured in one only, then in one only; the larger change first; then by
    /// place, in the old run where it has one.
    static std::tuple<int, Decimal, std::uint32_t, bool> SortKey(const Difference& difference) {
        const bool isInOneOnly =
            difference.kind == Kind::InOldOnly || difference.kind == Kind::InNewOnly;
        const int group = difference.kind == Kind::Changed ? 0 : isInOneOnly ? 2 : 1;
        const std::uint32_t place =
            difference.oldMeasurement ? *difference.oldMeasurement : *difference.newMeasurement;
        return {group, -Magnitude(difference.change), place, !difference.oldMeasurement};
    }

    const RunResult& m_old;
    const RunResult& m_new;
    Decimal m_tolerance;
    ShiftSums m_shifts;
    Differences m_result;
};

} // namespace

Differences Compare(const RunResult& oldRun, const RunResult& newRun, Decimal tolerance) {
    Differences differences = Comparison(oldRun, newRun, tolerance).Make();
    differences.hasEndedEarly = oldRun.earlyEnd || newRun.earlyEnd;
    return differences;
}

std::vector<PlaceShift> ShiftsBy(PlacePart part, const RunResult& oldRun, const RunResult& newRun,
                                 const Differences& differences) {
    const bool isByNew = AreTold(newRun.sources, part);
    const LineGroups groups(isByNew ? newRun.sources : oldRun.sources, part);
    std::vector<PlaceShift> shifts;
    for (const std::optional<std::string>& name : groups.Names())
        shifts.push_back({name, 0, 0});
    for (std::size_t place = 0; place < differences.oldOfNew.size(); ++place) {
        const std::optional<std::uint32_t>& oldPlace = differences.oldOfNew[place];
        const Measurement& after = newRun.measurements[place];
        if (!oldPlace || !after.power || !oldRun.measurements[*oldPlace].power)
            continue;
        const Measurement& before = oldRun.measurements[*oldPlace];
        PlaceShift& shift =
            shifts[groups.GroupOf(isByNew ? newRun.LineOf(after) : oldRun.LineOf(before))];
        ++shift.pairs;
        shift.mean += (*after.power - *before.power).ToDouble();
    }
    std::erase_if(shifts, [](const PlaceShift& shift) { return shift.pairs == 0; });
    for (PlaceShift& shift : shifts)
        shift.mean = InDecimalDigits(shift.mean / static_cast<double>(shift.pairs));
    return shifts;
}

} // namespace Bench
