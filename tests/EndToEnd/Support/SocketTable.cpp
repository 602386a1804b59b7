#include "tests/EndToEnd/Support/SocketTable.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <thread>

namespace EndToEnd {

Waiting FindInSocketTable(std::uint16_t localPort, std::uint16_t remotePort) {
    std::array<char, 40> ends{};
    std::snprintf(ends.data(), ends.size(), "0100007F:%04X 0100007F:%04X ", localPort, remotePort);
    std::ifstream table(socketTablePath, std::ios::binary);
    Waiting waiting;
    for (std::string row; std::getline(table, row);) {
        const std::size_t hit = row.find(ends.data());
        if (hit == std::string::npos)
            continue;
        std::sscanf(row.c_str() + hit, "%*s %*s %*s %8x:%8x", &waiting.unsent, &waiting.unread);
        break;
    }
    return waiting;
}

bool IsEverythingTaken(std::uint16_t ownPort, std::uint16_t clientPort,
                       std::chrono::milliseconds pauseWithoutTable) {
    static const bool hasTable = std::ifstream(socketTablePath).good();
    if (!hasTable) {
        std::this_thread::sleep_for(pauseWithoutTable);
        return true;
    }
    // In this order: what has not arrived yet is not unread either.
    return FindWaiting(ownPort, clientPort).unsent == 0 &&
           FindWaiting(clientPort, ownPort).unread == 0;
}

} // namespace EndToEnd
