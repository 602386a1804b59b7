#pragma once

#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ReservedPort.h"

#include <memory>
#include <string>
#include <vector>

namespace EndToEnd {

/// The real simulated daemon under a name that the client does not take for a running daemon: tests
/// that look for one may run at the same time.
std::string SimulatorPath();

/// The real simulated daemon on a free port, running from construction to destruction.
class Simulator {
public:
    /// Waits until it listens. Throws std::runtime_error when it does not.
    explicit Simulator(const std::vector<std::string>& options = {});
    ~Simulator() { m_process->End(); }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    const std::string& Port() const { return m_port; }

    /// Ends it at once, without an answer to what is under way.
    void Kill();
    /// Starts it again after Kill: on the same port, with the same options and the settings of a
    /// new one.
    void StartAgain() { Start(); }

private:
    void Start();

    std::vector<std::string> m_options;
    TestSupport::TemporaryDirectory m_directory;
    ReservedPort m_reserved;
    std::unique_ptr<Process> m_process;
    std::string m_port;
};

} // namespace EndToEnd
