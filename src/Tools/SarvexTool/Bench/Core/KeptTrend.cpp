#include "Tools/SarvexTool/Bench/Core/KeptTrend.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Bench {

namespace {

constexpr double firstTooLarge = 1e9;
constexpr std::size_t shownDigits = 8;

bool Has(const Settings& settings, Setting setting, const std::string& value) {
    const std::string* const text = settings[setting];
    return text != nullptr && *text == value;
}

bool Fits(const std::optional<std::string>& wanted, const std::optional<std::string>& told) {
    return !wanted || wanted == told;
}

template <typename Value>
void AddOnce(std::vector<Value>& sorted, const Value& value) {
    const auto after = std::lower_bound(sorted.begin(), sorted.end(), value);
    if (after == sorted.end() || *after != value)
        sorted.insert(after, value);
}

/// The devices are those of the parts that gave the visit's powers, each once; nothing, which comes
/// first, for a part of which nothing tells it, and which may have been any of the others.
void TellDevice(const std::vector<std::optional<std::string>>& devices, TrendVisit& visit) {
    if (devices.empty())
        return;
    visit.hasSeveralDevices = devices.size() > (devices.front() ? 1 : 2);
    if (devices.size() == 1)
        visit.device = devices.front().value_or("");
}

} // namespace

bool WantedItems::Have(const Settings& all) const {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (settings.at(index) && !Has(all, static_cast<Setting>(index), *settings.at(index)))
            return false;
    }
    return true;
}

bool WantedItems::AreChosen() const {
    return chain || std::any_of(settings.begin(), settings.end(),
                                [](const std::optional<std::string>& text) { return text; });
}

std::vector<SettingValue> WantedItems::NotIn(const std::vector<Settings>& configurations) const {
    std::vector<SettingValue> missing;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto setting = static_cast<Setting>(index);
        const std::optional<std::string>& value = settings.at(index);
        if (value && std::none_of(configurations.begin(), configurations.end(),
                                  [&](const Settings& all) { return Has(all, setting, *value); }))
            missing.push_back({setting, *value});
    }
    return missing;
}

KeptTrend::KeptTrend(const KeptHistory& history, const RunFilter& filter, const WantedItems& wanted)
    : m_configurations(history.configurations),
      m_items(history.configurations.size() * chainCount, leftOut),
      m_isChosen(wanted.AreChosen()) {
    m_data.hasNoRun = history.runs.empty();
    m_data.neverKept = wanted.NotIn(history.configurations);
    for (const KeptFacts& run : history.runs)
        AddRun(run, filter);
    m_firstParts.push_back(m_visitOfPart.size());
    m_hasPartPower.resize(m_visitOfPart.size());
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
        m_deviceOfPart.push_back(place.device);
        m_firmwareOfPart.push_back(run.firmware);
    }
}

std::uint32_t KeptTrend::VisitOf(const KeptFacts& run, const RunPlace& place,
                                 std::size_t firstOfRun) {
    const std::uint32_t station = StationOf(place);
    // A bench that has measured several parts of a run, or several devices in it, visits it once.
    for (std::size_t visit = firstOfRun; visit < m_data.visits.size(); ++visit) {
        if (m_data.visits[visit].station == station)
            return static_cast<std::uint32_t>(visit);
    }
    m_data.visits.push_back({station, run.measuredAt, run.hash.substr(0, shownDigits), "", false});
    return static_cast<std::uint32_t>(m_data.visits.size() - 1);
}

std::uint32_t KeptTrend::StationOf(const RunPlace& place) {
    const std::string name = place.bench.value_or(UnknownBench);
    const auto [found, isNew] =
        m_stations.try_emplace(name, static_cast<std::uint32_t>(m_data.stations.size()));
    if (isNew)
        m_data.stations.push_back({name, {}});
    return found->second;
}

void KeptTrend::Add(const KeptPower& power) {
    const std::size_t part = m_firstParts[power.run] + power.part;
    const std::size_t place =
        power.configuration * chainCount + static_cast<std::size_t>(power.chain);
    if (part >= m_firstParts[power.run + 1] || m_visitOfPart[part] == leftOut || !m_isWanted[place])
        return;
    if (!power.power) {
        m_missing.emplace_back(m_visitOfPart[part], place);
        return;
    }
    // What is no number is not smaller, either.
    if (!(std::abs(*power.power) < firstTooLarge))
        return;
    if (m_items[place] == leftOut) {
        m_items[place] = static_cast<std::uint32_t>(m_data.items.size());
        m_data.items.push_back({m_configurations[power.configuration], power.chain});
    }
    m_hasPartPower[part] = true;
    m_data.rows.push_back({m_visitOfPart[part], m_items[place], *power.power});
}

TrendData KeptTrend::Take() {
    TellDevices();
    TellMissing();
    if (m_isChosen)
        LeaveOutStationsNotAsked();
    return std::exchange(m_data, {});
}

void KeptTrend::TellDevices() {
    std::vector<std::vector<std::optional<std::string>>> ofVisits(m_data.visits.size());
    for (std::size_t part = 0; part < m_visitOfPart.size(); ++part) {
        if (m_visitOfPart[part] == leftOut || (m_isChosen && !m_hasPartPower[part]))
            continue;
        const std::optional<std::string>& device = m_deviceOfPart[part];
        TrendStation& station = m_data.stations[m_data.visits[m_visitOfPart[part]].station];
        if (device)
            AddOnce(station.devices, *device);
        if (m_firmwareOfPart[part])
            AddOnce(station.firmwares, *m_firmwareOfPart[part]);
        if (m_hasPartPower[part])
            AddOnce(ofVisits[m_visitOfPart[part]], device);
    }
    for (std::size_t visit = 0; visit < ofVisits.size(); ++visit)
        TellDevice(ofVisits[visit], m_data.visits[visit]);
}

void KeptTrend::TellMissing() {
    for (const auto& [visit, place] : m_missing) {
        const std::size_t first = place - place % chainCount;
        // Where the chain is not known, all that the line has ever measured is missing.
        const bool isOfLine = place - first == static_cast<std::size_t>(Chain::None);
        for (const std::size_t chain : {first, first + 1, first + 2}) {
            if ((isOfLine || chain == place) && m_items[chain] != leftOut)
                m_data.missing.push_back({visit, m_items[chain]});
        }
    }
}

void KeptTrend::LeaveOutStationsNotAsked() {
    std::vector<std::uint32_t> stations(m_data.stations.size(), leftOut);
    for (const TrendRow& row : m_data.rows)
        stations[m_data.visits[row.visit].station] = 0;
    for (const TrendMissing& missing : m_data.missing)
        stations[m_data.visits[missing.visit].station] = 0;
    std::vector<TrendStation> left;
    for (std::size_t station = 0; station < stations.size(); ++station) {
        if (stations[station] == leftOut)
            continue;
        stations[station] = static_cast<std::uint32_t>(left.size());
        left.push_back(std::move(m_data.stations[station]));
    }
    m_data.stations = std::move(left);
    std::vector<TrendVisit> leftVisits;
    std::vector<std::uint32_t> visits;
    for (TrendVisit& visit : m_data.visits) {
        visits.push_back(static_cast<std::uint32_t>(leftVisits.size()));
        visit.station = stations[visit.station];
        if (visit.station != leftOut)
            leftVisits.push_back(std::move(visit));
    }
    m_data.visits = std::move(leftVisits);
    for (TrendRow& row : m_data.rows)
        row.visit = visits[row.visit];
    for (TrendMissing& missing : m_data.missing)
        missing.visit = visits[missing.visit];
}

} // namespace Bench
