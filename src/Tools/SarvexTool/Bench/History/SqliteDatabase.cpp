#include "Tools/SarvexTool/Bench/History/SqliteDatabase.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace Bench {

namespace {

constexpr std::size_t mostStatements = 64;

class SqliteRow : public ResultRow {
public:
    explicit SqliteRow(sqlite3_stmt* pStatement) : m_pStatement(pStatement) {}

    bool IsNull(std::size_t column) const override {
        return sqlite3_column_type(m_pStatement, static_cast<int>(column)) == SQLITE_NULL;
    }
    std::int64_t Integer(std::size_t column) const override {
        return sqlite3_column_int64(m_pStatement, static_cast<int>(column));
    }
    double Real(std::size_t column) const override {
        return sqlite3_column_double(m_pStatement, static_cast<int>(column));
    }
    std::string_view Text(std::size_t column) const override {
        const void* const text = sqlite3_column_text(m_pStatement, static_cast<int>(column));
        return Bytes(text, column);
    }
    std::string_view Bytes(std::size_t column) const override {
        const void* const bytes = sqlite3_column_blob(m_pStatement, static_cast<int>(column));
        return Bytes(bytes, column);
    }

private:
    std::string_view Bytes(const void* bytes, std::size_t column) const {
        const int size = sqlite3_column_bytes(m_pStatement, static_cast<int>(column));
        return {static_cast<const char*>(bytes),
                bytes == nullptr ? 0 : static_cast<std::size_t>(size)};
    }

    sqlite3_stmt* m_pStatement;
};

/// Makes a statement ready for its next use, whatever comes.
class Reset {
public:
    explicit Reset(sqlite3_stmt* pStatement) : m_pStatement(pStatement) {}
    ~Reset() {
        sqlite3_reset(m_pStatement);
        sqlite3_clear_bindings(m_pStatement);
    }
    Reset(const Reset&) = delete;
    Reset& operator=(const Reset&) = delete;

private:
    sqlite3_stmt* m_pStatement;
};

/// Gives one parameter its value. Texts and bytes must live until the statement is reset.
class Binder {
public:
    Binder(sqlite3_stmt* pStatement, int place) : m_pStatement(pStatement), m_place(place) {}

