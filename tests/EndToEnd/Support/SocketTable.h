#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace EndToEnd {

/// The system's table of TCP connections as Linux shows it. Programs of the other target see it too
/// while they run under wine, and nowhere else.
extern const char* const socketTablePath;

/// How much waits at one end of a connection.
struct Waiting {
    unsigned unsent = 0;
    unsigned unread = 0;
};

/// Reads the table up to the row of one end of a connection within 127.0.0.1. Nothing waits at an
/// end that it does not show. The table is long: it keeps the connections of the last minute.
Waiting FindInSocketTable(std::uint16_t localPort, std::uint16_t remotePort);

/// What the table says, in the way that costs this system least.
Waiting FindWaiting(std::uint16_t localPort, std::uint16_t remotePort);

/// Whether the client's end of a connection within 127.0.0.1 has nothing left to read. Where the
/// system shows no table, pauses for the given time and says yes.
bool IsEverythingTaken(std::uint16_t ownPort, std::uint16_t clientPort,
                       std::chrono::milliseconds pauseWithoutTable);

} // namespace EndToEnd
