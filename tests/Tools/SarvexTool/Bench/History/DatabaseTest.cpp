#include "Tools/SarvexTool/Bench/History/Database.h"

#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"

#include <stdexcept>

namespace Bench {
namespace {

void MakeThings(Database& database) {
    database.Run(
        "CREATE TABLE things(id BIGINT PRIMARY KEY, name TEXT, power DOUBLE PRECISION, content BYTEA)");
}

void Add(Database& database, std::int64_t id, Value name, Value power = {}, Value content = {}) {
    const std::vector<Value> values{id, std::move(name), std::move(power), std::move(content)};
    database.Run("INSERT INTO things VALUES ($1, $2, $3, $4)", values);
}

std::string Rows(Database& database) {
    return RowsOf(database, "SELECT id, name FROM things ORDER BY id", 2);
}

TEST_P(DatabaseTest, EveryTypeOfValueComesBackAsItWas) {
    MakeThings(*m_database);
    constexpr std::int64_t largest = 9223372036854775807;
    const std::string bytes("\0\xFF\x80 '\"", 6);
    Add(*m_database, largest, "Gr\xC3\xBC\xC3\x9F'; DROP TABLE things; --", 0.1, Blob{bytes});
    Add(*m_database, -1, "", -1e-300, Blob{});
    Add(*m_database, 3, {});
    std::size_t count = 0;
    m_database->Query("SELECT id, name, power, content FROM things ORDER BY id",
                      [&](const ResultRow& row) {
                          switch (count++) {
                          case 0:
                              EXPECT_EQ(row.Integer(0), -1);
                              EXPECT_FALSE(row.IsNull(1));
                              EXPECT_EQ(row.Text(1), "");
                              EXPECT_EQ(row.Real(2), -1e-300);
                              EXPECT_FALSE(row.IsNull(3));
                              EXPECT_EQ(row.Bytes(3), "");
                              break;
                          case 1:
                              EXPECT_EQ(row.Integer(0), 3);
                              EXPECT_TRUE(row.IsNull(1) && row.IsNull(2) && row.IsNull(3));
                              EXPECT_EQ(row.Text(1), "");
                              EXPECT_EQ(row.Real(2), 0);
                              EXPECT_EQ(row.Integer(2), 0);
                              EXPECT_EQ(row.Bytes(3), "");
                              break;
                          default:
                              EXPECT_EQ(row.Integer(0), largest);
                              EXPECT_EQ(row.Text(1), "Gr\xC3\xBC\xC3\x9F'; DROP TABLE things; --");
                              EXPECT_EQ(row.Real(2), 0.1);
                              EXPECT_EQ(row.Bytes(3), bytes);
                          }
                      });
    EXPECT_EQ(count, 3U);
}

TEST_P(DatabaseTest, AParameterHasItsNumberWhereverItIs) {
    MakeThings(*m_database);
    const std::vector<Value> values{"first", std::int64_t{2}};
    m_database->Run("INSERT INTO things(id, name) VALUES ($2, $1)", values);
    EXPECT_EQ(Rows(*m_database), "2|first\n");
    EXPECT_EQ(RowsOf(*m_database,
                     "SELECT id, name FROM things WHERE id = $2 AND name = $1 AND id + 1 > $2", 2,
                     values),
              "2|first\n");
}

TEST_P(DatabaseTest, ManyRowsAreAddedByOneStatement) {
    MakeThings(*m_database);
    constexpr int rows = 500;
    std::string statement = "INSERT INTO things(id, name, power) VALUES ";
    std::vector<Value> values;
    for (int row = 0; row < rows; ++row) {
        statement += row == 0 ? "(" : ", (";
        for (int column = 1; column <= 3; ++column)
            statement += (column == 1 ? "$" : ", $") + std::to_string(3 * row + column);
        statement += ")";
        values.insert(values.end(), {std::int64_t{row}, std::to_string(row),
                                     row % 2 == 0 ? Value() : Value(row / 4.0)});
    }
    m_database->Run(statement, values);
    EXPECT_EQ(RowsOf(*m_database, "SELECT COUNT(*), COUNT(power), MAX(id) FROM things", 3),
              "500|250|499\n");
}

TEST_P(DatabaseTest, WhatIsThereAlreadyCanBeLeftAsItIs) {
    MakeThings(*m_database);
    Add(*m_database, 1, "first");
    m_database->Run("INSERT INTO things(id, name) VALUES (1, 'second') ON CONFLICT DO NOTHING");
    EXPECT_EQ(Rows(*m_database), "1|first\n");
}

TEST_P(DatabaseTest, ATextThatNotEveryDatabaseKeepsIsRefused) {
    MakeThings(*m_database);
    for (const std::string& text : {std::string("a\0b", 3), std::string("\xC0\x80"),
                                    std::string("M\xFCller"), std::string("\xED\xA0\x80")}) {
        EXPECT_EQ(FailureOf([&] { Add(*m_database, 1, text); }),
                  m_database->Shown() + ": takes no text that is not UTF-8 or has a NUL character");
    }
    EXPECT_EQ(Rows(*m_database), "");
}

TEST_P(DatabaseTest, ATransactionThatIsNotCommittedIsTakenBack) {
    MakeThings(*m_database);
    {
        const Transaction transaction(*m_database, OpenFor::Writing);
        Add(*m_database, 1, "lost");
        EXPECT_EQ(Rows(*m_database), "1|lost\n");
    }
    EXPECT_EQ(Rows(*m_database), "");
    Transaction transaction(*m_database, OpenFor::Writing);
    Add(*m_database, 2, "kept");
    transaction.Commit();
    EXPECT_EQ(Rows(*m_database), "2|kept\n");
}

TEST_P(DatabaseTest, TheDatabaseCanBeUsedAfterAStatementThatFailed) {
    MakeThings(*m_database);
    Add(*m_database, 1, "one");
    EXPECT_NE(FailureOf([&] { Add(*m_database, 1, "again"); }), "nothing");
    EXPECT_NE(FailureOf([&] { m_database->Run("SELECT nonsense FROM nowhere"); }), "nothing");
    Add(*m_database, 2, "two");
    EXPECT_EQ(Rows(*m_database), "1|one\n2|two\n");
}

TEST_P(DatabaseTest, WhatTakesARowMayEndTheQuery) {
    MakeThings(*m_database);
    Add(*m_database, 1, "one");
    Add(*m_database, 2, "two");
    const auto end = [](const ResultRow&) { throw std::runtime_error("enough"); };
    EXPECT_THROW(m_database->Query("SELECT id FROM things", end), std::runtime_error);
    m_database->Run("DELETE FROM things WHERE id = 1");
    EXPECT_EQ(Rows(*m_database), "2|two\n");
}

TEST_P(DatabaseTest, ItsTablesAreTold) {
    MakeThings(*m_database);
    m_database->Run("CREATE TABLE other(id BIGINT PRIMARY KEY)" +
                    std::string(m_database->TableEnd()));
    EXPECT_EQ(m_database->Tables(), (std::vector<std::string>{"other", "things"}));
    EXPECT_EQ(m_database->IntegrityProblems(), std::vector<std::string>());
}

TEST_P(DatabaseTest, TwoConnectionsReadOneMomentEach) {
    MakeThings(*m_database);
    Add(*m_database, 1, "one");
    const std::unique_ptr<Database> reader = m_stores->OpenOne(OpenFor::Reading);
    const std::string statement = "SELECT id, name FROM things ORDER BY id";
    {
        const Transaction transaction(*reader, OpenFor::Reading);
        EXPECT_EQ(RowsOf(*reader, statement, 2), "1|one\n");
        const Transaction writing(*m_database, OpenFor::Writing);
        Add(*m_database, 2, "two");
        EXPECT_EQ(RowsOf(*reader, statement, 2), "1|one\n");
    }
    Add(*m_database, 3, "three");
    EXPECT_EQ(RowsOf(*reader, statement, 2), "1|one\n3|three\n");
}

} // namespace
} // namespace Bench
