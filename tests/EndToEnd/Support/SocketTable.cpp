#include "tests/EndToEnd/Support/SocketTable.h"

#include <array>
#include <cstdio>
#include <thread>

namespace EndToEnd {

namespace {

/// How much waits at one end of a connection.
struct Waiting {
    unsigned unsent = 0;
    unsigned unread = 0;
};

/// Nothing waits at an end that the table does not show. The row is searched as text, for the table
/// is long: it keeps the connections of the last minute.
Waiting FindWaiting(const std::string& table, unsigned localPort, unsigned remotePort) {
    std::array<char, 40> row{};
    std::snprintf(row.data(), row.size(), "0100007F:%04X 0100007F:%04X ", localPort, remotePort);
    const std::size_t hit = table.find(row.data());
    Waiting waiting;
    if (hit != std::string::npos)
        std::sscanf(table.c_str() + hit, "%*s %*s %*s %8x:%8x", &waiting.unsent, &waiting.unread);
    return waiting;
}

} // namespace

bool IsEverythingTaken(std::uint16_t ownPort, std::uint16_t clientPort,
                       std::chrono::milliseconds pauseWithoutTable) {
    const std::string table = ReadSocketTable();
    if (table.empty()) {
        std::this_thread::sleep_for(pauseWithoutTable);
        return true;
    }
    // In this order: what has not arrived yet is not unread either.
    return FindWaiting(table, ownPort, clientPort).unsent == 0 &&
           FindWaiting(ReadSocketTable(), clientPort, ownPort).unread == 0;
}

} // namespace EndToEnd
