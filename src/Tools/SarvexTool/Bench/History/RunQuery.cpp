#include "Tools/SarvexTool/Bench/History/RunQuery.h"

#include "Tools/SarvexTool/Bench/Files/Sha256.h"
#include "Tools/SarvexTool/Bench/History/Compression.h"
#include "Tools/SarvexTool/Bench/History/Rows.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace Bench {

namespace {

/// Puts conditions together that all are to hold.
class ConditionBuilder {
public:
    /// The text ends where the number of the value is to be.
    void Add(const std::string& text, Value value) {
        m_condition.text += m_condition.text.empty() ? "" : " AND ";
        m_condition.text += text + Next(std::move(value));
    }

    /// A part of the run is to be of the bench and the device.
    void AddPlace(const RunFilter& filter) {
        if (!filter.bench && !filter.device)
            return;
        std::string text = "SELECT run FROM parts WHERE ";
        if (filter.bench)
            text += "COALESCE(bench, '" + std::string(UnknownBench) +
                    "') = " + Next(ValueOf(*filter.bench));
        if (filter.bench && filter.device)
            text += " AND ";
        if (filter.device)
            text += "device = " + Next(ValueOf(*filter.device));
        m_condition.text += m_condition.text.empty() ? "" : " AND ";
        m_condition.text += "id IN (" + text + ")";
    }

    RunCondition Take() { return std::move(m_condition); }

private:
    std::string Next(Value value) {
        m_condition.values.push_back(std::move(value));
        return "$" + std::to_string(m_condition.values.size());
    }

    RunCondition m_condition;
};

std::string WhereOf(const RunCondition& condition) {
    return condition.text.empty() ? "" : " WHERE " + condition.text;
}

/// Reads the columns of a row one after the other.
class Columns {
public:
    explicit Columns(const ResultRow& row) : m_row(row) {}

