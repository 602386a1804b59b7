#include "Tools/SarvexTool/Bench/History/Migrations.h"

#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"

namespace Bench {
namespace {

TEST_P(MigrationsTest, ANewDatabaseGetsAllTablesOnce) {
    EXPECT_EQ(VersionOf(*m_database), 0);
    Migrate(*m_database);
    EXPECT_EQ(VersionOf(*m_database), NewestVersion());
    EXPECT_EQ(m_database->Tables(),
              (std::vector<std::string>{"baselines", "configurations", "files", "history_version",
                                        "parts", "result_lines", "runs"}));
    m_database->Run("INSERT INTO configurations(id, key) VALUES (1, 'k')");
    Migrate(*m_database);
    EXPECT_EQ(RowsOf(*m_database, "SELECT key FROM configurations", 1), "k\n");
    EXPECT_EQ(RowsOf(*m_database, "SELECT version FROM history_version", 1), "1\n");
}

TEST_P(MigrationsTest, ThereIsOneStepForEachVersion) {
    EXPECT_EQ(AllMigrations(*m_database).size(), static_cast<std::size_t>(NewestVersion()));
}

TEST_P(MigrationsTest, ADatabaseOfANewerVersionIsRefusedAndNotChanged) {
    Migrate(*m_database);
    m_database->Run("UPDATE history_version SET version = 2");
    m_database->Run("DROP TABLE baselines");
    const std::vector<std::string> tables = m_database->Tables();
    const std::string words = "was made by a newer version of this program (version 2 of its "
                              "tables, this program knows 1): use that one";
    EXPECT_EQ(Refusal([&] { Migrate(*m_database); }), words);
    EXPECT_EQ(Refusal([&] { VersionOf(*m_database); }), words);
    EXPECT_EQ(m_database->Tables(), tables);
    EXPECT_EQ(RowsOf(*m_database, "SELECT version FROM history_version", 1), "2\n");
}

TEST_P(MigrationsTest, ADatabaseOfSomethingElseIsRefusedAndNotChanged) {
    m_database->Run("CREATE TABLE bookmarks(id BIGINT)");
    const std::string words = "holds the tables of something else, for example bookmarks: give "
                              "the history a database of its own";
    EXPECT_EQ(Refusal([&] { Migrate(*m_database); }), words);
    EXPECT_EQ(Refusal([&] { VersionOf(*m_database); }), words);
    EXPECT_EQ(m_database->Tables(), (std::vector<std::string>{"bookmarks"}));
}

TEST_P(MigrationsTest, AVersionThatIsNotToldIsDamage) {
    Migrate(*m_database);
    const std::string words = "is damaged: its table history_version does not tell one version";
    for (const std::string statement :
         {"UPDATE history_version SET version = 0", "INSERT INTO history_version VALUES (1)",
          "DELETE FROM history_version"}) {
        m_database->Run(statement);
        EXPECT_EQ(Refusal([&] { Migrate(*m_database); }), words) << statement;
    }
}

TEST_P(MigrationsTest, EachStepIsDoneWholeOrNotAtAll) {
    const std::vector<Migration> steps{{"CREATE TABLE first(id BIGINT)"},
                                       {"CREATE TABLE second(id BIGINT)", "CREATE nonsense"}};
    EXPECT_NE(Refusal([&] { MigrateWith(*m_database, steps); }), "nothing");
    EXPECT_EQ(m_database->Tables(), (std::vector<std::string>{"first", "history_version"}));
    EXPECT_EQ(RowsOf(*m_database, "SELECT version FROM history_version", 1), "1\n");
    const std::vector<Migration> mended{steps[0], {"CREATE TABLE second(id BIGINT)"}};
    MigrateWith(*m_database, mended);
    EXPECT_EQ(m_database->Tables(),
              (std::vector<std::string>{"first", "history_version", "second"}));
    EXPECT_EQ(RowsOf(*m_database, "SELECT version FROM history_version", 1), "2\n");
}

TEST_P(MigrationsTest, ARunTakesItsRowsWithItUnlessItIsABaseline) {
    Migrate(*m_database);
    m_database->Run("INSERT INTO runs(id, hash, kept_at, measured_at, name, verdict, lines, "
                    "measurements, measured) VALUES (1, 'h', 0, 0, 'n', 'pass', 1, 1, 1)");
    m_database->Run("INSERT INTO configurations(id, key) VALUES (1, 'k')");
    m_database->Run("INSERT INTO parts(run, part) VALUES (1, 0)");
    m_database->Run("INSERT INTO result_lines VALUES (1, 2, 1, 0, 12.5, NULL, NULL, NULL, NULL)");
    const std::vector<Value> content{Blob{"bytes"}};
    m_database->Run("INSERT INTO files VALUES (1, 'result.csv', 5, 's', $1)", content);
    m_database->Run("INSERT INTO baselines VALUES ('golden', 1)");
    EXPECT_NE(FailureOf([&] { m_database->Run("DELETE FROM runs"); }), "nothing");
    m_database->Run("DELETE FROM baselines");
    m_database->Run("DELETE FROM runs");
    for (const std::string table : {"runs", "parts", "result_lines", "files"})
        EXPECT_EQ(RowsOf(*m_database, "SELECT COUNT(*) FROM " + table, 1), "0\n") << table;
}

} // namespace
} // namespace Bench
