#pragma once

#include "Tools/Vemo/VemoSimulator/Device.h"
#include "Tools/Vemo/VemoSimulator/FaultRule.h"
#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"
#include "Tools/Vemo/VemoSimulator/Recording.h"
#include "Tools/Vemo/VemoSimulator/RequestLog.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>
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
        /// Hundredths of a dB.
        std::uint32_t offset = 0;
        /// Before each answer to a command.
        std::chrono::milliseconds latency{0};
        std::vector<FaultRule> faults;
        /// The answers are taken from it when there is one, and the device does nothing. No fault
        /// changes the text of an answer then.
        std::shared_ptr<const Recording> pRecording;
    };

    /// Writes a line to the request log for each request, and one to the problem log for each that
    /// is refused or not in the recording. Both streams outlive the simulator; pRequestLog may be
    /// null.
    Simulator(const Settings& settings, std::ostream* pRequestLog, std::ostream& problemLog);

    /// Commands count from 1; a request that is no command is refused and does not count.
    Delivery Handle(const Request& request) override;

    Delivery HandleInvalid(int httpStatus, const std::string& problem) override;

private:
    /// A whole answer, before faults of its sending.
    struct Answered {
        std::string bytes;
        /// The text of the return-code line.
        std::string returnCode;
        bool endsProgram = false;
    };

    Delivery Answer(const Request& request, const std::vector<std::string>& words);
    Answered AskDevice(const AnswerPlan& plan, const std::vector<std::string>& words);
    Answered AskRecording(const AnswerPlan& plan, const std::string& command,
                          const std::vector<std::string>& words);
    /// The recorded answer that is due; null when the command was never answered.
    const std::string* NextRecorded(const std::string& command);
    Delivery Refuse(const Request& request, int httpStatus, const std::string& problem);
    void WriteLog(const Request& request, const LogRecord& record);

    Settings m_settings;
    Device m_device;
    std::ostream* m_pRequestLog;
    std::ostream& m_problemLog;
    std::uint64_t m_commandCount = 0;
    /// How many answers of each command of the recording were given.
    std::unordered_map<std::string, std::size_t> m_replayed;
};

} // namespace VemoSimulator
