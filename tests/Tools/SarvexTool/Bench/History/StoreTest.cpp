#include "Tools/SarvexTool/Bench/History/Store.h"

#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "tests/Tools/SarvexTool/Bench/History/StoreFixture.h"

#include <gmock/gmock.h>

#include <cctype>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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

TEST_P(StoreTest, ARunComesBackAsItWasKept) {
    const RunToKeep run = Run("5,AB,10.5,NA\n", AllFacts());
    EXPECT_TRUE(m_store->Add(run, 123));
    KeptFacts expected = run.facts;
    expected.keptAt = 123;
    EXPECT_EQ(m_store->List({}), std::vector{expected});
    EXPECT_EQ(m_store->FilesOf(run.facts.hash), run.files);
    const std::vector<KeptFile> files = m_store->ListFiles(run.facts.hash);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].name, "client.log");
    EXPECT_EQ(files[0].size, 3u);
    EXPECT_EQ(files[1].name, "result.csv");
}

TEST_P(StoreTest, WhatIsNotKnownComesBackAsThat) {
    const RunToKeep run = Run("5,A,1,NA\n");
    m_store->Add(run, 0);
    EXPECT_EQ(m_store->List({}), std::vector{run.facts});
}

TEST_P(StoreTest, TheSameRunIsKeptOnce) {
    const RunToKeep run = Run("5,A,1,NA\n", AllFacts());
    EXPECT_TRUE(m_store->Add(run, 1));
    EXPECT_FALSE(m_store->Add(run, 2));
    ASSERT_EQ(m_store->List({}).size(), 1u);
    EXPECT_EQ(m_store->List({}).front().keptAt, 1);
    EXPECT_EQ(Count("measurements"), "1\n");
}

TEST_P(StoreTest, ToTellLessOfAKeptRunDoesNoHarmButSomethingElseIsRefused) {
    m_store->Add(Run("5,A,1,NA\n", AllFacts()), 1);
    KeptFacts less;
    EXPECT_FALSE(m_store->Add(Run("5,A,1,NA\n", less), 1));
    less.bench = "bench 2";
    EXPECT_EQ(WordsOf([&] { m_store->Add(Run("5,A,1,NA\n", less), 1); }),
              "it is kept already, with the bench bench\n1; to keep it otherwise, remove it "
              "(history remove) and add it again");
    KeptFacts note;
    note.note = "x";
    EXPECT_THROW(m_store->Add(Run("5,A,1,NA\n", note), 1), KeptOtherwise);
    EXPECT_EQ(m_store->List({}).size(), 1u);
}

TEST_P(StoreTest, AnotherStateOfARunDirectoryIsRefusedUntilTheKeptOneIsRemoved) {
    const std::string hash = Added("1", AllFacts());
    const RunToKeep later = Run("5,A,1,NA\n5,A,2,NA\n", AllFacts());
    EXPECT_EQ(WordsOf([&] { m_store->Add(later, 1); }),
              "another state of this run is kept already; to keep this one, remove that one first "
              "(history remove " +
                  ShortHash(hash) + ")");
    EXPECT_EQ(Count("runs"), "1\n");
    m_store->Remove(hash, false);
    EXPECT_TRUE(m_store->Add(later, 1));
}

TEST_P(StoreTest, TwoShortRunsOfOneSecondAreTwo) {
    const auto startedAt = [&](const std::string& moment, const std::string& power) {
        RunToKeep run = Run("5,A," + power + ",NA\n", AllFacts());
        RunFacts facts;
        facts.started = moment;
        run.files.push_back({"run.json", ToJsonText(facts)});
        run.facts.hash = HashOf(run.files);
        return run;
    };
    EXPECT_TRUE(m_store->Add(startedAt("2026-03-09T08:05:00.250Z", "1"), 1));
    EXPECT_TRUE(m_store->Add(startedAt("2026-03-09T08:05:00.750Z", "2"), 1));
    EXPECT_THROW(m_store->Add(startedAt("2026-03-09T08:05:00.750Z", "3"), 1), KeptOtherwise);
    EXPECT_EQ(Count("runs"), "2\n");
}