    int operator()(std::monostate) const { return sqlite3_bind_null(m_pStatement, m_place); }
    int operator()(std::int64_t number) const {
        return sqlite3_bind_int64(m_pStatement, m_place, number);
    }
    int operator()(double number) const {
        return sqlite3_bind_double(m_pStatement, m_place, number);
    }
    int operator()(const std::string& text) const {
        return sqlite3_bind_text64(m_pStatement, m_place, text.data(), text.size(), SQLITE_STATIC,
                                   SQLITE_UTF8);
    }
    int operator()(const Blob& blob) const {
        return sqlite3_bind_blob64(m_pStatement, m_place, blob.bytes.data(), blob.bytes.size(),
                                   SQLITE_STATIC);
    }

private:
    sqlite3_stmt* m_pStatement;
    int m_place;
};

/// The statement with ?3 for $3. Of $3 the database knows the name alone, and looks at all names
/// for each one: with thousands of parameters that takes longer than to insert their values.
std::string WithNumbers(std::string statement) {
    std::replace(statement.begin(), statement.end(), '$', '?');
    return statement;
}

/// A kind of error and what it means.
struct Meaning {
    int code;
    const char* words;
};

constexpr std::array meanings{
    Meaning{SQLITE_NOTADB, "is no store: the file is not an SQLite database"},
    Meaning{SQLITE_CORRUPT, "is damaged: restore it from a copy"},
    Meaning{SQLITE_FULL, "cannot be written: the disk is full"},
    Meaning{SQLITE_TOOBIG, "takes no text or file of this size"},
    Meaning{SQLITE_READONLY, "cannot be written: the file or its folder is read-only"},
    Meaning{SQLITE_PERM, "cannot be written: its file system refuses it"},
    Meaning{SQLITE_PROTOCOL, "cannot be locked: its file system has no locks that work"},
    Meaning{SQLITE_NOLFS, "has grown larger than its file system allows"},
    Meaning{SQLITE_NOMEM, "cannot be used: there is not enough memory"},
};

bool IsOfLocks(int extendedCode) {
    constexpr std::array codes{SQLITE_IOERR_LOCK, SQLITE_IOERR_UNLOCK, SQLITE_IOERR_RDLOCK,
                               SQLITE_IOERR_CHECKRESERVEDLOCK};
    return std::ranges::find(codes, extendedCode) != codes.end();
}

/// In brackets; empty where the system has none.
std::string SystemReason(sqlite3* pDatabase) {
    const int error = sqlite3_system_errno(pDatabase);
    return error == 0 ? "" : " (" + std::system_category().message(error) + ")";
}

std::string InWords(sqlite3* pDatabase, std::chrono::milliseconds patience) {
    const int extended = sqlite3_extended_errcode(pDatabase);
    const int code = extended & 0xFF;
    for (const Meaning& meaning : meanings) {
        if (meaning.code == code)
            return meaning.words;
    }
    if (code == SQLITE_BUSY)
        return "was not free within " + std::to_string(patience.count() / 1000) +
               " seconds: another program writes it, or it is on a share without locks";
    if (IsOfLocks(extended))
        return "cannot be locked: its file system has no locks that work" + SystemReason(pDatabase);
    if (code == SQLITE_IOERR)
        return "cannot be read or written" + SystemReason(pDatabase);
    if (code == SQLITE_CANTOPEN)
        return "cannot be opened, or its journal not beside it" + SystemReason(pDatabase);
    return std::string("SQLite says: ") + sqlite3_errmsg(pDatabase);
}

} // namespace

void SqliteDatabase::CloseDatabase::operator()(sqlite3* pDatabase) const {
    sqlite3_close(pDatabase);
}

void SqliteDatabase::EndStatement::operator()(sqlite3_stmt* pStatement) const {
    sqlite3_finalize(pStatement);
}

SqliteDatabase::SqliteDatabase(const StoreName& name, OpenFor purpose,
                               std::chrono::milliseconds patience)
    : Database(name.Shown()), m_purpose(purpose), m_patience(patience) {
    const std::filesystem::path path = PathOf(name.File());
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        Fail("is a folder, not a file");
    if (purpose == OpenFor::Reading && !std::filesystem::exists(path, error)) {
        // Where it cannot be looked for, it may be there.
        if (error)
            Fail("cannot be read (" + error.message() + ")");
        throw StoreMissing(Shown(), "there is no such file");
    }
    if (purpose == OpenFor::Writing && name.IsUsersOwn()) {
        std::filesystem::create_directories(path.parent_path(), error);
        if (error)
            Fail("its folder cannot be made (" + error.message() + ")");
    }
    Open(path, purpose);
}

SqliteDatabase::~SqliteDatabase() = default;

