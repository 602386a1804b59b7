#include "Tools/SarvexTool/Bench/History/Migrations.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr std::int64_t newest = 1;

/// Tells the version; it has one row.
const std::string versionTable = "history_version";

/// A row belongs to one of a table before its own. Where a text is NULL, nothing told of it.
Migration TableOfRuns(const std::string& tableEnd) {
    return {
        "CREATE TABLE runs("
        "id BIGINT NOT NULL PRIMARY KEY, "
        "hash TEXT NOT NULL UNIQUE, "
        "kept_at BIGINT NOT NULL, "
        "measured_at BIGINT NOT NULL, "
        "name TEXT NOT NULL, "
        "test_file_sha256 TEXT, "
        "bench TEXT, "
        "device TEXT, "
        "firmware TEXT, "
        "note TEXT, "
        "user_name TEXT, "
        "host TEXT, "
        "daemon TEXT, "
        "mac_type BIGINT, "
        "country_code TEXT, "
        "outcome TEXT, "
        "verdict TEXT NOT NULL, "
        "lines BIGINT NOT NULL, "
        "measurements BIGINT NOT NULL, "
        "measured BIGINT NOT NULL)" +
            tableEnd,
        "CREATE INDEX runs_by_time ON runs(measured_at)",
    };
}

/// What a measurement is of.
Migration TablesOfSubjects(const std::string& tableEnd) {
    return {
        "CREATE TABLE parts("
        "run BIGINT NOT NULL REFERENCES runs(id) ON DELETE CASCADE, "
        "part BIGINT NOT NULL, "
        "bench TEXT, "
        "device TEXT, "
        "attempt BIGINT, "
        "PRIMARY KEY(run, part))" +
            tableEnd,
        "CREATE TABLE configurations("
        "id BIGINT NOT NULL PRIMARY KEY, "
        "key TEXT NOT NULL UNIQUE, "
        "band TEXT, "
        "chains TEXT, "
        "bandwidth TEXT, "
        "channel TEXT, "
        "bandwidth_mode TEXT, "
        "rate TEXT, "
        "mode TEXT, "
        "resource_unit TEXT, "
        "specific_resource_unit TEXT, "
        "large_ru_size TEXT)" +
            tableEnd,
    };
}

Migration TablesOfContent(const std::string& tableEnd) {
    return {
        // One row for both chains takes two thirds of what one for each does.
        "CREATE TABLE result_lines("
        "run BIGINT NOT NULL REFERENCES runs(id) ON DELETE CASCADE, "
        "line BIGINT NOT NULL, "
        "configuration BIGINT NOT NULL REFERENCES configurations(id), "
        "part BIGINT NOT NULL, "
        "power_a DOUBLE PRECISION, "
        "power_b DOUBLE PRECISION, "
        "reason_a TEXT, "
        "reason_b TEXT, "
        "reason TEXT, "
        "PRIMARY KEY(run, line))" +
            tableEnd,
        // Rows of this size are not kept in a tree of keys.
        "CREATE TABLE files("
        "run BIGINT NOT NULL REFERENCES runs(id) ON DELETE CASCADE, "
        "name TEXT NOT NULL, "
        "size BIGINT NOT NULL, "
        "sha256 TEXT NOT NULL, "
        "content BYTEA NOT NULL, "
        "PRIMARY KEY(run, name))",
        // A run that is a baseline is not removed with its baseline forgotten.
        "CREATE TABLE baselines("
        "name TEXT NOT NULL PRIMARY KEY, "
        "run BIGINT NOT NULL REFERENCES runs(id))" +
            tableEnd,
    };
}

/// What other tools read: a row for each chain of a line.
std::string ViewOfMeasurements() {
    const auto ofChain = [](const std::string& chain, const std::string& power,
                            const std::string& reason, const std::string& condition) {
        return "SELECT run, line, CAST('" + chain + "' AS TEXT) AS chain, configuration, part, " +
               power + " AS power, " + reason + " AS reason FROM result_lines WHERE " + condition;
    };
    return "CREATE VIEW measurements AS " +
           ofChain("A", "power_a", "reason_a", "power_a IS NOT NULL OR reason_a IS NOT NULL") +
           " UNION ALL " +
           ofChain("B", "power_b", "reason_b", "power_b IS NOT NULL OR reason_b IS NOT NULL") +
           " UNION ALL " +
           ofChain("?", "CAST(NULL AS DOUBLE PRECISION)", "reason", "reason IS NOT NULL");
}

Migration FirstTables(const std::string& tableEnd) {
    Migration statements = TableOfRuns(tableEnd);
    for (const Migration& others : {TablesOfSubjects(tableEnd), TablesOfContent(tableEnd)})
        statements.insert(statements.end(), others.begin(), others.end());
    statements.push_back(ViewOfMeasurements());
    return statements;
}

[[noreturn]] void Fail(const Database& database, const std::string& problem) {
    throw StoreError(database.Shown(), problem);
}

std::int64_t ReadVersion(Database& database) {
    std::vector<std::int64_t> versions;
    database.Query("SELECT version FROM " + versionTable,
                   [&](const ResultRow& row) { versions.push_back(row.Integer(0)); });
    if (versions.size() != 1 || versions[0] < 1)
        Fail(database, "is damaged: its table " + versionTable + " does not tell one version");
    return versions[0];
}

std::int64_t CheckedVersion(Database& database, std::int64_t known) {
    const std::vector<std::string> tables = database.Tables();
    if (tables.empty())
        return 0;
    if (std::ranges::find(tables, versionTable) == tables.end())
        Fail(database, "holds the tables of something else, for example " + tables.front() +
                           ": give the history a database of its own");
    const std::int64_t version = ReadVersion(database);
    if (version > known)
        Fail(database, "was made by a newer version of this program (version " +
                           std::to_string(version) + " of its tables, this program knows " +
                           std::to_string(known) + "): use that one");
    return version;
}

void NoteVersion(Database& database, std::int64_t version) {
    const std::vector<Value> values{version};
    if (version == 1) {
        database.Run("CREATE TABLE " + versionTable + "(version BIGINT NOT NULL)");
        database.Run("INSERT INTO " + versionTable + " VALUES ($1)", values);
    } else {
        database.Run("UPDATE " + versionTable + " SET version = $1", values);
    }
}

/// Whether there was a step to be done. Somebody else may have done it since the last look.
bool MigrateOnce(Database& database, std::span<const Migration> migrations) {
    const auto known = static_cast<std::int64_t>(migrations.size());
    if (CheckedVersion(database, known) == known)
        return false;
    Transaction transaction(database, OpenFor::Writing);
    const std::int64_t version = CheckedVersion(database, known);
    if (version < known) {
        for (const std::string& statement : migrations[static_cast<std::size_t>(version)])
            database.Run(statement);
        NoteVersion(database, version + 1);
    }
    transaction.Commit();
    return true;
}

} // namespace

std::int64_t NewestVersion() {
    return newest;
}

std::int64_t VersionOf(Database& database) {
    return CheckedVersion(database, newest);
}

void Migrate(Database& database) {
    MigrateWith(database, AllMigrations(database));
}

void MigrateWith(Database& database, std::span<const Migration> migrations) {
    while (MigrateOnce(database, migrations)) {
    }
}

std::vector<Migration> AllMigrations(const Database& database) {
    return {FirstTables(std::string(database.TableEnd()))};
}

} // namespace Bench
