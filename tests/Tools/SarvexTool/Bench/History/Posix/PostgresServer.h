#pragma once

#include "tests/EndToEnd/Support/Process.h"
#include "tests/EndToEnd/Support/ReservedPort.h"
#include "tests/Support/Files.h"

#include <memory>
#include <string>

namespace Bench {

/// A PostgreSQL server of its own on 127.0.0.1, as an account without rights when the test has all.
/// It ends with the object.
class PostgresServer {
public:
    /// The one that all tests of this program share; it is started by the first.
    static PostgresServer& Shared();
    /// Ends the shared one, if it was started.
    static void EndShared();

    static constexpr const char* user = "lab";
    static constexpr const char* password = "s3cret:@/?";

    /// Waits until it takes connections. Throws std::runtime_error.
    PostgresServer();
    ~PostgresServer();

    std::uint16_t Port() const { return m_port.Number(); }
    /// The URL of a database for a user, without a password when that is empty.
    std::string Url(const std::string& database, const std::string& name = user,
                    const std::string& secret = "s3cret%3A%40%2F%3F") const;
    /// Makes an empty database, and returns its URL.
    std::string MakeDatabase(const std::string& options = "");

    /// As if the machine had failed.
    void Kill() { m_server->Kill(); }

private:
    std::unique_ptr<EndToEnd::Process> Start(const std::string& program,
                                             std::vector<std::string> arguments) const;

    TestSupport::TemporaryDirectory m_directory;
    EndToEnd::ReservedPort m_port;
    std::unique_ptr<EndToEnd::Process> m_server;
    int m_databases = 0;
};

} // namespace Bench
