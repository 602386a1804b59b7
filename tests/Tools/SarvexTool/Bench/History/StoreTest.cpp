#include "Tools/SarvexTool/Bench/History/Store.h"

#include "Tools/SarvexTool/Bench/History/Migrations.h"
#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"
#include "tests/Tools/SarvexTool/Bench/History/StoreFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <tuple>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <typename Stores>
class StoreTest : public testing::Test {
protected:
    StoreTest() {
        std::unique_ptr<Database> database = m_stores.Open(OpenFor::Writing);
        Migrate(*database);
        m_store.emplace(std::move(database));
        m_other = m_stores.Open(OpenFor::Writing);
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
    void Change(const std::string& statement) { m_other->Run(statement); }
    std::string Count(const std::string& table) {
        return RowsOf(*m_other, "SELECT COUNT(*) FROM " + table, 1);
    }

    Stores m_stores;
    TextPool m_texts;
    std::optional<Store> m_store;
    std::unique_ptr<Database> m_other;
    KeptHistory m_history;
};

using TestedStores = testing::Types<FileStores>;
TYPED_TEST_SUITE(StoreTest, TestedStores);

KeptFacts AllFacts() {
    KeptFacts facts;
    facts.measuredAt = 1'773'043'500;
    facts.name = "Prüfung 'a'.csv";
    facts.testFileSha256 = std::string(64, 'b');
    facts.bench = "bench\n1";
    facts.device = "DUT-\xFF";
    facts.firmware = "2.1";
    facts.note = "";
    facts.user = "mia";
    facts.host = "pc7";
    facts.daemon = "127.0.0.1:8738";
    facts.macType = -3;
    facts.countryCode = "DE";
    facts.outcome = "complete";
    facts.verdict = KeptVerdict::Fail;
    facts.parts = {{"bench\n1", "DUT-\xFF", 2}};
    return facts;
}

TYPED_TEST(StoreTest, ARunComesBackAsItWasKept) {
    const RunToKeep run = this->Run("5,AB,10.5,NA\n", AllFacts());
    EXPECT_TRUE(this->m_store->Add(run, 123));
    KeptFacts expected = run.facts;
    expected.keptAt = 123;
    EXPECT_EQ(this->m_store->List({}), std::vector{expected});
    EXPECT_EQ(this->m_store->FilesOf(run.facts.hash), run.files);
    const std::vector<KeptFile> files = this->m_store->ListFiles(run.facts.hash);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].name, "client.log");
    EXPECT_EQ(files[0].size, 3u);
    EXPECT_EQ(files[1].name, "result.csv");
}

TYPED_TEST(StoreTest, WhatIsNotKnownComesBackAsThat) {
    const RunToKeep run = this->Run("5,A,1,NA\n");
    this->m_store->Add(run, 0);
    EXPECT_EQ(this->m_store->List({}), std::vector{run.facts});
}

TYPED_TEST(StoreTest, TheSameRunIsKeptOnce) {
    const RunToKeep run = this->Run("5,A,1,NA\n", AllFacts());
    EXPECT_TRUE(this->m_store->Add(run, 1));
    EXPECT_FALSE(this->m_store->Add(run, 2));
    ASSERT_EQ(this->m_store->List({}).size(), 1u);
    EXPECT_EQ(this->m_store->List({}).front().keptAt, 1);
    EXPECT_EQ(this->Count("measurements"), "1\n");
}

TYPED_TEST(StoreTest, ToTellLessOfAKeptRunDoesNoHarmButSomethingElseIsRefused) {
    this->m_store->Add(this->Run("5,A,1,NA\n", AllFacts()), 1);
    KeptFacts less;
    EXPECT_FALSE(this->m_store->Add(this->Run("5,A,1,NA\n", less), 1));
    less.bench = "bench 2";
    EXPECT_EQ(this->WordsOf([&] { this->m_store->Add(this->Run("5,A,1,NA\n", less), 1); }),
              "it is kept already, with the bench bench\n1; to keep it otherwise, remove it "
              "(history remove) and add it again");
    KeptFacts note;
    note.note = "x";
    EXPECT_THROW(this->m_store->Add(this->Run("5,A,1,NA\n", note), 1), KeptOtherwise);
    EXPECT_EQ(this->m_store->List({}).size(), 1u);
}

