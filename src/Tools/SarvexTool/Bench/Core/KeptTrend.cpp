#include "Tools/SarvexTool/Bench/Core/KeptTrend.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Bench {

namespace {

constexpr double firstTooLarge = 1e9;
constexpr std::size_t shownDigits = 8;

bool Fits(const std::optional<std::string>& wanted, const std::optional<std::string>& told) {
    return !wanted || wanted == told;
}

} // namespace

bool WantedItems::Have(const Settings& all) const {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const std::string* const text = all[static_cast<Setting>(index)];
        if (settings.at(index) && (text == nullptr || *text != *settings.at(index)))
            return false;
    }
    return true;
}

KeptTrend::KeptTrend(const KeptHistory& history, const RunFilter& filter, const WantedItems& wanted)
    : m_configurations(history.configurations),
      m_items(history.configurations.size() * chainCount, leftOut) {
    for (const KeptFacts& run : history.runs)
        AddRun(run, filter);
    m_firstParts.push_back(m_visitOfPart.size());
    m_isWanted.reserve(m_items.size());
    for (const Settings& settings : history.configurations) {
        const bool isWanted = wanted.Have(settings);
        for (const Chain chain : {Chain::A, Chain::B, Chain::None})
            m_isWanted.push_back(isWanted && (!wanted.chain || wanted.chain == chain));
    }
}

void KeptTrend::AddRun(const KeptFacts& run, const RunFilter& filter) {
    m_firstParts.push_back(m_visitOfPart.size());
    const std::size_t firstOfRun = m_data.visits.size();
    for (const RunPlace& place : run.parts) {
        const bool counts = Fits(filter.bench, place.bench.value_or(UnknownBench)) &&
                            Fits(filter.device, place.device);
        m_visitOfPart.push_back(counts ? VisitOf(run, place, firstOfRun) : leftOut);
    }
}

std::uint32_t KeptTrend::VisitOf(const KeptFacts& run, const RunPlace& place,
                                 std::size_t firstOfRun) {
    const std::uint32_t station = StationOf(place);
    const std::string device = place.device.value_or("");
    // A bench that has measured several parts of a run, or several devices in it, visits it once.
    for (std::size_t visit = firstOfRun; visit < m_data.visits.size(); ++visit) {
        if (m_data.visits[visit].station == station)
            return static_cast<std::uint32_t>(visit);
    }
    m_data.visits.push_back({station, run.measuredAt, run.hash.substr(0, shownDigits), device});
    return static_cast<std::uint32_t>(m_data.visits.size() - 1);
}

std::uint32_t KeptTrend::StationOf(const RunPlace& place) {
    const std::string name = place.bench.value_or(UnknownBench);
    const auto [found, isNew] =
        m_stations.try_emplace(name, static_cast<std::uint32_t>(m_data.stations.size()));
    if (isNew)
        m_data.stations.push_back({name, {}});
    if (place.device) {
        std::vector<std::string>& devices = m_data.stations[found->second].devices;
        const auto after = std::lower_bound(devices.begin(), devices.end(), *place.device);
        if (after == devices.end() || *after != *place.device)
            devices.insert(after, *place.device);
    }
    return found->second;
}

void KeptTrend::Add(const KeptPower& power) {
    const std::size_t part = m_firstParts[power.run] + power.part;
    const std::size_t place =
        power.configuration * chainCount + static_cast<std::size_t>(power.chain);
    // What is no number is not smaller, either.
    if (part >= m_firstParts[power.run + 1] || m_visitOfPart[part] == leftOut ||
        !m_isWanted[place] || !(std::abs(power.power) < firstTooLarge))
        return;
    if (m_items[place] == leftOut) {
        m_items[place] = static_cast<std::uint32_t>(m_data.items.size());
        m_data.items.push_back({m_configurations[power.configuration], power.chain});
    }
    m_data.rows.push_back({m_visitOfPart[part], m_items[place], power.power});
}

TrendData KeptTrend::Take() {
    return std::exchange(m_data, {});
}

} // namespace Bench
