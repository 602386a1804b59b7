#pragma once

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "Tools/SarvexTool/Bench/Files/AppendedLines.h"

#include <cstdint>
#include <istream>
#include <string>

namespace Bench {

/// Whose command an exchange carried.
enum class Sender : std::uint8_t { Client, Supervisor };

/// How an exchange ended.
enum class ExchangeResult : std::uint8_t { Answered, TimedOut, ConnectionLost, Unreachable };

/// One exchange with the daemon.
struct LoggedExchange {
    /// From 1; the log sets it.
    std::uint64_t number = 0;
    /// The line of the test file; 0 before the first.
    LineNumber line = 0;
    Sender by = Sender::Client;
    /// The body of the request.
    std::string command;
    /// All bytes that came, the head of HTTP included.
    std::string answer;
    ExchangeResult result = ExchangeResult::Answered;
    /// How long it took.
    double seconds = 0;
    /// When it began, as UtcTime writes it.
    std::string time;

    bool operator==(const LoggedExchange&) const = default;
};

/// The exchange as a line of the log, with its end.
std::string LineOf(const LoggedExchange& exchange);

/// Writes the exchanges of a run, one line of JSON each.
class ExchangeLog {
public:
    /// Makes an empty log, or goes on after the last whole exchange of the one that is there; what
    /// follows that is cut off. Throws BadInput for a file that is none, and std::system_error.
    explicit ExchangeLog(const std::string& name);

    /// Sets the number. Throws std::system_error.
    void Append(LoggedExchange exchange);

    /// Waits until the disk has what was appended. Throws std::system_error.
    void Sync() { m_file.Sync(); }

private:
    OSAL::DurableFile m_file;
    std::uint64_t m_count = 0;
};

/// Reads a log exchange by exchange; no more than one is in memory.
class ExchangeReader {
public:
    /// The stream is read in binary and outlives the reader; the name is for the problems only.
    ExchangeReader(std::istream& stream, std::string name);

    /// False at the end, and at a last line that is torn. Throws BadInput for any other line that
    /// is no exchange.
    bool Read(LoggedExchange& exchange);

    /// How many bytes the exchanges have that were read.
    std::uint64_t End() const { return m_lines.End(); }

private:
    AppendedLines m_lines;
};

} // namespace Bench
