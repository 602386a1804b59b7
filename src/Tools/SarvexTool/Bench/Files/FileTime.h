#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace Bench {

/// A moment in words, to the minute: "2026-03-09 08:05 UTC".
std::string InWords(std::filesystem::file_time_type time);

/// When a file was last written, in words; nothing for what is no file on disk.
std::optional<std::string> LastWritten(const std::string& name);

} // namespace Bench
