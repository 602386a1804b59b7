#include "Tools/SarvexTool/Bench/History/PostgresDatabase.h"

#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"
#include "tests/Tools/SarvexTool/Bench/History/Posix/PostgresServer.h"
#include "tests/Tools/SarvexTool/Bench/History/StoreFixture.h"

#include <cstdlib>

namespace Bench {
namespace {

class ServerEnvironment : public testing::Environment {
public:
    void TearDown() override { PostgresServer::EndShared(); }
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ServerEnvironment);

/// One database on the shared server.
class ServerStores : public Stores {
public:
    std::unique_ptr<Database> OpenOne(OpenFor purpose) const override {
        return OpenDatabase(StoreName::Parse(m_url), purpose);
    }

private:
    std::string m_url = PostgresServer::Shared().MakeDatabase();
};

std::unique_ptr<Stores> MakeServerStores() {
    return std::make_unique<ServerStores>();
}

INSTANTIATE_TEST_SUITE_P(Server, DatabaseTest, testing::Values(&MakeServerStores));
INSTANTIATE_TEST_SUITE_P(Server, MigrationsTest, testing::Values(&MakeServerStores));
INSTANTIATE_TEST_SUITE_P(Server, StoreTest, testing::Values(&MakeServerStores));

class PostgresDatabaseTest : public testing::Test {
protected:
    static std::unique_ptr<Database> Open(const std::string& url) {
        return OpenDatabase(StoreName::Parse(url), OpenFor::Writing);
    }

    /// What connecting fails with.
    static std::string Refusal(const std::string& url) {
        return FailureOf([&] { Open(url); });
    }

    /// How the library begins what it says of this server.
    std::string Words() const {
        return "cannot be connected to: connection to server at \"127.0.0.1\", port " +
               std::to_string(m_server.Port()) + " failed: ";
    }