    std::int64_t Integer() { return m_row.Integer(m_next++); }
    std::uint64_t Count() { return static_cast<std::uint64_t>(Integer()); }
    std::string Text() { return TextOf(m_row, m_next++); }
    std::optional<std::string> OptionalText() { return OptionalTextOf(m_row, m_next++); }
    std::optional<std::int64_t> OptionalInteger() {
        const std::size_t column = m_next++;
        return m_row.IsNull(column) ? std::nullopt : std::optional(m_row.Integer(column));
    }

private:
    const ResultRow& m_row;
    std::size_t m_next = 0;
};

constexpr const char* factColumns =
    "id, hash, kept_at, measured_at, name, test_file_sha256, bench, device, firmware, note, "
    "user_name, host, daemon, mac_type, country_code, outcome, verdict, lines, measurements, "
    "measured";

NumberedRun RunOf(const ResultRow& row) {
    Columns columns(row);
    NumberedRun run;
    run.number = columns.Integer();
    KeptFacts& facts = run.facts;
    facts.hash = columns.Text();
    facts.keptAt = columns.Integer();
    facts.measuredAt = columns.Integer();
    facts.name = columns.Text();
    facts.testFileSha256 = columns.OptionalText();
    facts.bench = columns.OptionalText();
    facts.device = columns.OptionalText();
    facts.firmware = columns.OptionalText();
    facts.note = columns.OptionalText();
    facts.user = columns.OptionalText();
    facts.host = columns.OptionalText();
    facts.daemon = columns.OptionalText();
    if (const auto macType = columns.OptionalInteger())
        facts.macType = static_cast<std::int32_t>(*macType);
    facts.countryCode = columns.OptionalText();
    facts.outcome = columns.OptionalText();
    facts.verdict = KeptVerdictNamed(columns.Text()).value_or(KeptVerdict::NotJudged);
    facts.lines = columns.Count();
    facts.measurements = columns.Count();
    facts.measured = columns.Count();
    return run;
}

/// The bytes of a row of files: its size, its SHA-256 and its content after its name. Nothing where
/// they are not what was kept.
std::optional<std::string> BytesOf(const ResultRow& row) {
    const auto size = static_cast<std::size_t>(row.Integer(1));
    std::string bytes;
    try {
        bytes = Decompress(row.Bytes(3), size);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
    Sha256 hash;
    hash.Add(bytes);
    return bytes.size() == size && hash.Finish() == row.Text(2) ? std::optional(std::move(bytes))
                                                                : std::nullopt;
}

/// The places of runs among others, by their numbers.
using RunPlaces = std::unordered_map<std::int64_t, std::uint32_t>;

RunPlaces PlacesOf(const std::vector<NumberedRun>& runs) {
    RunPlaces places;
    for (const NumberedRun& run : runs)
        places.emplace(run.number, static_cast<std::uint32_t>(places.size()));
    return places;
}

void AddParts(Database& database, const RunCondition& condition, std::vector<NumberedRun>& runs) {
    const RunPlaces places = PlacesOf(runs);
    const std::string some = condition.text.empty()
                                 ? ""
                                 : " WHERE run IN (SELECT id FROM runs" + WhereOf(condition) + ")";
    database.Query("SELECT run, bench, device, attempt FROM parts" + some + " ORDER BY run, part",
                   condition.values, [&](const ResultRow& row) {
                       Columns columns(row);
                       const auto place = places.find(columns.Integer());
                       if (place == places.end())
                           return;
                       RunPlace part;
                       part.bench = columns.OptionalText();
                       part.device = columns.OptionalText();
                       if (const auto attempt = columns.OptionalInteger())
                           part.attempt = static_cast<std::uint32_t>(*attempt);
                       runs[place->second].facts.parts.push_back(std::move(part));
                   });
}

/// The configurations of a store, and their places by their numbers.
class ConfigurationPlaces {
public:
    ConfigurationPlaces(Database& database, TextPool& texts, std::vector<Settings>& all)
        : m_store(database.Shown()) {
        database.Query(
            "SELECT id, " + std::string(settingColumns) + " FROM configurations ORDER BY id", {},
            [&](const ResultRow& row) {
                Columns columns(row);
                m_places.emplace(columns.Integer(), static_cast<std::uint32_t>(all.size()));
                Settings& settings = all.emplace_back();
                for (const std::string*& text : settings) {
                    const std::optional<std::string> cell = columns.OptionalText();
                    text = cell ? texts.Keep(*cell) : nullptr;
                }
            });
    }

    std::uint32_t PlaceOf(std::int64_t number) const {
        const auto place = m_places.find(number);
        if (place == m_places.end())
            throw StoreError(m_store,
                             "holds a measurement without a configuration; see history check");
        return place->second;
    }

private:
    std::string m_store;
    std::unordered_map<std::int64_t, std::uint32_t> m_places;
};

bool IsMeant(const RunFilter& filter, const RunPlace& part) {
    return (!filter.bench || part.bench.value_or(UnknownBench) == *filter.bench) &&
           (!filter.device || part.device == filter.device);
}

/// Turns rows of lines into powers.
class PowerReader {
public:
    PowerReader(const RunFilter& filter, const std::vector<NumberedRun>& runs,
                const ConfigurationPlaces& configurations)
        : m_filter(filter),
          m_runs(runs),
          m_places(PlacesOf(runs)),
          m_configurations(configurations) {}

    /// Takes nothing of a row that is not meant.
    void Read(const ResultRow& row, const std::function<void(const KeptPower&)>& take) {
        FindRun(row.Integer(0));
        const auto part = static_cast<std::uint64_t>(row.Integer(1));
        if (m_place == none || part >= m_isMeant.size() || !m_isMeant[part])
            return;
        KeptPower power{m_place, static_cast<std::uint32_t>(part),
                        m_configurations.PlaceOf(row.Integer(2)), Chain::A, std::nullopt};
        constexpr std::size_t powerA = 3;
        constexpr std::size_t reasonA = 5;
        for (std::size_t chain = 0; chain < 2; ++chain) {
            const bool isMeasured = !row.IsNull(powerA + chain);
            if (!isMeasured && row.IsNull(reasonA + chain))
                continue;
            power.chain = chain == 0 ? Chain::A : Chain::B;
            power.power = isMeasured ? std::optional(row.Real(powerA + chain)) : std::nullopt;
            take(power);
        }
        constexpr std::size_t reasonOfLine = 7;
        if (!row.IsNull(reasonOfLine))
            take({m_place, power.part, power.configuration, Chain::None, std::nullopt});
    }

private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// The rows of a run mostly follow each other.
    void FindRun(std::int64_t number) {
        if (number == m_number)
            return;
        m_number = number;
        const auto place = m_places.find(number);
        m_place = place == m_places.end() ? none : place->second;
        m_isMeant.clear();
        if (m_place == none)
            return;
        for (const RunPlace& part : m_runs[m_place].facts.parts)
            m_isMeant.push_back(IsMeant(m_filter, part));
    }

    const RunFilter& m_filter;
    const std::vector<NumberedRun>& m_runs;
    RunPlaces m_places;
    const ConfigurationPlaces& m_configurations;
    /// The run of the last row: no number is below 1.
    std::int64_t m_number = 0;
    std::uint32_t m_place = none;
    std::vector<bool> m_isMeant;
};

} // namespace

RunCondition RunsOf(const RunFilter& filter) {
    ConditionBuilder builder;
    if (filter.since)
        builder.Add("measured_at >= ", *filter.since);
    if (filter.before)
        builder.Add("measured_at < ", *filter.before);
    builder.AddPlace(filter);
    if (filter.firmware)
        builder.Add("firmware = ", ValueOf(*filter.firmware));
    if (filter.file)
        builder.Add("name = ", ValueOf(*filter.file));
    if (filter.verdict)
        builder.Add("verdict = ", ValueOf(NameOf(*filter.verdict)));
    return builder.Take();
}

RunCondition RunWith(std::int64_t number) {
    return {"id = $1", {number}};
}

RunCondition RunsBeginningWith(const std::string& digits) {
    return {"hash LIKE $1", {digits + "%"}};
}

RunCondition BaselineNamed(const std::string& name) {
    return {"id IN (SELECT run FROM baselines WHERE name = $1)", {ValueOf(name)}};
}

std::vector<NumberedRun> QueryRuns(Database& database, const RunCondition& condition) {
    std::vector<NumberedRun> runs;
    database.Query("SELECT " + std::string(factColumns) + " FROM runs" + WhereOf(condition) +
                       " ORDER BY measured_at, id",
                   condition.values, [&runs](const ResultRow& row) { runs.push_back(RunOf(row)); });
    AddParts(database, condition, runs);
    return runs;
}

std::vector<KeptFile> QueryFileNames(Database& database, std::int64_t number) {
    std::vector<KeptFile> files;
    const std::vector<Value> values{number};
    database.Query("SELECT name, size, sha256 FROM files WHERE run = $1", values,
                   [&files](const ResultRow& row) {
                       Columns columns(row);
                       KeptFile& file = files.emplace_back();
                       file.name = columns.Text();
                       file.size = columns.Count();
                       file.sha256 = columns.Text();
                   });
    std::sort(files.begin(), files.end(),
              [](const KeptFile& one, const KeptFile& other) { return one.name < other.name; });
    return files;
}

std::vector<KeptContent> QueryFiles(Database& database, std::int64_t number) {
    std::vector<KeptContent> files;
    const std::vector<Value> values{number};
    database.Query("SELECT name, size, sha256, content FROM files WHERE run = $1", values,
                   [&](const ResultRow& row) {
                       KeptContent file{TextOf(row, 0), ""};
                       std::optional<std::string> bytes = BytesOf(row);
                       if (!bytes)
                           throw ChangedFile(database.Shown(),
                                             "has a file " + file.name +
                                                 " of a run that is not what was kept");
                       file.bytes = std::move(*bytes);
                       files.push_back(std::move(file));
                   });
    std::sort(files.begin(), files.end(), [](const KeptContent& one, const KeptContent& other) {
        return one.name < other.name;
    });
    return files;
}

void QueryPowers(Database& database, const RunFilter& filter, TextPool& texts,
                 const std::function<void(const KeptHistory&)>& begin,
                 const std::function<void(const KeptPower&)>& take) {
    const RunCondition condition = RunsOf(filter);
    const std::vector<NumberedRun> runs = QueryRuns(database, condition);
    KeptHistory history;
    for (const NumberedRun& run : runs)
        history.runs.push_back(run.facts);
    const ConfigurationPlaces configurations(database, texts, history.configurations);
    begin(history);
    PowerReader reader(filter, runs, configurations);
    const std::string some = condition.text.empty()
                                 ? ""
                                 : " WHERE run IN (SELECT id FROM runs" + WhereOf(condition) + ")";
    database.Query("SELECT run, part, configuration, power_a, power_b, reason_a, reason_b, "
                   "reason FROM result_lines" +
                       some,
                   condition.values, [&](const ResultRow& row) { reader.Read(row, take); });
}

} // namespace Bench