TYPED_TEST(StoreTest, TheRowsAreThoseOfTheMeasurements) {
    this->m_store->Add(this->Run("5,AB,10.5,NA\n-,A,11,NA\n"), 1);
    EXPECT_EQ(
        RowsOf(
            *this->m_other,
            "SELECT line, chain, band, chains, channel, part, CAST(power * 10 AS BIGINT), reason FROM "
            "measurements JOIN configurations ON id = configuration ORDER BY line, chain",
            8),
        "2|A|5|AB|NULL|0|105|NULL\n"
        "2|B|5|AB|NULL|0|NULL|no power was reported\n"
        "3|A|5|A|NULL|0|110|NULL\n");
}

TYPED_TEST(StoreTest, AConfigurationIsKeptOnceForAllRuns) {
    this->m_store->Add(this->Run("5,A,1,NA\n6,A,1,NA\n5,A,2,NA\n"), 1);
    this->m_store->Add(this->Run("6,A,3,NA\n7,A,3,NA\n"), 1);
    EXPECT_EQ(RowsOf(*this->m_other, "SELECT id, key, band FROM configurations ORDER BY id", 3),
              "1|1:5,1:A,-,-,-,-,-,-,-,-|5\n2|1:6,1:A,-,-,-,-,-,-,-,-|6\n"
              "3|1:7,1:A,-,-,-,-,-,-,-,-|7\n");
}

TYPED_TEST(StoreTest, ManyRowsAreAllKept) {
    std::string rows;
    for (int line = 0; line < 1'000; ++line)
        rows += std::to_string(line) + ",A," + std::to_string(line) + ".25,NA\n";
    this->m_store->Add(this->Run(rows), 1);
    EXPECT_EQ(
        RowsOf(
            *this->m_other,
            "SELECT COUNT(*), COUNT(DISTINCT configuration), CAST(SUM(power) AS BIGINT) FROM measurements",
            3),
        "1000|1000|499750\n");
    EXPECT_THAT(this->m_store->Check().problems, IsEmpty());
}

TYPED_TEST(StoreTest, HostileTextsAreData) {
    const std::string hostile = "'); DROP TABLE runs; --\\\"$1?%s\x01\xFF";
    KeptFacts facts = AllFacts();
    facts.name = facts.note.emplace(hostile);
    facts.bench = hostile;
    facts.parts = {{hostile, std::nullopt, std::nullopt}};
    facts.device.reset();
    const RunToKeep run = this->Run("'\xFF\");DROP TABLE measurements;--,A\x02,1,NA\n", facts);
    this->m_store->Add(run, 1);
    EXPECT_EQ(this->m_store->List({}).front().name, hostile);
    RunFilter filter;
    filter.bench = hostile;
    EXPECT_EQ(this->NamesOf(filter), hostile);
    filter.bench = "' OR 1=1 --";
    EXPECT_EQ(this->NamesOf(filter), "");
    EXPECT_THAT(this->m_store->Check().problems, IsEmpty());
    EXPECT_THROW(this->m_store->Find("' OR '1'='1"), NotKept);
    this->m_store->SetBaseline(hostile, run.facts.hash);
    EXPECT_EQ(this->m_store->Find(hostile).hash, run.facts.hash);
}

TYPED_TEST(StoreTest, RunsAreListedInTheOrderOfTheirTimes) {
    KeptFacts facts;
    for (const auto& [name, time] : {std::pair("late", 300), {"early", 100}, {"middle", 200}}) {
        facts.name = name;
        facts.measuredAt = time;
        this->Added(std::to_string(time), facts);
    }
    EXPECT_EQ(this->NamesOf({}), "early middle late");
    RunFilter filter;
    filter.since = 200;
    EXPECT_EQ(this->NamesOf(filter), "middle late");
    filter.before = 300;
    EXPECT_EQ(this->NamesOf(filter), "middle");
}

TYPED_TEST(StoreTest, AFilterTellsWhichRunsAreMeant) {
    KeptFacts facts;
    facts.name = "a";
    facts.bench = "b1";
    facts.device = "d1";
    facts.firmware = "f1";
    facts.verdict = KeptVerdict::Pass;
    this->Added("1", facts);
    facts.name = "b";
    facts.device = "d2";
    facts.verdict = KeptVerdict::Fail;
    this->Added("2", facts);
    this->Added("3", [] {
        KeptFacts merged;
        merged.name = "c";
        merged.parts = {{"b1", "d1", 1}, {"b2", "d2", 1}};
        return merged;
    }());
    const auto with = [](auto change) {
        RunFilter filter;
        change(filter);
        return filter;
    };
    const std::pair<RunFilter, const char*> cases[] = {
        {with([](RunFilter& filter) { filter.bench = "b1"; }), "a b c"},
        {with([](RunFilter& filter) { filter.bench = "b2"; }), "c"},
        {with([](RunFilter& filter) { filter.device = "d2"; }), "b c"},
        {with([](RunFilter& filter) { filter.bench = "b1", filter.device = "d2"; }), "b"},
        {with([](RunFilter& filter) { filter.firmware = "f1"; }), "a b"},
        {with([](RunFilter& filter) { filter.file = "c"; }), "c"},
        {with([](RunFilter& filter) { filter.verdict = KeptVerdict::NotJudged; }), "c"},
        {with([](RunFilter& filter) { filter.verdict = KeptVerdict::Pass, filter.bench = "b1"; }),
         "a"},
        {with([](RunFilter& filter) { filter.file = "none"; }), ""}};
    for (const auto& [filter, names] : cases)
        EXPECT_EQ(this->NamesOf(filter), names);
}

TYPED_TEST(StoreTest, PartsComeWithTheirRun) {
    KeptFacts facts;
    facts.parts = {{"b1", "d1", 1}, {"b2", std::nullopt, 2}};
    RunToKeep run = this->Run("5,A,1,NA\n6,A,2,NA\n", facts);
    run.parts = {0, 1};
    this->m_store->Add(run, 1);
    this->Added("9");
    RunFilter filter;
    filter.bench = "b2";
    const std::vector<KeptFacts> runs = this->m_store->List(filter);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].parts, facts.parts);
}

