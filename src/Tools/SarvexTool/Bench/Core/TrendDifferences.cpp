#include "Tools/SarvexTool/Bench/Core/TrendDifferences.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace Bench {

namespace {

/// A power with the numbers of what it is of. A subject is a device with a firmware.
struct Power {
    std::uint32_t subject = 0;
    std::uint32_t station = 0;
    std::uint32_t visit = 0;
    double power = 0;
};

/// Sums depend on the order of their parts, and a database has none.
bool IsBefore(const Power& left, const Power& right) {
    return std::tie(left.subject, left.station, left.power) <
           std::tie(right.subject, right.station, right.power);
}

/// One for each visit.
std::vector<std::uint32_t> SubjectsOf(const TrendData& data) {
    std::unordered_map<std::string, std::uint32_t> numbers;
    std::vector<std::uint32_t> subjects;
    subjects.reserve(data.visits.size());
    for (const TrendVisit& visit : data.visits) {
        const std::string name =
            std::to_string(visit.device.size()) + " " + visit.device + visit.firmware;
        const auto number = static_cast<std::uint32_t>(numbers.size());
        subjects.push_back(numbers.try_emplace(name, number).first->second);
    }
    return subjects;
}

/// The rows in the order of their items, and where those of each item begin; sorted by counting,
/// because there may be millions. Without subjects, all have the same one.
std::pair<std::vector<Power>, std::vector<std::size_t>>
SortPowers(const TrendData& data, const std::vector<std::uint32_t>& subjects) {
    std::vector<std::size_t> starts(data.items.size() + 1);
    for (const TrendRow& row : data.rows)
        ++starts[row.item + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<Power> powers(data.rows.size());
    std::vector<std::size_t> next = starts;
    for (const TrendRow& row : data.rows)
        powers[next[row.item]++] = {subjects.empty() ? 0 : subjects[row.visit],
                                    data.visits[row.visit].station, row.visit, row.power};
    for (std::size_t item = 0; item < data.items.size(); ++item)
        std::sort(powers.begin() + static_cast<std::ptrdiff_t>(starts[item]),
                  powers.begin() + static_cast<std::ptrdiff_t>(starts[item + 1]), IsBefore);
    return {std::move(powers), std::move(starts)};
}

/// A station's mean of what a reference is of.
struct StationMean {
    std::uint32_t station = 0;
    double mean = 0;
};

struct Reference {
    /// Places in the means.
    std::size_t firstMean = 0;
    std::size_t endOfMeans = 0;
    /// Places in the powers.
    std::size_t first = 0;
    std::size_t end = 0;
    double value = 0;
};

/// The references with all that they are made of.
class References {
public:
    /// Of what at least so many stations have measured.
    References(const TrendData& data, const std::vector<std::uint32_t>& subjects,
               std::size_t neededStations)
        : m_stations(data.stations.size()) {
        std::vector<std::size_t> starts;
        std::tie(m_powers, starts) = SortPowers(data, subjects);
        for (std::size_t item = 0; item < data.items.size(); ++item) {
            for (std::size_t place = starts[item]; place < starts[item + 1];)
                place = AddSubject(place, starts[item + 1], neededStations);
        }
    }

    const std::vector<Power>& Powers() const { return m_powers; }
    const std::vector<Reference>& All() const { return m_references; }

    /// Gives the references their values.
    void Polish() {
        // The stations' offsets come so near to what they would be in the end, which is less than
        // any figure shows. Each round halves what is left, or more, where the stations have much
        // in common.
        constexpr double enough = 1e-6;
        constexpr int mostRounds = 100;
        std::vector<double> offsets(m_stations);
        for (int round = 0; round < mostRounds; ++round) {
            SetReferences(offsets);
            std::vector<double> newOffsets = OffsetsOf();
            double change = 0;
            for (std::size_t station = 0; station < m_stations; ++station)
                change = std::max(change, std::abs(newOffsets[station] - offsets[station]));
            offsets = std::move(newOffsets);
            if (change < enough)
                return;
        }
    }

private:
    /// The powers of one subject begin at the place; returns where they end.
    std::size_t AddSubject(std::size_t place, std::size_t endOfItem, std::size_t neededStations) {
        Reference reference;
        reference.first = place;
        reference.firstMean = m_means.size();
        const std::uint32_t subject = m_powers[place].subject;
        while (place < endOfItem && m_powers[place].subject == subject)
            place = AddMean(place, endOfItem);
        reference.end = place;
        reference.endOfMeans = m_means.size();
        if (reference.endOfMeans - reference.firstMean < neededStations)
            m_means.resize(reference.firstMean);
        else
            m_references.push_back(reference);
        return place;
    }

    /// The powers of one subject and station begin at the place; returns where they end.
    std::size_t AddMean(std::size_t place, std::size_t endOfItem) {
        const Power& first = m_powers[place];
        double sum = 0;
        std::size_t end = place;
        for (; end < endOfItem && m_powers[end].subject == first.subject &&
               m_powers[end].station == first.station;
             ++end)
            sum += m_powers[end].power;
        m_means.push_back({first.station, sum / static_cast<double>(end - place)});
        return end;
    }

    void SetReferences(const std::vector<double>& offsets) {
        std::vector<double> levels;
        for (Reference& reference : m_references) {
            levels.clear();
            for (std::size_t place = reference.firstMean; place < reference.endOfMeans; ++place)
                levels.push_back(m_means[place].mean - offsets[m_means[place].station]);
            reference.value = MedianOf(levels);
        }
    }

    /// 0 for a station that has measured nothing that has a reference.
    std::vector<double> OffsetsOf() const {
        std::vector<std::vector<double>> differences(m_stations);
        for (const Reference& reference : m_references) {
            for (std::size_t place = reference.firstMean; place < reference.endOfMeans; ++place)
                differences[m_means[place].station].push_back(m_means[place].mean -
                                                              reference.value);
        }
        std::vector<double> offsets(m_stations);
        for (std::size_t station = 0; station < m_stations; ++station) {
            if (!differences[station].empty())
                offsets[station] = MedianOf(differences[station]);
        }
        return offsets;
    }

    std::size_t m_stations;
    /// In the order of their items, subjects and stations.
    std::vector<Power> m_powers;
    std::vector<StationMean> m_means;
    std::vector<Reference> m_references;
};

} // namespace

TrendDifferences::TrendDifferences(const TrendData& data, std::size_t stations)
    : m_starts(data.visits.size() + 1), m_areByDevice(stations > 1) {
    const std::size_t neededStations = std::clamp<std::size_t>(stations, 1, 2);
    References references(data, m_areByDevice ? SubjectsOf(data) : std::vector<std::uint32_t>(),
                          neededStations);
    if (m_areByDevice && references.All().empty()) {
        m_areByDevice = false;
        references = References(data, {}, neededStations);
    }
    references.Polish();
    m_references = references.All().size();
    for (const Reference& reference : references.All()) {
        for (std::size_t place = reference.first; place < reference.end; ++place)
            ++m_starts[references.Powers()[place].visit + 1];
    }
    std::partial_sum(m_starts.begin(), m_starts.end(), m_starts.begin());
    m_values.resize(m_starts.back());
    std::vector<std::size_t> next = m_starts;
    for (const Reference& reference : references.All()) {
        for (std::size_t place = reference.first; place < reference.end; ++place) {
            const Power& power = references.Powers()[place];
            m_values[next[power.visit]++] = power.power - reference.value;
        }
    }
}

} // namespace Bench