void SqliteDatabase::Open(const std::filesystem::path& path, OpenFor purpose) {
    const int flags = purpose == OpenFor::Writing ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                                  : SQLITE_OPEN_READWRITE;
    sqlite3* pDatabase = nullptr;
    // Of some names without a folder the database makes something else than a file.
    const std::string file = NameOf(std::filesystem::absolute(path));
    const int result = sqlite3_open_v2(file.c_str(), &pDatabase, flags, nullptr);
    m_database.reset(pDatabase);
    if (pDatabase == nullptr)
        throw std::bad_alloc();
    if (result != SQLITE_OK) {
        // The database has tried to read it, too, and tells what became of that.
        std::error_code error;
        if (purpose == OpenFor::Writing && !std::filesystem::exists(path, error) &&
            std::filesystem::is_directory(std::filesystem::absolute(path).parent_path(), error))
            Fail("cannot be made: its folder cannot be written");
        Fail("cannot be opened" + SystemReason(pDatabase));
    }
    sqlite3_extended_result_codes(pDatabase, 1);
    sqlite3_busy_timeout(pDatabase, static_cast<int>(m_patience.count()));
    // What a file may say of itself does not weaken what holds for every store.
    sqlite3_db_config(pDatabase, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    SqliteDatabase::Run("PRAGMA synchronous=FULL", {});
    // Reads the file for the first time.
    SqliteDatabase::Tables();
    if (purpose == OpenFor::Writing && sqlite3_db_readonly(pDatabase, "main") != 0)
        Fail("cannot be written: the file or its folder is read-only");
}

void SqliteDatabase::Run(std::string_view statement, Values parameters) {
    Query(statement, parameters, [](const ResultRow&) {});
}

void SqliteDatabase::Query(std::string_view statement, Values parameters, const TakeRow& take) {
    CheckTexts(parameters);
    sqlite3_stmt* const pStatement = Prepared(statement);
    const Reset reset(pStatement);
    Bind(pStatement, parameters);
    const SqliteRow row(pStatement);
    int result = sqlite3_step(pStatement);
    for (; result == SQLITE_ROW; result = sqlite3_step(pStatement))
        take(row);
    if (result != SQLITE_DONE)
        FailWithError();
}

sqlite3_stmt* SqliteDatabase::Prepared(std::string_view statement) {
    std::string text(statement);
    if (const auto found = m_statements.find(text); found != m_statements.end())
        return found->second.get();
    if (m_statements.size() >= mostStatements)
        m_statements.clear();
    const std::string numbered = WithNumbers(text);
    sqlite3_stmt* pStatement = nullptr;
    const int result =
        sqlite3_prepare_v3(m_database.get(), numbered.data(), static_cast<int>(numbered.size()),
                           SQLITE_PREPARE_PERSISTENT, &pStatement, nullptr);
    if (result != SQLITE_OK)
        FailWithError();
    m_statements.emplace(std::move(text), Statement(pStatement));
    return pStatement;
}

void SqliteDatabase::Bind(sqlite3_stmt* pStatement, Values parameters) const {
    const auto count = static_cast<std::size_t>(sqlite3_bind_parameter_count(pStatement));
    if (count > parameters.size())
        Fail("a parameter of a statement has no value");
    for (std::size_t place = 0; place < count; ++place) {
        const Binder binder(pStatement, static_cast<int>(place + 1));
        if (std::visit(binder, parameters[place]) != SQLITE_OK)
            FailWithError();
    }
}

void SqliteDatabase::Rollback() noexcept {
    // After some errors the database has done so already.
    if (sqlite3_get_autocommit(m_database.get()) == 0)
        sqlite3_exec(m_database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

std::vector<std::string> SqliteDatabase::Tables() {
    std::vector<std::string> tables;
    Query("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' "
          "ESCAPE '\\' ORDER BY name",
          [&](const ResultRow& row) { tables.emplace_back(row.Text(0)); });
    return tables;
}

std::vector<std::string> SqliteDatabase::IntegrityProblems() {
    std::vector<std::string> problems;
    Query("PRAGMA integrity_check", [&](const ResultRow& row) {
        if (row.Text(0) != "ok")
            problems.emplace_back(row.Text(0));
    });
    Query("PRAGMA foreign_key_check", [&](const ResultRow& row) {
        problems.push_back("a row of " + std::string(row.Text(0)) + " belongs to none of " +
                           std::string(row.Text(2)));
    });
    return problems;
}

void SqliteDatabase::FailWithError() const {
    const int code = sqlite3_extended_errcode(m_database.get()) & 0xFF;
    if (code == SQLITE_READONLY && m_purpose == OpenFor::Reading)
        Fail("cannot be read: it is in WAL mode or was left in the middle of a change, so that "
             "reading it writes beside it, and its file or folder is read-only; read it as a user "
             "who may write there");
    Fail(InWords(m_database.get(), m_patience));
}

} // namespace Bench