    PostgresServer& m_server = PostgresServer::Shared();
};

TEST_F(PostgresDatabaseTest, AWrongPasswordIsToldAndNotShown) {
    EXPECT_EQ(Refusal(m_server.Url("postgres", "lab", "hunter2")),
              m_server.Url("postgres", "lab", "") + ": " + Words() +
                  "FATAL:  password authentication failed for user \"lab\"");
}

TEST_F(PostgresDatabaseTest, APasswordThatIsMissingIsAskedFor) {
    EXPECT_EQ(Refusal(m_server.Url("postgres", "lab", "")),
              m_server.Url("postgres", "lab", "") +
                  ": wants a password: put it into the environment as PGPASSWORD, or into a file "
                  "that PGPASSFILE names");
}

TEST_F(PostgresDatabaseTest, APasswordMayBeInTheEnvironmentOrInAFile) {
    const std::string url = m_server.Url("postgres", "lab", "");
    ::setenv("PGPASSWORD", PostgresServer::password, 1);
    EXPECT_EQ(Refusal(url), "nothing");
    ::unsetenv("PGPASSWORD");
    const TestSupport::TemporaryDirectory directory;
    const std::string file = directory.Create("passwords", "*:*:*:lab:s3cret\\:@/?\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    EXPECT_EQ(Refusal(url + "?passfile=" + file), "nothing");
}

TEST_F(PostgresDatabaseTest, AServerOrDatabaseThatIsNotThereIsTold) {
    const EndToEnd::ReservedPort port;
    const std::string place = "127.0.0.1:" + std::to_string(port.Number());
    EXPECT_EQ(Refusal("postgresql://lab@" + place),
              "postgresql://lab@" + place +
                  ": cannot be connected to: connection to server at \"127.0.0.1\", port " +
                  std::to_string(port.Number()) +
                  " failed: Connection refused; Is the server running on that host and "
                  "accepting TCP/IP connections?");
    EXPECT_EQ(Refusal(m_server.Url("nowhere")), m_server.Url("nowhere", "lab", "") + ": " +
                                                    Words() +
                                                    "FATAL:  database \"nowhere\" does not exist");
}

TEST_F(PostgresDatabaseTest, ADatabaseInAnotherEncodingIsRefused) {
    const std::string url = m_server.MakeDatabase("ENCODING 'SQL_ASCII' TEMPLATE template0");
    EXPECT_TRUE(Refusal(url).ends_with(": keeps its texts in another encoding than UTF-8: make the "
                                       "database with ENCODING 'UTF8'"))
        << Refusal(url);
}

TEST_F(PostgresDatabaseTest, AnOldServerIsRefused) {
    EXPECT_EQ(PostgresDatabase::ProblemOfVersion(120000), std::nullopt);
    EXPECT_EQ(PostgresDatabase::ProblemOfVersion(180001), std::nullopt);
    EXPECT_EQ(PostgresDatabase::ProblemOfVersion(110022),
              "its server is PostgreSQL 11; it must be 12 or newer");
}

TEST_F(PostgresDatabaseTest, AUserWithoutTheRightIsTold) {
    const std::string url = m_server.MakeDatabase();
    const std::unique_ptr<Database> owner = Open(url);
    owner->Run("CREATE TABLE things(id BIGINT)");
    owner->Run("CREATE ROLE reader LOGIN PASSWORD 'r'");
    owner->Run("GRANT SELECT ON things TO reader");
    const std::string database = url.substr(url.rfind('/') + 1);
    const std::unique_ptr<Database> reader = Open(m_server.Url(database, "reader", "r"));
    EXPECT_EQ(RowsOf(*reader, "SELECT COUNT(*) FROM things", 1), "0\n");
    const Transaction transaction(*reader, OpenFor::Writing);
    EXPECT_EQ(FailureOf([&] { reader->Run("INSERT INTO things VALUES (1)"); }),
              reader->Shown() + ": cannot be used in this way: the user has no right to it "
                                "(permission denied for table things)");
}

TEST_F(PostgresDatabaseTest, AStoreThatAUserMayOnlyReadIsNotWritable) {
    const std::string url = m_server.MakeDatabase();
    const std::unique_ptr<Database> owner = Open(url);
    Migrate(*owner);
    owner->Run("CREATE ROLE guest LOGIN PASSWORD 'g'");
    owner->Run("GRANT SELECT ON ALL TABLES IN SCHEMA public TO guest");
    Store(Open(url)).RequireWritable();
    Store store(Open(m_server.Url(url.substr(url.rfind('/') + 1), "guest", "g")));
    EXPECT_TRUE(store.List({}).empty());
    EXPECT_THAT(
        FailureOf([&] { store.RequireWritable(); }),
        testing::HasSubstr("the user has no right to it (permission denied for table runs"));
}

TEST_F(PostgresDatabaseTest, BytesAndPowersComeBackWhateverTheDatabaseHasSet) {
    const std::string url = m_server.MakeDatabase();
    const std::string database = url.substr(url.rfind('/') + 1);
    Open(url)->Run("ALTER DATABASE " + database + " SET bytea_output = 'escape'");
    Open(url)->Run("ALTER DATABASE " + database + " SET extra_float_digits = -15");
    std::unique_ptr<Database> opened = Open(url);
    Migrate(*opened);
    Store store(std::move(opened));
    TextPool texts;
    const RunToKeep run = MakeRun("5,AB,10.123456789,NA\n", texts);
    store.Add(run, 1);
    EXPECT_EQ(store.FilesOf(run.facts.hash), run.files);
    EXPECT_EQ(store.Check().problems, std::vector<std::string>());
}

TEST_F(PostgresDatabaseTest, ASecondWriterWaitsAndIsToldAtTheEnd) {
    const std::string url = m_server.MakeDatabase();
    const std::unique_ptr<Database> first = Open(url);
    const std::unique_ptr<Database> second = Open(url);
    second->Run("SET lock_timeout = '50ms'");
    {
        const Transaction transaction(*first, OpenFor::Writing);
        EXPECT_EQ(FailureOf([&] { second->BeginWrite(); }),
                  second->Shown() +
                      ": was not free within 60 seconds: another program writes it (canceling "
                      "statement due to lock timeout)");
    }
    Transaction transaction(*second, OpenFor::Writing);
    second->Run("CREATE TABLE things(id BIGINT)");
    transaction.Commit();
    EXPECT_EQ(first->Tables(), (std::vector<std::string>{"things"}));
}

TEST_F(PostgresDatabaseTest, ATransactionWithAnErrorIsNotCommitted) {
    const std::unique_ptr<Database> database = Open(m_server.MakeDatabase());
    {
        Transaction transaction(*database, OpenFor::Writing);
        database->Run("CREATE TABLE things(id BIGINT)");
        EXPECT_NE(FailureOf([&] { database->Run("INSERT INTO nowhere VALUES (1)"); }), "nothing");
        EXPECT_EQ(FailureOf([&] { transaction.Commit(); }),
                  database->Shown() + ": a statement of the transaction has failed");
    }
    EXPECT_TRUE(database->Tables().empty());
}

TEST_F(PostgresDatabaseTest, AConnectionThatIsLostIsTold) {
    const std::string url = m_server.MakeDatabase();
    const std::unique_ptr<Database> database = Open(url);
    database->BeginWrite();
    database->Run("CREATE TABLE things(id BIGINT)");
    Open(url)->Run("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE pid <> "
                   "pg_backend_pid() AND datname = current_database()");
    EXPECT_EQ(FailureOf([&] { database->Commit(); }),
              database->Shown() +
                  ": the connection was lost at the very end: it is not known whether the last "
                  "change is kept; look, or do it again");
    EXPECT_TRUE(FailureOf([&] {
                    database->Tables();
                }).starts_with(database->Shown() + ": the connection to the server was lost ("));
    database->Rollback();
    EXPECT_TRUE(Open(url)->Tables().empty());
}

TEST_F(PostgresDatabaseTest, AServerThatFailsIsTold) {
    PostgresServer server;
    const std::unique_ptr<Database> database = Open(server.MakeDatabase());
    database->BeginWrite();
    server.Kill();
    const std::string failure = FailureOf([&] { RowsOf(*database, "SELECT pg_sleep(60)", 1); });
    EXPECT_TRUE(failure.starts_with(database->Shown() + ": ")) << failure;
    EXPECT_NE(failure.find("server"), std::string::npos) << failure;
    database->Rollback();
}

} // namespace
} // namespace Bench