TEST_P(StoreTest, RunsOfOneMomentAreTwoUnlessAllThatTellsARunDirectoryIsTheSame) {
    Added("0", AllFacts());
    const std::pair<const char*, void (*)(KeptFacts&)> cases[] = {
        {"1", [](KeptFacts& facts) { facts.measuredAt = 1; }},
        {"2", [](KeptFacts& facts) { facts.testFileSha256 = std::string(64, 'c'); }},
        {"3", [](KeptFacts& facts) { facts.host = "pc8"; }},
        {"4", [](KeptFacts& facts) { facts.daemon = "127.0.0.1:8739"; }},
        {"5", [](KeptFacts& facts) { facts.testFileSha256.reset(); }},
        {"6", [](KeptFacts& facts) { facts.host.reset(); }},
        {"7", [](KeptFacts& facts) { facts.daemon.reset(); }},
        {"8", [](KeptFacts& facts) { facts.daemon.reset(); }}};
    for (const auto& [power, change] : cases) {
        KeptFacts facts = AllFacts();
        change(facts);
        Added(power, facts);
    }
    EXPECT_EQ(Count("runs"), "9\n");
}

TEST_P(StoreTest, TheRowsAreThoseOfTheMeasurements) {
    m_store->Add(Run("5,AB,10.5,NA\n-,A,11,NA\n"), 1);
    EXPECT_EQ(
        RowsOf(
            *m_database,
            "SELECT line, chain, band, chains, channel, part, CAST(power * 10 AS BIGINT), reason FROM "
            "measurements JOIN configurations ON id = configuration ORDER BY line, chain",
            8),
        "2|A|5|AB|NULL|0|105|NULL\n"
        "2|B|5|AB|NULL|0|NULL|no power was reported\n"
        "3|A|5|A|NULL|0|110|NULL\n");
}

TEST_P(StoreTest, ALineWithoutAChainHasARowOfItsOwn) {
    m_store->Add(Run("5,-,NA,NA\n"), 1);
    EXPECT_EQ(RowsOf(*m_database, "SELECT line, chain, part, power, reason FROM measurements", 5),
              "2|?|0|NULL|no power was reported\n");
    EXPECT_THAT(m_store->Check().problems, IsEmpty());
}

TEST_P(StoreTest, AConfigurationIsKeptOnceForAllRuns) {
    m_store->Add(Run("5,A,1,NA\n6,A,1,NA\n5,A,2,NA\n"), 1);
    m_store->Add(Run("6,A,3,NA\n7,A,3,NA\n"), 1);
    EXPECT_EQ(RowsOf(*m_database, "SELECT id, key, band FROM configurations ORDER BY id", 3),
              "1|1:5,1:A,-,-,-,-,-,-,-,-|5\n2|1:6,1:A,-,-,-,-,-,-,-,-|6\n"
              "3|1:7,1:A,-,-,-,-,-,-,-,-|7\n");
}

