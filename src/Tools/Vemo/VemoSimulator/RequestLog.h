#pragma once

#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoSimulator {

/// What the log tells about one request.
struct LogRecord {
    /// 0 for a request that is no command.
    std::uint64_t number = 0;
    int httpStatus = 0;
    /// Empty for a request that is no command.
    std::string returnCode;
    /// So many bytes were to be sent.
    std::size_t answerBytes = 0;
    /// The texts of the rules that applied.
    std::vector<std::string> faults;
};

/// The record as one line of JSON, without the line end. Header values and the body are there
/// byte by byte, each byte as the character of that number, so that nothing is lost.
std::string FormatLogLine(const Request& request, const LogRecord& record);

} // namespace VemoSimulator
