#pragma once

#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace Utilities {

/// Lists every record of the process-wide log, for as long as it lives, as
/// "level|file|function|message".
class LogRecorder : private ILogFormatter, private ILogDevice {
public:
    explicit LogRecorder(std::uint32_t mask = LogLevel::All) {
        SingletonWrapper<LogPrinter> printer;
        printer->AddDevice(channel, this);
        printer->SetFormatter(channel, this);
        printer->SetLevelMask(channel, mask);
    }
    ~LogRecorder() override { SingletonWrapper<LogPrinter>()->RemoveDevice(channel); }

    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    std::vector<std::string> records;

private:
    static constexpr const char* channel = "recorder";

    void Format(std::uint32_t level, const char* file, const char* function,
                const std::string& message, std::ostream& out) override {
        out << level << '|' << file << '|' << function << '|' << message;
    }
    void Write(const std::string& line) override { records.push_back(line); }
};

} // namespace Utilities
