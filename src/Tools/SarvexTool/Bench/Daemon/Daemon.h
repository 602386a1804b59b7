#pragma once

#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// What a daemon said to one command.
struct DaemonAnswer {
    bool isRefusal = false;
    /// Its error lines, or what else it said; never empty for a refusal.
    std::string words;
};

/// A daemon that takes commands, each over a connection of its own.
class IDaemon {
public:
    virtual ~IDaemon() = default;
    /// Throws BadInput, named after the daemon's address, when it cannot be asked.
    virtual DaemonAnswer Ask(const std::vector<std::string>& arguments) = 0;
};

/// The port that the client reads from Socket.cfg beside the program. Throws BadInput with the
/// whole path of the file and the reason when there is none.
std::uint16_t ReadPortBesideProgram();

/// The request of a command, as the client's power test would send it to a daemon of that host.
std::string BuildCommandRequest(const std::string& host, const std::vector<std::string>& arguments);

/// The first of the client's own arguments that leads it past a relay, wherever it is one of these
/// texts or a typed literal of them: another daemon's address, a daemon to be started, another test
/// file. Nothing where there is none.
std::optional<std::string> BypassAmong(const std::vector<std::string>& arguments);

/// A daemon over the network, asked with the very bytes that the client's test would send.
class Daemon : public IDaemon {
public:
    /// Asks nothing yet. The time is that of one exchange at most.
    Daemon(DaemonAddress address, std::chrono::milliseconds timeout);

    DaemonAnswer Ask(const std::vector<std::string>& arguments) override;

    /// How many commands were answered.
    std::size_t Exchanges() const { return m_exchanges; }

    /// Whether a command may have reached the daemon, answered or not.
    bool MayHaveTakenCommands() const { return m_mayHaveTakenCommands; }

    /// How long an exchange took in the mean, in seconds; 0 before the first.
    double MeanSeconds() const;

private:
    DaemonAddress m_address;
    std::chrono::milliseconds m_timeout;
    std::chrono::duration<double> m_total{};
    std::size_t m_exchanges = 0;
    bool m_mayHaveTakenCommands = false;
};

} // namespace Bench