TEST_P(StoreTest, ManyRowsAreAllKept) {
    std::string rows;
    for (int line = 0; line < 1'000; ++line)
        rows += std::to_string(line) + ",A," + std::to_string(line) + ".25,NA\n";
    m_store->Add(Run(rows), 1);
    EXPECT_EQ(
        RowsOf(
            *m_database,
            "SELECT COUNT(*), COUNT(DISTINCT configuration), CAST(SUM(power) AS BIGINT) FROM measurements",
            3),
        "1000|1000|499750\n");
    EXPECT_THAT(m_store->Check().problems, IsEmpty());
}

TEST_P(StoreTest, HostileTextsAreData) {
    const std::string hostile = "'); DROP TABLE runs; --\\\"$1?%s\x01\xFF";
    KeptFacts facts = AllFacts();
    facts.name = facts.note.emplace(hostile);
    facts.bench = hostile;
    facts.parts = {{hostile, std::nullopt, std::nullopt}};
    facts.device.reset();
    const RunToKeep run = Run("'\xFF\");DROP TABLE measurements;--,A\x02,1,NA\n", facts);
    m_store->Add(run, 1);
    EXPECT_EQ(m_store->List({}).front().name, hostile);
    RunFilter filter;
    filter.bench = hostile;
    EXPECT_EQ(NamesOf(filter), hostile);
    filter.bench = "' OR 1=1 --";
    EXPECT_EQ(NamesOf(filter), "");
    EXPECT_THAT(m_store->Check().problems, IsEmpty());
    EXPECT_THROW(m_store->Find("' OR '1'='1"), NotKept);
    const std::string baseline = "'); DROP TABLE baselines; --\"$1?%s\x01\xFF";
    m_store->SetBaseline(baseline, run.facts.hash);
    EXPECT_EQ(m_store->Find(baseline).hash, run.facts.hash);
}

TEST_P(StoreTest, RunsAreListedInTheOrderOfTheirTimes) {
    KeptFacts facts;
    for (const auto& [name, time] : {std::pair("late", 300), {"early", 100}, {"middle", 200}}) {
        facts.name = name;
        facts.measuredAt = time;
        Added(std::to_string(time), facts);
    }
    EXPECT_EQ(NamesOf({}), "early middle late");
    RunFilter filter;
    filter.since = 200;
    EXPECT_EQ(NamesOf(filter), "middle late");
    filter.before = 300;
    EXPECT_EQ(NamesOf(filter), "middle");
}

TEST_P(StoreTest, AFilterTellsWhichRunsAreMeant) {
    KeptFacts facts;
    facts.name = "a";
    facts.bench = "b1";
    facts.device = "d1";
    facts.firmware = "f1";
    facts.verdict = KeptVerdict::Pass;
    Added("1", facts);
    facts.name = "b";
    facts.device = "d2";
    facts.verdict = KeptVerdict::Fail;
    Added("2", facts);
    Added("3", [] {
        KeptFacts merged;
        merged.name = "c";
        merged.parts = {{"b1", "d1", 1}, {"b2", "d2", 1}};
        return merged;
    }());
    Added("4", [] {
        KeptFacts unknown;
        unknown.name = "u";
        return unknown;
    }());
    const auto with = [](auto change) {
        RunFilter filter;
        change(filter);
        return filter;
    };
    const std::pair<RunFilter, const char*> cases[] = {
        {with([](RunFilter& filter) { filter.bench = "b1"; }), "a b c"},
        {with([](RunFilter& filter) { filter.bench = "b2"; }), "c"},
        {with([](RunFilter& filter) { filter.bench = UnknownBench; }), "u"},
        {with([](RunFilter& filter) { filter.device = "d2"; }), "b c"},
        {with([](RunFilter& filter) { filter.bench = "b1", filter.device = "d2"; }), "b"},
        {with([](RunFilter& filter) { filter.firmware = "f1"; }), "a b"},
        {with([](RunFilter& filter) { filter.file = "c"; }), "c"},
        {with([](RunFilter& filter) { filter.verdict = KeptVerdict::NotJudged; }), "c u"},
        {with([](RunFilter& filter) { filter.verdict = KeptVerdict::Pass, filter.bench = "b1"; }),
         "a"},
        {with([](RunFilter& filter) { filter.file = "none"; }), ""}};
    for (const auto& [filter, names] : cases)
        EXPECT_EQ(NamesOf(filter), names);
}

TEST_P(StoreTest, PartsComeWithTheirRun) {
    KeptFacts facts;
    facts.parts = {{"b1", "d1", 1}, {"b2", std::nullopt, 2}};
    RunToKeep run = Run("5,A,1,NA\n6,A,2,NA\n", facts);
    run.parts = {0, 1};
    m_store->Add(run, 1);
    Added("9");
    RunFilter filter;
    filter.bench = "b2";
    const std::vector<KeptFacts> runs = m_store->List(filter);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].parts, facts.parts);
}

