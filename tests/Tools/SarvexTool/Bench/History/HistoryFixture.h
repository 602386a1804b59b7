#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"
#include "Tools/SarvexTool/Bench/History/SqliteDatabase.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
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

/// Stores in files of a folder that goes with the test.
class FileStores {
public:
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

} // namespace Bench
