#include "Tools/SarvexTool/Bench/Output/Page/DataBlock.h"

#include "Tools/SarvexTool/Bench/Output/Page/DataPieces.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"

#include <array>
#include <ostream>
#include <unordered_map>

namespace Bench {

namespace {

template <typename Items, typename Name>
void WriteNames(const char* key, const Items& items, Name name, std::ostream& out) {
    out << Quoted(key) << ":[";
    const char* separator = "";
    for (const auto& item : items) {
        out << separator << Quoted(name(item));
        separator = ",";
    }
    out << "],\n";
}

class DataBlock {
public:
    DataBlock(const Page& page, std::ostream& out) : m_page(page), m_out(out) {}

    void Write() {
        m_out << "{";
        WriteNames(
            "columns", PowerTest::columnCommands, [](const auto& column) { return column.column; },
            m_out);
        WriteNames(
            "chains", std::array{Chain::A, Chain::B, Chain::None},
            [](Chain chain) { return NameOf(chain); }, m_out);
        WriteNames(
            "verdicts",
            std::array{Verdict::Pass, Verdict::TooLow, Verdict::TooHigh, Verdict::NotMeasured,
                       Verdict::NoLimit},
            [](Verdict verdict) { return NameOf(verdict); }, m_out);
        WriteLimits();
        WriteMeasurements();
        WriteDifferences();
        WriteSources();
        // They name places of texts and configurations, which are complete only now.
        m_out << "\"configurations\":[";
        WriteConfigurations();
        m_out << "],\n\"texts\":[" << m_texts.ToJson() << "]}\n";
    }

private:
    const RunResult& Run() const { return m_page.run; }

    /// Only limits that some measurement has: the others are of no use here.
    void WriteLimits() {
        m_out << "\"limits\":";
        if (m_page.judgements == nullptr) {
            m_out << "null,\n";
            return;
        }
        m_out << "[";
        JsonLines lines(m_out);
        for (const Judgement& judgement : m_page.judgements->all) {
            const Limit* limit = judgement.limit;
            if (limit == nullptr || !m_limits.try_emplace(limit, m_limits.size()).second)
                continue;
            lines.Next() << "[" << limit->line << "," << DecimalOrNull(limit->minimum) << ","
                         << DecimalOrNull(limit->maximum) << "]";
        }
        m_out << "],\n";
    }

    void WriteMeasurements() {
        m_out << "\"measurements\":[";
        JsonLines lines(m_out);
        for (std::size_t place = 0; place < Run().measurements.size(); ++place) {
            const Measurement& measurement = Run().measurements[place];
            lines.Next() << "[" << measurement.configuration << ","
                         << static_cast<int>(measurement.chain) << ","
                         << DecimalOrNull(measurement.power) << ","
                         << (measurement.power ? "-1"
                                               : m_texts.PlaceOf(measurement.reason.ToText()));
            WriteJudgement(place);
            WriteOldPower(place);
            m_out << "]";
        }
        m_out << "],\n";
    }

    void WriteJudgement(std::size_t place) {
        if (m_page.judgements == nullptr) {
            m_out << ",-1,-1,null";
            return;
        }
        const Judgement& judgement = m_page.judgements->all[place];
        m_out << "," << static_cast<int>(judgement.verdict) << ",";
        if (judgement.limit == nullptr)
            m_out << -1;
        else
            m_out << m_limits.at(judgement.limit);
        m_out << "," << DecimalOrNull(judgement.margin);
    }

    void WriteOldPower(std::size_t place) {
        if (m_page.baseline == nullptr)
            return;
        const std::optional<std::uint32_t> old = m_page.baseline->differences.oldOfNew[place];
        if (!old) {
            m_out << ",0,null,null";
            return;
        }
        const RunResult& oldRun = m_page.baseline->run;
        const Measurement& before = oldRun.measurements[*old];
        const std::optional<Decimal>& power = Run().measurements[place].power;
        std::optional<Decimal> change;
        if (power && before.power)
            change = *power - *before.power;
        m_out << "," << oldRun.LineOf(before) << "," << DecimalOrNull(before.power) << ","
              << DecimalOrNull(change);
    }

