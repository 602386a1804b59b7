#include "Tools/SarvexTool/Bench/Output/Page/HistoryData.h"

#include "Tools/SarvexTool/Bench/Output/Page/DataPieces.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <unordered_map>

namespace Bench {

namespace {

/// So many digits of a hash name a run in the tables.
constexpr std::size_t shownDigits = 8;

/// Decibels with the two digits of the console: rounded once more by the page, some would differ.
std::string NumberOrNull(const std::optional<double>& number) {
    return number ? Hundredths(*number) : "null";
}

class HistoryData {
public:
    HistoryData(const HistoryPage& page, std::ostream& out) : m_page(page), m_out(out) {}

    void Write() {
        m_out << "{\"ownMean\":" << int{Found().basis == TrendBasis::OwnMean}
              << ",\"judged\":" << int{Found().isJudged} << ",\n";
        WriteStations();
        WritePoints();
        WritePowers();
        WriteRuns();
        // The lines before name the places of these texts, which are complete only now.
        m_out << "\"texts\":[" << m_texts.ToJson() << "]}\n";
    }

private:
    const TrendData& Data() const { return m_page.named.data; }
    const Trend& Found() const { return m_page.named.trend; }

    std::string PlaceOf(const std::string& text) {
        return text.empty() ? "-1" : m_texts.PlaceOf(text);
    }
    std::string PlaceOf(const std::optional<std::string>& text) {
        return text ? m_texts.PlaceOf(*text) : "-1";
    }

    void WriteStations() {
        m_out << "\"stations\":[";
        JsonLines lines(m_out);
        for (const StationTrend& station : Found().stations) {
            m_placeOfStation.emplace(station.station, m_placeOfStation.size());
            const TrendStation& told = Data().stations[station.station];
            const std::optional<ControlLimits>& limits = station.limits;
            lines.Next() << "[" << m_texts.PlaceOf(told.name) << "," << PlaceOf(DevicesOf(told))
                         << "," << m_texts.PlaceOf(PhraseOf(Data(), station)) << ","
                         << NumberOrNull(station.offset) << ","
                         << (limits ? Hundredths(limits->mean) : "null") << ","
                         << (limits ? Hundredths(limits->Lower()) : "null") << ","
                         << (limits ? Hundredths(limits->Upper()) : "null") << "," << station.beyond
                         << "," << station.powers << "," << station.outOfLimits << ","
                         << station.withoutLimit << "]";
        }
        m_out << "],\n";
    }

    void WritePoints() {
        m_out << "\"points\":[";
        JsonLines stations(m_out);
        for (const StationTrend& station : Found().stations) {
            stations.Next() << "[";
            JsonLines lines(m_out);
            for (const TrendPoint& point : station.points) {
                const TrendVisit& visit = Data().visits[point.visit];
                lines.Next() << "[" << visit.measuredAt << "," << PlaceOf(visit.run) << ","
                             << PlaceOf(DeviceOf(visit)) << "," << Hundredths(point.median) << ","
                             << point.count << "," << int{point.isBeyond} << "]";
            }
            m_out << "]";
        }
        m_out << "],\n";
    }

    void WritePowers() {
        m_out << "\"item\":" << ItemPlace() << ",\n\"powers\":[";
        JsonLines lines(m_out);
        for (const TrendPower& power : m_page.named.powers) {
            const TrendVisit& visit = Data().visits[power.visit];
            lines.Next() << "[" << visit.measuredAt << "," << m_placeOfStation.at(visit.station)
                         << "," << PlaceOf(visit.run) << "," << PlaceOf(DeviceOf(visit)) << ","
                         << Rounded(power.power) << "," << int{power.isOut} << "]";
        }
        m_out << "],\n";
    }

    std::string ItemPlace() {
        if (m_page.named.powers.empty())
            return "-1";
        const TrendItem& item = Data().items.front();
        const std::string settings = PhraseOf(item.settings);
        return m_texts.PlaceOf(settings + (settings.empty() ? "chain " : ", chain ") +
                               NameOf(item.chain));
    }

    void WriteRuns() {
        m_out << "\"runs\":";
        if (m_page.runs == nullptr) {
            m_out << "null,\n";
            return;
        }
        m_out << "[";
        JsonLines lines(m_out);
        // Who looks at a list of months wants the last runs.
        for (std::size_t next = m_page.runs->size(); next-- > 0;) {
            const KeptFacts& run = (*m_page.runs)[next];
            lines.Next() << "[" << run.measuredAt << "," << PlaceOf(run.hash.substr(0, shownDigits))
                         << "," << PlaceOf(run.name) << ","
                         << PlaceOfPart(run, &RunPlace::bench, run.bench) << ","
                         << PlaceOfPart(run, &RunPlace::device, run.device) << ","
                         << PlaceOf(run.firmware) << ","
                         << m_texts.PlaceOf(std::string(NameOf(run.verdict))) << ","
                         << PlaceOf(run.outcome) << "," << run.measured << "," << run.measurements
                         << "," << PlaceOf(run.note) << "," << PlaceOf(run.user) << ","
                         << PlaceOf(run.host) << "]";
        }
        m_out << "],\n";
    }

    /// A merged run has several benches or devices, and is told with all of them.
    std::string PlaceOfPart(const KeptFacts& run, std::optional<std::string> RunPlace::*part,
                            const std::optional<std::string>& shared) {
        if (shared)
            return PlaceOf(shared);
        std::vector<std::string> names;
        for (const RunPlace& place : run.parts) {
            if (place.*part)
                names.push_back(*(place.*part));
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : ", ") + name;
        return PlaceOf(text);
    }

    const HistoryPage& m_page;
    std::ostream& m_out;
    TextPlaces m_texts;
    /// By the place in TrendData::stations.
    std::unordered_map<std::uint32_t, std::size_t> m_placeOfStation;
};

} // namespace

void WriteHistoryData(const HistoryPage& page, std::ostream& out) {
    HistoryData(page, out).Write();
}

} // namespace Bench
