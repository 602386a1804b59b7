#pragma once

#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace VemoSimulator {

/// Where a server listens and how much it takes in.
struct ServerSettings {
    /// Numeric.
    std::string address;
    /// 0 for any free port of four digits: clients cannot be told a longer one.
    std::uint16_t port = 0;
    /// Bytes.
    std::uint64_t bodyLimit = 0;
};

/// Takes requests over TCP connections, one each, and sends what the handler answers. A connection
/// stays open until its client closes it; thousands may be open at once. When the system has no
/// descriptor for a new one, the connection that was answered first is closed for it.
class Server {
public:
    /// Listens from now on. The handler and the log, which gets a line for each problem, outlive
    /// the server. Throws std::runtime_error when it cannot listen there.
    Server(const ServerSettings& settings, IRequestHandler& handler, std::ostream& log);

    /// Closes all connections.
    ~Server();

    std::uint16_t Port() const;

    /// Blocks until a request ends the program, or the system does (interrupt, termination, console
    /// closed).
    void Run();

private:
    class Implementation;
    std::unique_ptr<Implementation> m_pImplementation;
};

} // namespace VemoSimulator