TYPED_TEST(StoreTest, ARunIsFoundByTheFirstDigitsOfItsHash) {
    const std::string hash = this->Added("1");
    EXPECT_EQ(this->m_store->Find(hash).hash, hash);
    EXPECT_EQ(this->m_store->Find(hash.substr(0, 4)).hash, hash);
    std::string capitals = hash.substr(0, 12);
    for (char& digit : capitals)
        digit = static_cast<char>(std::toupper(digit));
    EXPECT_EQ(this->m_store->Find(capitals).hash, hash);
    EXPECT_THAT(this->WordsOf([&] { this->m_store->Find(hash.substr(0, 3)); }),
                HasSubstr("at least 4 digits are needed"));
    EXPECT_THAT(this->WordsOf([&] { this->m_store->Find(std::string(64, '0')); }),
                HasSubstr("no run is kept whose hash begins with 0000"));
    for (const char* wild : {"%%%%", "____", ""})
        EXPECT_THROW(this->m_store->Find(wild), NotKept) << wild;
}

TYPED_TEST(StoreTest, DigitsThatTwoRunsBeginWithAreNotEnough) {
    this->Added("1");
    this->Added("2");
    this->Change("UPDATE runs SET hash = 'abcd' || id");
    EXPECT_EQ(this->WordsOf([&] { this->m_store->Find("abcd"); }),
              "the hashes of 2 runs begin with abcd; give more digits");
    EXPECT_EQ(this->m_store->Find("abcd1").hash, "abcd1");
}

TYPED_TEST(StoreTest, ARunIsRemovedWithAllItsRows) {
    const std::string hash = this->Added("1");
    this->m_store->Remove(hash, false);
    for (const char* table : {"runs", "parts", "measurements", "files"})
        EXPECT_EQ(this->Count(table), "0\n") << table;
    EXPECT_THROW(this->m_store->Remove(hash, false), NotKept);
    EXPECT_THROW(this->m_store->FilesOf(hash), NotKept);
    this->Added("1");
}

TYPED_TEST(StoreTest, ABaselineIsRemovedOnlyWithItsName) {
    const std::string hash = this->Added("1");
    this->m_store->SetBaseline("golden", hash);
    EXPECT_EQ(this->WordsOf([&] { this->m_store->Remove(hash, false); }),
              "the run " + ShortHash(hash) +
                  " is the baseline golden; name another run so, or remove it with --force");
    EXPECT_EQ(this->Count("runs"), "1\n");
    this->m_store->Remove(hash, true);
    EXPECT_THAT(this->m_store->Baselines(), IsEmpty());
}

TYPED_TEST(StoreTest, ABaselineIsTheRunThatWasNamedLast) {
    const std::string first = this->Added("1");
    const std::string second = this->Added("2");
    this->m_store->SetBaseline("golden", first);
    this->m_store->SetBaseline("golden", second);
    this->m_store->SetBaseline("best", second);
    EXPECT_THAT(this->m_store->Baselines(),
                ElementsAre(KeptBaseline{"best", second}, KeptBaseline{"golden", second}));
    EXPECT_EQ(this->m_store->Find("golden").hash, second);
    EXPECT_THROW(this->m_store->SetBaseline("x", std::string(64, '0')), NotKept);
}