TEST_P(StoreTest, ARunIsFoundByTheFirstDigitsOfItsHash) {
    const std::string hash = Added("1");
    EXPECT_EQ(m_store->Find(hash).hash, hash);
    EXPECT_EQ(m_store->Find(hash.substr(0, 4)).hash, hash);
    std::string capitals = hash.substr(0, 12);
    for (char& digit : capitals)
        digit = static_cast<char>(std::toupper(digit));
    EXPECT_EQ(m_store->Find(capitals).hash, hash);
    EXPECT_THAT(WordsOf([&] { m_store->Find(hash.substr(0, 3)); }),
                HasSubstr("at least 4 digits are needed"));
    EXPECT_THAT(WordsOf([&] { m_store->Find(std::string(64, '0')); }),
                HasSubstr("no run is kept whose hash begins with 0000"));
    for (const char* wild : {"%%%%", "____", ""})
        EXPECT_THROW(m_store->Find(wild), NotKept) << wild;
}

TEST_P(StoreTest, DigitsThatTwoRunsBeginWithAreNotEnough) {
    Added("1");
    Added("2");
    Change("UPDATE runs SET hash = 'abcd' || id");
    EXPECT_EQ(WordsOf([&] { m_store->Find("abcd"); }),
              "the hashes of 2 runs begin with abcd; give more digits");
    EXPECT_EQ(m_store->Find("abcd1").hash, "abcd1");
}

TEST_P(StoreTest, ThatItIsWritableChangesNothing) {
    Added("1");
    const auto counts = [this] {
        std::string text;
        for (const char* table : {"runs", "parts", "configurations", "measurements", "files"})
            text += Count(table);
        return text;
    };
    const std::string before = counts();
    m_store->RequireWritable();
    EXPECT_EQ(counts(), before);
}

TEST_P(StoreTest, ARunIsRemovedWithAllItsRows) {
    const std::string hash = Added("1");
    m_store->Remove(hash, false);
    for (const char* table : {"runs", "parts", "result_lines", "files"})
        EXPECT_EQ(Count(table), "0\n") << table;
    EXPECT_THROW(m_store->Remove(hash, false), NotKept);
    EXPECT_THROW(m_store->FilesOf(hash), NotKept);
    Added("1");
}

TEST_P(StoreTest, ABaselineIsRemovedOnlyWithItsName) {
    const std::string hash = Added("1");
    m_store->SetBaseline("golden", hash);
    EXPECT_EQ(
        WordsOf([&] { m_store->Remove(hash, false); }),
        "the run " + ShortHash(hash) +
            " is the baseline golden; take the name from it (history baseline remove), or remove "
            "both with --force");
    EXPECT_EQ(Count("runs"), "1\n");
    m_store->Remove(hash, true);
    EXPECT_THAT(m_store->Baselines(), IsEmpty());
}

TEST_P(StoreTest, ABaselineIsTheRunThatWasNamedLast) {
    const std::string first = Added("1");
    const std::string second = Added("2");
    m_store->SetBaseline("golden", first);
    m_store->SetBaseline("golden", second);
    m_store->SetBaseline("best", second);
    EXPECT_THAT(m_store->Baselines(),
                ElementsAre(KeptBaseline{"best", second}, KeptBaseline{"golden", second}));
    EXPECT_EQ(m_store->Find("golden").hash, second);
    EXPECT_THROW(m_store->SetBaseline("x", std::string(64, '0')), NotKept);
}

