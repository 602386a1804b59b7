#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace VemoSimulator {

namespace {

std::vector<std::string> WithPort(std::vector<std::string> arguments, std::uint16_t port) {
    if (std::ranges::find(arguments, "--port") == arguments.end())
        arguments.insert(arguments.end(), {"--port", std::to_string(port)});
    return arguments;
}

} // namespace

RunningSimulator::RunningSimulator(std::vector<std::string> arguments,
                                   const std::vector<File>& files)
    : m_directory(files),
      m_process(SimulatorPath(), WithPort(std::move(arguments), m_reserved.Number()),
                m_directory.Path()),
      m_port(PortIn(WaitForLine(m_process))) {}

EndToEnd::ProcessResult RunningSimulator::End() {
    Peer peer(m_port);
    peer.SendCommand("CLI -1  -exit");
    return Wait();
}

std::string WaitForLine(const EndToEnd::Process& process) {
    constexpr int longestWait = 240'000;
    for (int waited = 0; waited < longestWait; ++waited) {
        const std::string output = process.OutSoFar();
        const std::size_t end = output.find_first_of("\r\n");
        if (end != std::string::npos)
            return output.substr(0, end);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error("the program writes nothing");
}

std::uint16_t PortIn(const std::string& readyLine) {
    return static_cast<std::uint16_t>(std::stoi(readyLine.substr(readyLine.rfind(':') + 1)));
}

} // namespace VemoSimulator