    void WriteDifferences() {
        if (m_page.baseline == nullptr) {
            m_out << "\"differences\":null,\n";
            return;
        }
        const Differences& differences = m_page.baseline->differences;
        m_out << "\"differences\":[";
        JsonLines lines(m_out);
        for (const Difference& difference : differences.all) {
            lines.Next();
            WriteDifference(difference);
        }
        m_out << "],\n\"tolerance\":" << DecimalOrNull(m_page.baseline->tolerance)
              << ",\n\"noise\":"
              << (differences.noise ? Quoted(Rounded(*differences.noise)) : "null") << ",\n";
        WriteShifts(differences);
    }

    void WriteDifference(const Difference& difference) {
        m_out << "[" << static_cast<int>(difference.kind) << ",";
        if (difference.newMeasurement)
            m_out << *difference.newMeasurement;
        else
            m_out << -1;
        const RunResult& oldRun = m_page.baseline->run;
        const Measurement* old =
            difference.oldMeasurement ? &oldRun.measurements[*difference.oldMeasurement] : nullptr;
        const bool isChange = difference.kind == Difference::Kind::Changed;
        m_out << "," << (old == nullptr ? 0 : oldRun.LineOf(*old)) << ","
              << (old == nullptr ? "null" : DecimalOrNull(old->power)) << ","
              << (isChange ? DecimalOrNull(difference.change) : "null") << ","
              << int{difference.isWithinNoise};
        if (difference.kind == Difference::Kind::InOldOnly)
            WriteOldOnly(*old);
        m_out << "]";
    }

    /// Its configuration is none of the run's: it comes after those.
    void WriteOldOnly(const Measurement& old) {
        m_out << ",[" << Run().configurations.size() + m_oldConfigurations.size() << ","
              << static_cast<int>(old.chain) << "]";
        m_oldConfigurations.push_back(&m_page.baseline->run.configurations[old.configuration]);
    }

    void WriteShifts(const Differences& differences) {
        m_out << "\"shifts\":[";
        JsonLines lines(m_out);
        for (const Shift& shift : differences.shifts)
            lines.Next() << "[" << m_texts.PlaceOf(shift.band) << "," << m_texts.PlaceOf(shift.rate)
                         << "," << shift.pairs << "," << Quoted(Rounded(shift.mean)) << "]";
        m_out << "],\n";
    }

    void WriteSources() {
        m_out << "\"sources\":[";
        JsonLines lines(m_out);
        for (const Source& source : Run().sources.All()) {
            const RunPlace& place = source.place;
            lines.Next() << "[" << source.lines.first << "," << source.lines.last << ","
                         << PlaceOf(place.bench) << "," << PlaceOf(place.device) << ","
                         << (place.attempt ? std::to_string(*place.attempt) : "null") << "]";
        }
        m_out << "],\n\"groupBy\":" << (m_page.groupBy ? Quoted(NameOf(*m_page.groupBy)) : "null")
              << ",\n";
    }

    std::string PlaceOf(const std::optional<std::string>& text) {
        return text ? m_texts.PlaceOf(*text) : "-1";
    }

    void WriteConfigurations() {
        JsonLines lines(m_out);
        for (const Configuration& configuration : Run().configurations)
            WriteConfiguration(configuration, lines.Next());
        for (const Configuration* configuration : m_oldConfigurations)
            WriteConfiguration(*configuration, lines.Next());
    }

    void WriteConfiguration(const Configuration& configuration, std::ostream& out) {
        out << "[" << configuration.line;
        for (const std::string* text : configuration.settings)
            out << "," << m_texts.PlaceOf(text);
        out << "]";
    }

    const Page& m_page;
    std::ostream& m_out;
    TextPlaces m_texts;
    std::unordered_map<const Limit*, std::size_t> m_limits;
    std::vector<const Configuration*> m_oldConfigurations;
};

} // namespace

void WriteDataBlock(const Page& page, std::ostream& out) {
    DataBlock(page, out).Write();
}

} // namespace Bench
