#include "Tools/SarvexTool/Bench/History/RunWriter.h"

#include "Tools/SarvexTool/Bench/Files/Sha256.h"
#include "Tools/SarvexTool/Bench/History/Compression.h"
#include "Tools/SarvexTool/Bench/History/Rows.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Bench {

namespace {

std::string Sha256Of(std::string_view bytes) {
    Sha256 hash;
    hash.Add(bytes);
    return hash.Finish();
}

std::int64_t NumberAfterLast(Database& database, const char* statement) {
    std::int64_t last = 0;
    database.Query(statement, {},
                   [&last](const ResultRow& row) { last = row.IsNull(0) ? 0 : row.Integer(0); });
    return last + 1;
}

/// The numbers of configurations, which are inserted where there are none.
class ConfigurationNumbers {
public:
    ConfigurationNumbers(Database& database, const std::vector<Configuration>& configurations)
        : m_database(database) {
        for (const Configuration& configuration : configurations) {
            m_keys.push_back(KeyOf(configuration.settings));
            m_numbers.try_emplace(m_keys.back(), 0, &configuration.settings);
        }
        FindKnown();
        InsertOthers();
    }

    /// Of the configuration in that place.
    std::int64_t NumberOf(std::size_t place) const { return m_numbers.at(m_keys[place]).first; }

private:
    void FindKnown() {
        constexpr std::size_t most = 256;
        std::vector<Value> keys;
        for (const auto& [key, number] : m_numbers)
            keys.push_back(ValueOf(key));
        for (std::size_t first = 0; first < keys.size(); first += most) {
            const auto some = std::span(keys).subspan(first, std::min(most, keys.size() - first));
            m_database.Query("SELECT key, id FROM configurations WHERE key IN (" +
                                 Placeholders(1, some.size()) + ")",
                             some, [this](const ResultRow& row) {
                                 m_numbers.at(TextOf(row, 0)).first = row.Integer(1);
                             });
        }
    }

    /// In the order of the run, so that runs of one plan give the same numbers anywhere.
    void InsertOthers() {
        std::int64_t next = NumberAfterLast(m_database, "SELECT MAX(id) FROM configurations");
        RowInserter rows(m_database, "configurations", "id, key, " + std::string(settingColumns),
                         2 + SettingCount);
        for (const std::string& key : m_keys) {
            auto& [number, settings] = m_numbers.at(key);
            if (number != 0)
                continue;
            number = next++;
            rows.Add(number);
            rows.Add(ValueOf(key));
            for (const std::string* const text : *settings)
                rows.Add(text == nullptr ? Value() : ValueOf(*text));
        }
        rows.Finish();
    }

