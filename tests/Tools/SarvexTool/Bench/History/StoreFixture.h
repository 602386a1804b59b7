#pragma once

#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/History/Migrations.h"
#include "Tools/SarvexTool/Bench/History/Store.h"
#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Bench {

/// A run that is told by its rows, as "5,AB,10.5,NA\n".
inline RunToKeep MakeRun(const std::string& rows, TextPool& texts, KeptFacts facts = {}) {
    RunToKeep run;
    const std::string table = "Band,Chains,Chain-A Power, Chain B Power\n" + rows;
    run.files = {{"client.log", std::string("\0\xFF\n", 3)}, {"result.csv", table}};
    run.result = ParseResult(table, "result.csv", texts);
    run.facts = std::move(facts);
    run.facts.hash = HashOf(run.files);
    if (run.facts.name.empty())
        run.facts.name = "short.csv";
    if (run.facts.parts.empty())
        run.facts.parts.push_back({run.facts.bench, run.facts.device, std::nullopt});
    run.facts.lines = run.result.configurations.size();
    run.facts.measurements = run.result.measurements.size();
    for (const Measurement& measurement : run.result.measurements)
        run.facts.measured += std::uint64_t{measurement.power.has_value()};
    run.parts.assign(run.facts.lines, 0);
    return run;
}

/// A test that every kind of store must pass: with one that is open twice.
class StoreTest : public DatabaseFixture {
protected:
    StoreTest() {
        Migrate(*m_database);
        m_store.emplace(m_stores->OpenOne(OpenFor::Writing));
    }

    RunToKeep Run(const std::string& rows, KeptFacts facts = {}) {
        return MakeRun(rows, m_texts, std::move(facts));
    }

    /// Adds a run of one power and returns its hash.
    std::string Added(const std::string& power, KeptFacts facts = {}) {
        const RunToKeep run = Run("5,A," + power + ",NA\n", std::move(facts));
        EXPECT_TRUE(m_store->Add(run, 77));
        return run.facts.hash;
    }

    /// The powers of the runs that are listed, in their order.
    std::string NamesOf(const RunFilter& filter) {
        std::string names;
        for (const KeptFacts& facts : m_store->List(filter))
            names += (names.empty() ? "" : " ") + facts.name;
        return names;
    }

    template <typename Call>
    static std::string WordsOf(Call call) {
        try {
            call();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing";
    }

    std::vector<KeptPower> Powers(const RunFilter& filter = {}) {
        std::vector<KeptPower> powers;
        m_store->ReadPowers(
            filter, m_texts, [this](const KeptHistory& history) { m_history = history; },
            [&powers](const KeptPower& power) { powers.push_back(power); });
        std::sort(powers.begin(), powers.end(), [](const KeptPower& one, const KeptPower& other) {
            return std::tie(one.run, one.configuration, one.chain) <
                   std::tie(other.run, other.configuration, other.chain);
        });
        return powers;
    }

    /// Changes the database as somebody else would.
    void Change(const std::string& statement) { m_database->Run(statement); }
    std::string Count(const std::string& table) {
        return RowsOf(*m_database, "SELECT COUNT(*) FROM " + table, 1);
    }

    TextPool m_texts;
    std::optional<Store> m_store;
    KeptHistory m_history;
};

} // namespace Bench
