#include "Tools/SarvexTool/Bench/History/CheckedRun.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/History/Rows.h"
#include "Tools/SarvexTool/Bench/History/RunQuery.h"
#include "Tools/SarvexTool/Bench/History/RunWriter.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

namespace Bench {

namespace {

/// A row of a run's measurements, or what it should be.
struct CheckedRow {
    std::string key;
    std::optional<double> power;
    std::optional<std::string> reason;

    bool operator==(const CheckedRow&) const = default;
};

/// By line and chain.
using CheckedRows = std::map<std::pair<std::int64_t, std::string>, CheckedRow>;

CheckedRows RowsOf(Database& database, std::int64_t number) {
    CheckedRows rows;
    const std::vector<Value> values{number};
    database.Query("SELECT line, chain, key, power, reason FROM measurements LEFT JOIN "
                   "configurations ON configurations.id = configuration WHERE run = $1",
                   values, [&rows](const ResultRow& row) {
                       CheckedRow& checked = rows[{row.Integer(0), TextOf(row, 1)}];
                       checked.key = OptionalTextOf(row, 2).value_or("");
                       if (!row.IsNull(3))
                           checked.power = row.Real(3);
                       checked.reason = OptionalTextOf(row, 4);
                   });
    return rows;
}

CheckedRows RowsOf(const RunResult& run) {
    CheckedRows rows;
    for (const Measurement& measurement : run.measurements) {
        CheckedRow& row = rows[{run.LineOf(measurement), NameOf(measurement.chain)}];
        row.key = KeyOf(run.SettingsOf(measurement));
        if (measurement.power)
            row.power = measurement.power->ToDouble();
        else
            row.reason = measurement.reason.ToText();
    }
    return rows;
}

/// How many are in one of the two only, or not the same in both.
std::size_t CountDifferent(const CheckedRows& kept, const CheckedRows& expected) {
    std::size_t count = 0;
    for (const auto& [place, row] : expected) {
        const auto found = kept.find(place);
        count += std::size_t{found == kept.end() || found->second != row};
    }
    return count + static_cast<std::size_t>(
                       std::count_if(kept.begin(), kept.end(), [&expected](const auto& row) {
                           return !expected.contains(row.first);
                       }));
}

std::size_t CountMeasured(const CheckedRows& rows) {
    return static_cast<std::size_t>(std::count_if(
        rows.begin(), rows.end(), [](const auto& row) { return row.second.power.has_value(); }));
}

/// Checks one run.
class RunChecker {
public:
    RunChecker(Database& database, std::int64_t number, const KeptFacts& facts,
               std::vector<std::string>& problems)
        : m_database(database), m_number(number), m_facts(facts), m_problems(problems) {}

    void Check() {
        std::vector<KeptContent> files;
        try {
            files = QueryFiles(m_database, m_number);
        } catch (const ChangedFile& changed) {
            Tell(changed.Problems().front().text);
            return;
        }
        if (HashOf(files) != m_facts.hash) {
            Tell("it has not the files that it was kept with");
            return;
        }
        try {
            TextPool texts;
            CheckRows(ReadKeptResult(files, ShortHash(m_facts.hash), texts).run);
        } catch (const BadFile& bad) {
            Tell("its files cannot be read any more: " + bad.Problems().front().text);
        }
    }

private:
    void CheckRows(const RunResult& run) {
        const CheckedRows kept = RowsOf(m_database, m_number);
        if (const std::size_t count = CountDifferent(kept, RowsOf(run)); count != 0)
            Tell("of its measurements, " + std::to_string(count) +
                 " are not those of its result.csv");
        if (m_facts.lines != run.configurations.size() || m_facts.measurements != kept.size() ||
            m_facts.measured != CountMeasured(kept))
            Tell("its counts of lines and measurements are wrong");
    }

    void Tell(const std::string& what) {
        m_problems.push_back("the run " + ShortHash(m_facts.hash) + ": " + what);
    }

    Database& m_database;
    std::int64_t m_number;
    const KeptFacts& m_facts;
    std::vector<std::string>& m_problems;
};

} // namespace

void CheckRun(Database& database, std::int64_t number, const KeptFacts& facts,
              std::vector<std::string>& problems) {
    RunChecker(database, number, facts, problems).Check();
}

void CheckConfigurations(Database& database, std::vector<std::string>& problems) {
    std::size_t changed = 0;
    database.Query("SELECT key, " + std::string(settingColumns) + " FROM configurations",
                   [&changed](const ResultRow& row) {
                       std::array<std::optional<std::string>, SettingCount> texts;
                       Settings settings;
                       for (std::size_t index = 0; index < SettingCount; ++index) {
                           texts.at(index) = OptionalTextOf(row, index + 1);
                           settings[static_cast<Setting>(index)] =
                               texts.at(index) ? &*texts.at(index) : nullptr;
                       }
                       changed += std::size_t{KeyOf(settings) != TextOf(row, 0)};
                   });
    if (changed != 0)
        problems.push_back("of the configurations, " + std::to_string(changed) +
                           (changed == 1 ? " is" : " are") + " not what was kept");
}

} // namespace Bench
