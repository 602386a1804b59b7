#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"

#include <chrono>
#include <filesystem>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace Bench {

/// A store in one file, with a journal beside it while it is written.
class SqliteDatabase : public Database {
public:
    /// How long others who write are waited for.
    static constexpr std::chrono::milliseconds usualPatience{60000};

    /// The name is of a file.
    SqliteDatabase(const StoreName& name, OpenFor purpose,
                   std::chrono::milliseconds patience = usualPatience);
    ~SqliteDatabase() override;

    using Database::Query;
    using Database::Run;
    void Run(std::string_view statement, Values parameters) override;
    void Query(std::string_view statement, Values parameters, const TakeRow& take) override;
    void BeginRead() override { Run("BEGIN"); }
    void BeginWrite() override { Run("BEGIN IMMEDIATE"); }
    void Commit() override { Run("COMMIT"); }
    void Rollback() noexcept override;
    std::vector<std::string> Tables() override;
    std::string_view TableEnd() const override { return " WITHOUT ROWID"; }
    std::vector<std::string> IntegrityProblems() override;

private:
    struct CloseDatabase {
        void operator()(sqlite3* pDatabase) const;
    };
    struct EndStatement {
        void operator()(sqlite3_stmt* pStatement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, EndStatement>;

    void Open(const std::filesystem::path& path, OpenFor purpose);
    sqlite3_stmt* Prepared(std::string_view statement);
    void Bind(sqlite3_stmt* pStatement, Values parameters) const;
    /// Throws what the database's last error means.
    [[noreturn]] void FailWithError() const;

    OpenFor m_purpose;
    std::chrono::milliseconds m_patience;
    std::unique_ptr<sqlite3, CloseDatabase> m_database;
    // Statements are kept: the same few are run for each run that is added. They end before the
    // database does.
    std::unordered_map<std::string, Statement> m_statements;
};

} // namespace Bench
