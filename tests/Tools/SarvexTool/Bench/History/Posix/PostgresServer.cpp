#include "tests/Tools/SarvexTool/Bench/History/Posix/PostgresServer.h"

#include "Tools/SarvexTool/Bench/History/PostgresDatabase.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned nobody = 65534;

std::unique_ptr<PostgresServer>& SharedServer() {
    static std::unique_ptr<PostgresServer> server;
    return server;
}

/// Where Debian has the programs of its newest version.
std::string FolderOfPrograms() {
    std::string newest;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/lib/postgresql"))
        newest = std::max(newest, entry.path().string());
    return newest + "/bin/";
}

} // namespace

PostgresServer& PostgresServer::Shared() {
    if (!SharedServer())
        SharedServer() = std::make_unique<PostgresServer>();
    return *SharedServer();
}

void PostgresServer::EndShared() {
    SharedServer().reset();
}

PostgresServer::PostgresServer() {
    const std::string data = m_directory.Path("data");
    m_directory.Create("password", password);
    for (const std::string& path : {m_directory.Path(), m_directory.Path("password")}) {
        if (::geteuid() == 0 && ::chown(path.c_str(), nobody, nobody) != 0)
            throw std::runtime_error("the server's folder cannot be given away");
    }
    const auto made =
        Start("initdb", {"-D", data, "-U", user, "-A", "scram-sha-256", "--pwfile",
                         m_directory.Path("password"), "-E", "UTF8", "--no-locale", "--no-sync"})
            ->Wait();
    if (made.exitCode != 0)
        throw std::runtime_error("initdb: " + made.err);
    m_server = Start("postgres",
                     {"-D", data, "-p", std::to_string(Port()), "-c", "listen_addresses=127.0.0.1",
                      "-c", "unix_socket_directories=", "-c", "fsync=off"});
    while (m_server->ErrSoFar().find("database system is ready to accept connections") ==
           std::string::npos) {
        if (m_server->HasEnded())
            throw std::runtime_error("postgres: " + m_server->ErrSoFar());
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

PostgresServer::~PostgresServer() {
    // With this signal it ends those who are connected too.
    if (m_server)
        m_server->Interrupt({"SIGINT", 2});
    if (m_server)
        m_server->Wait();
}

std::unique_ptr<EndToEnd::Process> PostgresServer::Start(const std::string& program,
                                                         std::vector<std::string> arguments) const {
    std::string started = FolderOfPrograms() + program;
    // The server refuses to run with all rights.
    if (::geteuid() == 0) {
        const std::string account = std::to_string(nobody);
        arguments.insert(arguments.begin(),
                         {"--reuid", account, "--regid", account, "--clear-groups", started});
        started = "/usr/bin/setpriv";
    }
    return std::make_unique<EndToEnd::Process>(started, arguments, m_directory.Path());
}

std::string PostgresServer::Url(const std::string& database, const std::string& name,
                                const std::string& secret) const {
    return "postgresql://" + name + (secret.empty() ? "" : ":" + secret) +
           "@127.0.0.1:" + std::to_string(Port()) + "/" + database;
}

std::string PostgresServer::MakeDatabase(const std::string& options) {
    const std::string name = "runs" + std::to_string(++m_databases);
    PostgresDatabase(StoreName::Parse(Url("postgres")))
        .Database::Run("CREATE DATABASE " + name + " " + options);
    return Url(name);
}

} // namespace Bench
