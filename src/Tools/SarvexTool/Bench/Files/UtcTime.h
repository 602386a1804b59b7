#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// A moment as ISO 8601 writes it, to the millisecond: "2026-03-09T08:05:00.250Z".
std::string UtcTime(std::chrono::system_clock::time_point time);

/// Reads a moment in that form, with or without the fraction of the second; nothing for any other
/// text, and for a day or a time that there is not.
std::optional<std::chrono::system_clock::time_point> ParseUtcTime(std::string_view text);

/// Reads a day as "2026-03-09": its first moment. Nothing for any other text. Both read the years
/// from 1678 to 2261.
std::optional<std::chrono::system_clock::time_point> ParseUtcDay(std::string_view text);

/// A moment in words, to the minute: "2026-03-09 08:05 UTC".
std::string InWords(std::filesystem::file_time_type time);

/// When a file was last written, in words; nothing for what is no file on disk.
std::optional<std::string> LastWritten(const std::string& name);

} // namespace Bench