TYPED_TEST(StoreTest, ABaselineIsNotNamedAsAHash) {
    const std::string hash = this->Added("1");
    for (const char* name : {"", "abcd", "0000", "BEEF12"})
        EXPECT_THROW(this->m_store->SetBaseline(name, hash), KeptOtherwise) << name;
    this->m_store->SetBaseline("abc", hash);
    EXPECT_EQ(this->m_store->Find("abc").hash, hash);
}

TYPED_TEST(StoreTest, PowersComeWithTheirRunsAndConfigurations) {
    KeptFacts facts;
    facts.measuredAt = 2;
    facts.parts = {{"b1", "d1", 1}, {"b2", "d2", 1}};
    RunToKeep run = this->Run("5,AB,10.5,-3.25\n6,A,NA,NA\n5,AB,7,8\n", facts);
    run.parts = {0, 0, 1};
    this->m_store->Add(run, 1);
    facts.measuredAt = 1;
    this->m_store->Add(this->Run("6,B,NA,12\n", facts), 1);
    EXPECT_THAT(this->Powers(),
                ElementsAre(KeptPower{0, 0, 2, Chain::B, 12}, KeptPower{1, 0, 0, Chain::A, 10.5},
                            KeptPower{1, 1, 0, Chain::A, 7}, KeptPower{1, 0, 0, Chain::B, -3.25},
                            KeptPower{1, 1, 0, Chain::B, 8}));
    ASSERT_EQ(this->m_history.runs.size(), 2u);
    EXPECT_EQ(this->m_history.runs[0].measuredAt, 1);
    ASSERT_EQ(this->m_history.configurations.size(), 3u);
    EXPECT_EQ(*this->m_history.configurations[2][Setting::Chains], "B");
    EXPECT_EQ(this->m_history.configurations[2][Setting::Channel], nullptr);
    RunFilter filter;
    filter.bench = "b2";
    filter.since = 2;
    EXPECT_THAT(this->Powers(filter),
                ElementsAre(KeptPower{0, 1, 0, Chain::A, 7}, KeptPower{0, 1, 0, Chain::B, 8}));
}

TYPED_TEST(StoreTest, ACheckFindsNothingWrongWithWhatWasKept) {
    this->m_store->Add(this->Run("5,AB,10.5,NA\n6,A,1,NA\n"), 1);
    this->Added("0.1");
    const StoreCheck check = this->m_store->Check();
    EXPECT_THAT(check.problems, IsEmpty());
    EXPECT_EQ(check.runs, 2u);
    EXPECT_EQ(check.files, 4u);
}

TYPED_TEST(StoreTest, ACheckFindsWhatWasChanged) {
    const std::string run = "the run " + ShortHash(this->Added("1")) + ": ";
    const std::pair<const char*, const char*> cases[] = {
        {"UPDATE measurements SET power = 1.0000001",
         "of its measurements, 1 are not those of its result.csv"},
        {"UPDATE measurements SET power = 1, chain = 'B'",
         "of its measurements, 2 are not those of its result.csv"},
        {"UPDATE measurements SET power = NULL, chain = 'A'",
         "of its measurements, 1 are not those of its result.csv"},
        {"DELETE FROM measurements", "of its measurements, 1 are not those of its result.csv"}};
    for (const auto& [statement, problem] : cases) {
        this->Change(statement);
        const std::vector<std::string> problems = this->m_store->Check().problems;
        ASSERT_FALSE(problems.empty()) << statement;
        EXPECT_EQ(problems[0], run + problem) << statement;
    }
}

TYPED_TEST(StoreTest, ACheckAndAnExportFindAFileThatIsNotWhatItWas) {
    const std::string hash = this->Added("1");
    const std::string run = "the run " + ShortHash(hash) + ": ";
    const char* const statements[] = {
        "UPDATE files SET size = size + 1 WHERE name = 'result.csv'",
        "UPDATE files SET size = size - 1, sha256 = 'x' WHERE name = 'result.csv'",
        "DELETE FROM files WHERE name = 'result.csv'"};
    for (const char* statement : statements) {
        this->Change(statement);
        const std::vector<std::string> problems = this->m_store->Check().problems;
        ASSERT_EQ(problems.size(), 1u) << statement;
        EXPECT_THAT(problems[0], HasSubstr(run)) << statement;
        EXPECT_THROW(this->m_store->FilesOf(hash), StoreError) << statement;
    }
}

} // namespace
} // namespace Bench
