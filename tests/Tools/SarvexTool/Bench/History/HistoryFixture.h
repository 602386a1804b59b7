#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"
#include "Tools/SarvexTool/Bench/History/SqliteDatabase.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

namespace Bench {

/// What a call fails with: "STORE: words"; "nothing" when it does not.
template <typename Call>
std::string FailureOf(Call call) {
    try {
        call();
    } catch (const StoreError& error) {
        return error.what();
    }
    return "nothing";
}

/// The rows of a query as one text: cells between bars, a line each.
inline std::string RowsOf(Database& database, std::string_view statement, std::size_t columns,
                          Database::Values parameters = {}) {
    std::string rows;
    database.Query(statement, parameters, [&](const ResultRow& row) {
        for (std::size_t column = 0; column < columns; ++column)
            rows += (column == 0 ? "" : "|") +
                    (row.IsNull(column) ? "NULL" : std::string(row.Text(column)));
        rows += "\n";
    });
    return rows;
}

/// Where the stores of one test are; they go with it.
class Stores {
public:
    virtual ~Stores() = default;
    virtual std::unique_ptr<Database> OpenOne(OpenFor purpose) const = 0;
};

/// Stores in files of a folder.
class FileStores : public Stores {
public:
    std::unique_ptr<Database> OpenOne(OpenFor purpose) const override { return Open(purpose); }
    std::string Path(const std::string& name = "history.db") const {
        return m_directory.Path(name);
    }
    std::unique_ptr<Database> Open(OpenFor purpose, const std::string& name = "history.db",
                                   std::chrono::milliseconds patience = {}) const {
        return std::make_unique<SqliteDatabase>(StoreName::Parse(Path(name)), purpose, patience);
    }

private:
    TestSupport::TemporaryDirectory m_directory;
};

using MakeStores = std::unique_ptr<Stores> (*)();

/// A test that every kind of store must pass: with one that is open to be written.
class DatabaseFixture : public testing::TestWithParam<MakeStores> {
protected:
    DatabaseFixture() : m_stores(GetParam()()), m_database(m_stores->OpenOne(OpenFor::Writing)) {}

    /// What a call fails with, without the store's name.
    template <typename Call>
    std::string Refusal(Call call) const {
        const std::string failure = FailureOf(call);
        const std::string begin = m_database->Shown() + ": ";
        return failure.starts_with(begin) ? failure.substr(begin.size()) : failure;
    }

    std::unique_ptr<Stores> m_stores;
    std::unique_ptr<Database> m_database;
};

class DatabaseTest : public DatabaseFixture {};
class MigrationsTest : public DatabaseFixture {};

} // namespace Bench
