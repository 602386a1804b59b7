#include "Tools/SarvexTool/Bench/History/PostgresDatabase.h"

#include "Modules/xFramework/OSAL/Socket.h"

#include <libpq-fe.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

namespace Bench {

namespace {

// The numbers of the types in the server's catalogue, which never change.
constexpr Oid bytesType = 17;
constexpr Oid integerType = 20;
constexpr Oid textType = 25;
constexpr Oid realType = 701;

constexpr int oldestVersion = 120000;

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

template <typename Number>
std::string TextOf(Number number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

/// The parameters of one call as the library takes them.
class Parameters {
public:
    explicit Parameters(Database::Values values) {
        // Texts do not move any more once pointers to them are taken.
        m_numbers.reserve(values.size());
        for (const Value& value : values)
            std::visit([this](const auto& held) { Add(held); }, value);
    }

    int Count() const { return static_cast<int>(m_types.size()); }
    const Oid* Types() const { return m_types.data(); }
    const char* const* Texts() const { return m_texts.data(); }
    const int* Sizes() const { return m_sizes.data(); }
    const int* Formats() const { return m_formats.data(); }

private:
    static constexpr int asText = 0;
    static constexpr int asBytes = 1;

    void Add(std::monostate) { Add(0, nullptr, 0, asText); }
    void Add(std::int64_t number) { AddNumber(integerType, TextOf(number)); }
    void Add(double number) { AddNumber(realType, TextOf(number)); }
    void Add(const std::string& text) { Add(textType, text.c_str(), text.size(), asText); }
    void Add(const Blob& blob) { Add(bytesType, blob.bytes.c_str(), blob.bytes.size(), asBytes); }
    void AddNumber(Oid type, std::string text) {
        const std::string& kept = m_numbers.emplace_back(std::move(text));
        Add(type, kept.c_str(), kept.size(), asText);
    }
    void Add(Oid type, const char* text, std::size_t size, int format) {
        m_types.push_back(type);
        m_texts.push_back(text);
        m_sizes.push_back(static_cast<int>(size));
        m_formats.push_back(format);
    }

    std::vector<std::string> m_numbers;
    std::vector<Oid> m_types;
    std::vector<const char*> m_texts;
    std::vector<int> m_sizes;
    std::vector<int> m_formats;
};

/// The first row of a result, whose cells are texts.
class PostgresRow : public ResultRow {
public:
    explicit PostgresRow(const PGresult* pResult)
        : m_pResult(pResult), m_bytes(static_cast<std::size_t>(PQnfields(pResult))) {}

    bool IsNull(std::size_t column) const override {
        return PQgetisnull(m_pResult, 0, static_cast<int>(column)) != 0;
    }
    std::int64_t Integer(std::size_t column) const override {
        return NumberIn<std::int64_t>(Text(column));
    }
    double Real(std::size_t column) const override { return NumberIn<double>(Text(column)); }
    std::string_view Text(std::size_t column) const override {
        const int number = static_cast<int>(column);
        return {PQgetvalue(m_pResult, 0, number),
                static_cast<std::size_t>(PQgetlength(m_pResult, 0, number))};
    }
    std::string_view Bytes(std::size_t column) const override {
        if (PQftype(m_pResult, static_cast<int>(column)) != bytesType)
            return Text(column);
        std::string& bytes = m_bytes.at(column);
        bytes = DecodedBytes(Text(column));
        return bytes;
    }

private:
    template <typename Number>
    static Number NumberIn(std::string_view text) {
        Number number{};
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    }

    /// Of \x and two hexadecimal digits a byte.
    static std::string DecodedBytes(std::string_view text) {
        std::string bytes;
        bytes.reserve(text.size() / 2);
        for (std::size_t place = 2; place + 1 < text.size(); place += 2) {
            unsigned byte = 0;
            std::from_chars(text.data() + place, text.data() + place + 2, byte, 16);
            bytes += static_cast<char>(byte);
        }
        return bytes;
    }

    const PGresult* m_pResult;
    mutable std::vector<std::string> m_bytes;
};

/// Ends what a query has begun, whatever comes: the next one cannot begin before.
class RestOfResults {
public:
    explicit RestOfResults(PGconn* pConnection) : m_pConnection(pConnection) {}
    ~RestOfResults() {
        while (PGresult* const pResult = PQgetResult(m_pConnection))
            PQclear(pResult);
    }
    RestOfResults(const RestOfResults&) = delete;
    RestOfResults& operator=(const RestOfResults&) = delete;

private:
    PGconn* m_pConnection;
};

/// The lines of a text beside each other, without the blanks and tabs that they begin with.
std::string InOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view part = text.substr(0, end);
        part.remove_prefix(std::min(part.find_first_not_of(" \t"), part.size()));
        if (!part.empty())
            line += (line.empty() ? "" : "; ") + std::string(part);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return line;
}

/// A code of the SQL standard and what it means here.
struct Meaning {
    std::string_view code;
    std::string_view words;
};

constexpr std::array meanings{
    Meaning{"25006", "cannot be written: the server or the user's transactions are read-only"},
    Meaning{"42501", "cannot be used in this way: the user has no right to it"},
    Meaning{"53100", "cannot be written: the server's disk is full"},
    Meaning{"53200", "cannot be used: the server has not enough memory"},
    Meaning{"55P03", "was not free within 60 seconds: another program writes it"},
    Meaning{"57P01", "the server was stopped"},
    Meaning{"57P02", "the server has failed"},
    Meaning{"57P03", "the server is not ready yet, or is being stopped"},
};

} // namespace

PostgresDatabase::Sockets::Sockets() {
    OSAL::StartSockets();
}

PostgresDatabase::Sockets::~Sockets() {
    OSAL::CleanupSockets();
}

void PostgresDatabase::CloseConnection::operator()(PGconn* pConnection) const {
    PQfinish(pConnection);
}

PostgresDatabase::PostgresDatabase(const StoreName& name) : Database(name.Shown()), m_name(name) {
    Connect();
    CheckServer();
    // Who holds a lock longer than a minute has been forgotten. Bytes and numbers come as they are
    // read here, whatever the server, the database or the user has set.
    PostgresDatabase::Run("SELECT set_config('lock_timeout', '60s', false), "
                          "set_config('bytea_output', 'hex', false), "
                          "set_config('extra_float_digits', '3', false)",
                          {});
}

PostgresDatabase::~PostgresDatabase() = default;

void PostgresDatabase::Connect() {
    // A server that does not answer any more is noticed within a minute.
    std::map<std::string, std::string> settings{{"client_encoding", "UTF8"},
                                                {"connect_timeout", "10"},
                                                {"fallback_application_name", "SarvexToolBench"},
                                                {"keepalives_count", "3"},
                                                {"keepalives_idle", "30"},
                                                {"keepalives_interval", "10"}};
    for (const auto& [key, value] : m_name.Connection())
        settings[key] = value;
    std::vector<const char*> keys;
    std::vector<const char*> values;
    for (const auto& [key, value] : settings) {
        keys.push_back(key.c_str());
        values.push_back(value.c_str());
    }
    keys.push_back(nullptr);
    values.push_back(nullptr);
    m_connection.reset(PQconnectdbParams(keys.data(), values.data(), 0));
    if (!m_connection)
        throw std::bad_alloc();
    // What the server only remarks is nothing to show.
    PQsetNoticeProcessor(
        m_connection.get(), [](void*, const char*) {}, nullptr);
    if (PQstatus(m_connection.get()) == CONNECTION_OK)
        return;
    if (PQconnectionNeedsPassword(m_connection.get()) != 0)
        Fail("wants a password: put it into the environment as PGPASSWORD, or into a file that "
             "PGPASSFILE names");
    Fail("cannot be connected to: " + LibrarysWords());
}

std::optional<std::string> PostgresDatabase::ProblemOfVersion(int version) {
    if (version >= oldestVersion)
        return std::nullopt;
    constexpr int ofMajor = 10000;
    return "its server is PostgreSQL " + std::to_string(version / ofMajor) + "; it must be " +
           std::to_string(oldestVersion / ofMajor) + " or newer";
}

void PostgresDatabase::CheckServer() const {
    if (const auto problem = ProblemOfVersion(PQserverVersion(m_connection.get())))
        Fail(*problem);
    const char* const encoding = PQparameterStatus(m_connection.get(), "server_encoding");
    if (encoding == nullptr || std::string_view(encoding) != "UTF8")
        Fail("keeps its texts in another encoding than UTF-8: make the database with ENCODING "
             "'UTF8'");
}

void PostgresDatabase::Run(std::string_view statement, Values parameters) {
    Query(statement, parameters, [](const ResultRow&) {});
}

void PostgresDatabase::Query(std::string_view statement, Values parameters, const TakeRow& take) {
    CheckTexts(parameters);
    PGconn* const pConnection = m_connection.get();
    const RestOfResults rest(pConnection);
    const Parameters sent(parameters);
    if (PQsendQueryParams(pConnection, std::string(statement).c_str(), sent.Count(), sent.Types(),
                          sent.Texts(), sent.Sizes(), sent.Formats(), 0) == 0)
        Fail(MeaningOf(nullptr));
    // The rows of a large result need not fit into memory.
    PQsetSingleRowMode(pConnection);
    TakeResults(take);
}

void PostgresDatabase::TakeResults(const TakeRow& take) {
    for (Result result(PQgetResult(m_connection.get()), &PQclear); result;
         result.reset(PQgetResult(m_connection.get()))) {
        switch (PQresultStatus(result.get())) {
        case PGRES_SINGLE_TUPLE:
            take(PostgresRow(result.get()));
            break;
        case PGRES_TUPLES_OK:
        case PGRES_COMMAND_OK:
            break;
        default:
            Fail(MeaningOf(result.get()));
        }
    }
}

void PostgresDatabase::BeginRead() {
    Run("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
}

void PostgresDatabase::BeginWrite() {
    Run("BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE");
    try {
        // Any number that everybody who writes takes. It is there before the first table is, and is
        // given back at the transaction's end.
        Run("SELECT pg_advisory_xact_lock(7263849150)");
    } catch (const StoreError&) {
        Rollback();
        throw;
    }
}

void PostgresDatabase::Commit() {
    // The server would roll back, and say nothing.
    if (PQtransactionStatus(m_connection.get()) == PQTRANS_INERROR)
        Fail("a statement of the transaction has failed");
    try {
        Run("COMMIT");
    } catch (const StoreError& error) {
        if (PQstatus(m_connection.get()) == CONNECTION_OK)
            throw;
        Fail("the connection was lost at the very end: it is not known whether the last change is "
             "kept; look, or do it again");
    }
}

void PostgresDatabase::Rollback() noexcept {
    const PGTransactionStatusType status = PQtransactionStatus(m_connection.get());
    if (status == PQTRANS_INTRANS || status == PQTRANS_INERROR)
        PQclear(PQexec(m_connection.get(), "ROLLBACK"));
}

std::vector<std::string> PostgresDatabase::Tables() {
    std::vector<std::string> tables;
    Query("SELECT tablename FROM pg_catalog.pg_tables WHERE schemaname = current_schema() "
          "ORDER BY tablename COLLATE \"C\"",
          [&](const ResultRow& row) { tables.emplace_back(row.Text(0)); });
    return tables;
}

std::string PostgresDatabase::MeaningOf(const PGresult* pResult) const {
    const auto field = [&](int name) -> std::string {
        const char* const text = pResult == nullptr ? nullptr : PQresultErrorField(pResult, name);
        return text == nullptr ? "" : InOneLine(text);
    };
    const std::string code = field(PG_DIAG_SQLSTATE);
    const std::string message = field(PG_DIAG_MESSAGE_PRIMARY);
    for (const Meaning& meaning : meanings) {
        if (meaning.code == code)
            return std::string(meaning.words) + " (" + message + ")";
    }
    if (PQstatus(m_connection.get()) != CONNECTION_OK)
        return "the connection to the server was lost (" + LibrarysWords() + ")";
    return "PostgreSQL says: " + (message.empty() ? LibrarysWords() : message);
}

std::string PostgresDatabase::LibrarysWords() const {
    return InOneLine(PQerrorMessage(m_connection.get()));
}

} // namespace Bench
