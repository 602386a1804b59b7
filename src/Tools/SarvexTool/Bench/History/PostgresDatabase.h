#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"

#include <memory>
#include <optional>
#include <string>

struct pg_conn;
struct pg_result;

namespace Bench {

/// A store on a PostgreSQL server. Only programs for Linux have it.
class PostgresDatabase : public Database {
public:
    /// Connects. The name is of a server.
    explicit PostgresDatabase(const StoreName& name);
    ~PostgresDatabase() override;

    using Database::Query;
    using Database::Run;
    void Run(std::string_view statement, Values parameters) override;
    void Query(std::string_view statement, Values parameters, const TakeRow& take) override;
    void BeginRead() override;
    void BeginWrite() override;
    void Commit() override;
    void Rollback() noexcept override;
    std::vector<std::string> Tables() override;
    std::string_view TableEnd() const override { return ""; }
    std::vector<std::string> IntegrityProblems() override { return {}; }

    /// What is wrong with a server of that version, as the client library numbers it.
    static std::optional<std::string> ProblemOfVersion(int version);

private:
    /// Has the sockets ready while the connection lives.
    class Sockets {
    public:
        Sockets();
        ~Sockets();
        Sockets(const Sockets&) = delete;
        Sockets& operator=(const Sockets&) = delete;
    };
    struct CloseConnection {
        void operator()(pg_conn* pConnection) const;
    };

    void Connect();
    void CheckServer() const;
    void TakeResults(const TakeRow& take);
    /// What an error means, in words.
    std::string MeaningOf(const pg_result* pResult) const;
    /// What the library says of the connection, in one line; it never tells the password.
    std::string LibrarysWords() const;

    StoreName m_name;
    Sockets m_sockets;
    std::unique_ptr<pg_conn, CloseConnection> m_connection;
};

} // namespace Bench
