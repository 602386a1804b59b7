#pragma once

#include "Tools/Vemo/VemoSimulator/Device.h"
#include "Tools/Vemo/VemoSimulator/FaultRule.h"
#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"
#include "Tools/Vemo/VemoSimulator/RequestLog.h"

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace VemoSimulator {

/// The daemon but for its sockets: turns requests into answers.
class Simulator : public IRequestHandler {
public:
    struct Settings {
        DeviceIdentity identity;
        std::uint64_t seed = 1;
        /// Hundredths of a dB.
        std::uint32_t noise = 25;
        /// Before each answer to a command.
        std::chrono::milliseconds latency{0};
        std::vector<FaultRule> faults;
    };

    /// Writes a line to the request log for each request, and one to the problem log for each that
    /// is refused. Both streams outlive the simulator; pRequestLog may be null.
    Simulator(const Settings& settings, std::ostream* pRequestLog, std::ostream& problemLog);

    /// Commands count from 1; a request that is no command is refused and does not count.
    Delivery Handle(const Request& request) override;

    Delivery HandleInvalid(int httpStatus, const std::string& problem) override;

private:
    Delivery Answer(const Request& request, const std::vector<std::string>& words);
    Delivery Refuse(const Request& request, int httpStatus, const std::string& problem);
    void WriteLog(const Request& request, const LogRecord& record);

    Settings m_settings;
    Device m_device;
    std::ostream* m_pRequestLog;
    std::ostream& m_problemLog;
    std::uint64_t m_commandCount = 0;
};

} // namespace VemoSimulator