    Database& m_database;
    std::vector<std::string> m_keys;
    std::unordered_map<std::string, std::pair<std::int64_t, const Settings*>> m_numbers;
};

void InsertFacts(Database& database, std::int64_t number, const KeptFacts& facts,
                 std::int64_t now) {
    const auto integer = [](std::uint64_t count) { return static_cast<std::int64_t>(count); };
    const std::vector<Value> values{number,
                                    ValueOf(facts.hash),
                                    now,
                                    facts.measuredAt,
                                    ValueOf(facts.name),
                                    OptionalValueOf(facts.testFileSha256),
                                    OptionalValueOf(facts.bench),
                                    OptionalValueOf(facts.device),
                                    OptionalValueOf(facts.firmware),
                                    OptionalValueOf(facts.note),
                                    OptionalValueOf(facts.user),
                                    OptionalValueOf(facts.host),
                                    OptionalValueOf(facts.daemon),
                                    facts.macType ? Value(std::int64_t{*facts.macType}) : Value(),
                                    OptionalValueOf(facts.countryCode),
                                    OptionalValueOf(facts.outcome),
                                    ValueOf(NameOf(facts.verdict)),
                                    integer(facts.lines),
                                    integer(facts.measurements),
                                    integer(facts.measured)};
    database.Run("INSERT INTO runs(id, hash, kept_at, measured_at, name, test_file_sha256, bench, "
                 "device, firmware, note, user_name, host, daemon, mac_type, country_code, "
                 "outcome, verdict, lines, measurements, measured) VALUES (" +
                     Placeholders(1, values.size()) + ")",
                 values);
}

void InsertParts(Database& database, std::int64_t number, const std::vector<RunPlace>& parts) {
    constexpr std::size_t width = 5;
    RowInserter rows(database, "parts", "run, part, bench, device, attempt", width);
    for (std::size_t part = 0; part < parts.size(); ++part) {
        rows.Add(number);
        rows.Add(static_cast<std::int64_t>(part));
        rows.Add(OptionalValueOf(parts[part].bench));
        rows.Add(OptionalValueOf(parts[part].device));
        rows.Add(parts[part].attempt ? Value(std::int64_t{*parts[part].attempt}) : Value());
    }
    rows.Finish();
}

/// The powers of one line by chain, and why there is none; the last reason is that of a line
/// without a chain.
struct LineValues {
    std::array<Value, 2> powers;
    std::array<Value, 3> reasons;
};

void Put(const Measurement& measurement, LineValues& values) {
    const auto chain = static_cast<std::size_t>(measurement.chain);
    if (measurement.power)
        values.powers.at(chain).emplace<double>(measurement.power->ToDouble());
    else
        values.reasons.at(chain) = ValueOf(measurement.reason.ToText());
}

void InsertMeasurements(Database& database, std::int64_t number, const RunToKeep& run) {
    const ConfigurationNumbers configurations(database, run.result.configurations);
    constexpr std::size_t width = 9;
    RowInserter rows(database, "result_lines",
                     "run, line, configuration, part, power_a, power_b, reason_a, reason_b, reason",
                     width);
    const std::vector<Measurement>& all = run.result.measurements;
    for (std::size_t next = 0; next < all.size();) {
        // Those of a line follow each other.
        const Measurement& first = all[next];
        LineValues values;
        for (; next < all.size() && all[next].configuration == first.configuration; ++next)
            Put(all[next], values);
        rows.Add(number);
        rows.Add(std::int64_t{run.result.LineOf(first)});
        rows.Add(configurations.NumberOf(first.configuration));
        rows.Add(std::int64_t{run.parts[first.configuration]});
        for (Value& power : values.powers)
            rows.Add(std::move(power));
        for (Value& reason : values.reasons)
            rows.Add(std::move(reason));
    }
    rows.Finish();
}

/// Each by a statement of its own: a file may be large.
void InsertFiles(Database& database, std::int64_t number, const std::vector<KeptContent>& files) {
    for (const KeptContent& file : files) {
        const std::vector<Value> values{number, ValueOf(file.name),
                                        static_cast<std::int64_t>(file.bytes.size()),
                                        Sha256Of(file.bytes), Blob{Compress(file.bytes)}};
        database.Run("INSERT INTO files(run, name, size, sha256, content) VALUES "
                     "($1, $2, $3, $4, $5)",
                     values);
    }
}

} // namespace

std::string KeyOf(const Settings& settings) {
    std::string key;
    for (const std::string* const text : settings) {
        key += key.empty() ? "" : ",";
        key += text == nullptr ? "-" : std::to_string(text->size()) + ":" + *text;
    }
    // A key is kept in an index, whose rows are short on a server.
    constexpr std::size_t mostBytes = 1000;
    return key.size() <= mostBytes ? key : "sha256:" + Sha256Of(key);
}

void InsertRun(Database& database, std::int64_t number, const RunToKeep& run, std::int64_t now) {
    InsertFacts(database, number, run.facts, now);
    InsertParts(database, number, run.facts.parts);
    InsertMeasurements(database, number, run);
    InsertFiles(database, number, run.files);
}

} // namespace Bench
