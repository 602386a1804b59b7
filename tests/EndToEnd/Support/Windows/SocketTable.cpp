#include "tests/EndToEnd/Support/SocketTable.h"

namespace EndToEnd {

// Under wine this drive is the root of the system below.
const char* const socketTablePath = "Z:\\proc\\net\\tcp";

Waiting FindWaiting(std::uint16_t localPort, std::uint16_t remotePort) {
    return FindInSocketTable(localPort, remotePort);
}

} // namespace EndToEnd
