#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace EndToEnd {

/// The system's table of TCP connections as Linux shows it; empty where there is none. Programs of
/// the other target see it too while they run under wine.
std::string ReadSocketTable();

/// Whether the client's end of a connection within 127.0.0.1 has nothing left to read. Where the
/// system shows no table, pauses for the given time and says yes.
bool IsEverythingTaken(std::uint16_t ownPort, std::uint16_t clientPort,
                       std::chrono::milliseconds pauseWithoutTable);

} // namespace EndToEnd
