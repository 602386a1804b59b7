#pragma once

// Public, stable within a major version. For any thread, once the channels are set up. Throws what
// a channel throws.

#include <cstdint>
#include <string>

namespace Utilities {

/// Log levels are bits, so that a channel's mask can accept any subset of them.
namespace LogLevel {
inline constexpr std::uint32_t Error = 1;
inline constexpr std::uint32_t Warning = 2;
inline constexpr std::uint32_t Info = 4;
inline constexpr std::uint32_t Trace = 8;
inline constexpr std::uint32_t All = Error | Warning | Info | Trace;
} // namespace LogLevel

/// Sends one record to every channel of the process-wide LogPrinter, in the order of adding.
/// file and function are zero-terminated; message is a finished text.
void Log(std::uint32_t level, const char* file, std::uint32_t line, const char* function,
         const std::string& message);

} // namespace Utilities