TEST_P(StoreTest, OfARunWhoseBaselineIsRemovedTheOtherNamesStay) {
    const std::string hash = Added("1");
    m_store->SetBaseline("golden", hash);
    m_store->SetBaseline("best", hash);
    m_store->RemoveBaseline("golden");
    EXPECT_THAT(m_store->Baselines(), ElementsAre(KeptBaseline{"best", hash}));
    EXPECT_THROW(m_store->RequireNoBaseline(hash), KeptOtherwise);
    m_store->RemoveBaseline("best");
    m_store->RequireNoBaseline(hash);
    EXPECT_EQ(Count("runs"), "1\n");
}

TEST_P(StoreTest, ABaselineIsNotNamedAsAFile) {
    const std::string hash = Added("1");
    for (const char* name : {" ", "\t\n", "-", "a/b", "a\\b", "gold.csv", ".csv"})
        EXPECT_THROW(m_store->SetBaseline(name, hash), KeptOtherwise) << name;
    EXPECT_THAT(m_store->Baselines(), IsEmpty());
    for (const char* name : {"--", "gold.csv 2", " gold"})
        m_store->SetBaseline(name, hash);
}

TEST_P(StoreTest, ABaselineIsNotNamedAsAHash) {
    const std::string hash = Added("1");
    for (const char* name : {"", "abcd", "0000", "BEEF12"})
        EXPECT_THROW(m_store->SetBaseline(name, hash), KeptOtherwise) << name;
    m_store->SetBaseline("abc", hash);
    EXPECT_EQ(m_store->Find("abc").hash, hash);
}

TEST_P(StoreTest, ABaselinesNameIsShort) {
    const std::string hash = Added("1");
    m_store->SetBaseline(std::string(200, '\xFF'), hash);
    EXPECT_EQ(m_store->Find(std::string(200, '\xFF')).hash, hash);
    EXPECT_EQ(WordsOf([&] { m_store->SetBaseline(std::string(201, 'x'), hash); }),
              "the name of a baseline has at most 200 bytes");
}

