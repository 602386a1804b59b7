#include "tests/EndToEnd/Support/Simulator.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace EndToEnd {

std::string SimulatorPath() {
    return TestProgramDirectory() + "/" + ExecutableName("SimulatedDaemon");
}

Simulator::Simulator(const std::vector<std::string>& options) : m_options(options) {
    Start();
}

void Simulator::Kill() {
    m_process->Kill();
    m_process->Wait();
}

void Simulator::Start() {
    std::vector<std::string> arguments = {"--port", std::to_string(m_reserved.Number())};
    arguments.insert(arguments.end(), m_options.begin(), m_options.end());
    m_process = std::make_unique<Process>(SimulatorPath(), arguments, m_directory.Path());
    for (int attempt = 0; attempt < 24'000; ++attempt) {
        const std::string out = m_process->OutSoFar();
        const std::size_t lineEnd = out.find_first_of("\r\n");
        if (lineEnd != std::string::npos) {
            const std::size_t colon = out.rfind(':', lineEnd);
            m_port = out.substr(colon + 1, lineEnd - colon - 1);
            return;
        }
        if (m_process->HasEnded())
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("the simulated daemon does not listen: " + m_process->ErrSoFar());
}

} // namespace EndToEnd