TEST_P(StoreTest, ACellMayBeLongerThanARowOfAnIndex) {
    // Not of one letter: what the server can compress fits.
    std::string cell;
    for (int number = 0; cell.size() < 20'000; ++number)
        cell += std::to_string(number * 7919);
    EXPECT_TRUE(m_store->Add(Run(cell + ",A,1,NA\n"), 1));
    EXPECT_TRUE(m_store->Add(Run(cell + "0,A,1,NA\n" + cell + ",A,1,NA\n"), 1));
    EXPECT_EQ(Count("configurations"), "2\n");
    EXPECT_THAT(m_store->Check().problems, IsEmpty());
}

TEST_P(StoreTest, AChangedConfigurationIsFoundByACheck) {
    m_store->Add(Run("5,AB,10.5,NA\n6,A,1,NA\n"), 1);
    Change("UPDATE configurations SET band = '7' WHERE band = '6'");
    EXPECT_THAT(m_store->Check().problems,
                ElementsAre("of the configurations, 1 is not what was kept"));
    Change("UPDATE configurations SET band = NULL");
    EXPECT_THAT(m_store->Check().problems,
                ElementsAre("of the configurations, 2 are not what was kept"));
}

TEST_P(StoreTest, PowersComeWithTheirRunsAndConfigurations) {
    KeptFacts facts;
    facts.measuredAt = 2;
    facts.parts = {{"b1", "d1", 1}, {"b2", "d2", 1}};
    RunToKeep run = Run("5,AB,10.5,-3.25\n6,A,NA,NA\n5,AB,7,8\n", facts);
    run.parts = {0, 0, 1};
    m_store->Add(run, 1);
    facts.measuredAt = 1;
    m_store->Add(Run("6,B,NA,12\n", facts), 1);
    EXPECT_THAT(Powers(),
                ElementsAre(KeptPower{0, 0, 2, Chain::B, 12}, KeptPower{1, 0, 0, Chain::A, 10.5},
                            KeptPower{1, 1, 0, Chain::A, 7}, KeptPower{1, 0, 0, Chain::B, -3.25},
                            KeptPower{1, 1, 0, Chain::B, 8},
                            // What was not measured.
                            KeptPower{1, 0, 1, Chain::A, std::nullopt}));
    ASSERT_EQ(m_history.runs.size(), 2u);
    EXPECT_EQ(m_history.runs[0].measuredAt, 1);
    ASSERT_EQ(m_history.configurations.size(), 3u);
    EXPECT_EQ(*m_history.configurations[2][Setting::Chains], "B");
    EXPECT_EQ(m_history.configurations[2][Setting::Channel], nullptr);
    RunFilter filter;
    filter.bench = "b2";
    filter.since = 2;
    EXPECT_THAT(Powers(filter),
                ElementsAre(KeptPower{0, 1, 0, Chain::A, 7}, KeptPower{0, 1, 0, Chain::B, 8}));
}

TEST_P(StoreTest, ThePowersOfRunsOfWhichNothingTellsTheBenchAreAskedForByUnknown) {
    KeptFacts facts;
    facts.parts = {{"b1", "d1", 1}, {std::nullopt, "d2", 1}};
    RunToKeep run = Run("5,A,1,NA\n6,A,2,NA\n", facts);
    run.parts = {0, 1};
    m_store->Add(run, 1);
    RunFilter filter;
    filter.bench = UnknownBench;
    EXPECT_THAT(Powers(filter), ElementsAre(KeptPower{0, 1, 1, Chain::A, 2}));
    filter.device = "d1";
    EXPECT_THAT(Powers(filter), IsEmpty());
}

TEST_P(StoreTest, ACheckFindsNothingWrongWithWhatWasKept) {
    m_store->Add(Run("5,AB,10.5,NA\n6,A,1,NA\n"), 1);
    Added("0.1");
    const StoreCheck check = m_store->Check();
    EXPECT_THAT(check.problems, IsEmpty());
    EXPECT_EQ(check.runs, 2u);
    EXPECT_EQ(check.files, 4u);
}

TEST_P(StoreTest, ACheckFindsWhatWasChanged) {
    const std::string run = "the run " + ShortHash(Added("1")) + ": ";
    const std::pair<const char*, const char*> cases[] = {
        {"UPDATE result_lines SET power_a = 1.0000001",
         "of its measurements, 1 are not those of its result.csv"},
        {"UPDATE result_lines SET power_a = NULL, power_b = 1",
         "of its measurements, 2 are not those of its result.csv"},
        {"UPDATE result_lines SET power_b = NULL, reason_a = 'x'",
         "of its measurements, 1 are not those of its result.csv"},
        {"DELETE FROM result_lines", "of its measurements, 1 are not those of its result.csv"}};
    for (const auto& [statement, problem] : cases) {
        Change(statement);
        const std::vector<std::string> problems = m_store->Check().problems;
        ASSERT_FALSE(problems.empty()) << statement;
        EXPECT_EQ(problems[0], run + problem) << statement;
    }
}

TEST_P(StoreTest, ACheckAndAnExportFindAFileThatIsNotWhatItWas) {
    const std::string hash = Added("1");
    const std::string run = "the run " + ShortHash(hash) + ": ";
    const char* const statements[] = {
        "UPDATE files SET size = size + 1 WHERE name = 'result.csv'",
        "UPDATE files SET size = size - 1, sha256 = 'x' WHERE name = 'result.csv'",
        "DELETE FROM files WHERE name = 'result.csv'"};
    for (const char* statement : statements) {
        Change(statement);
        const std::vector<std::string> problems = m_store->Check().problems;
        ASSERT_EQ(problems.size(), 1u) << statement;
        EXPECT_THAT(problems[0], HasSubstr(run)) << statement;
        EXPECT_THROW(m_store->FilesOf(hash), StoreError) << statement;
    }
}

} // namespace
} // namespace Bench
