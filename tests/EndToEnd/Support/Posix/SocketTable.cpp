#include "tests/EndToEnd/Support/SocketTable.h"

#include "tests/EndToEnd/Support/Files.h"

namespace EndToEnd {

std::string ReadSocketTable() {
    return ReadBytes("/proc/net/tcp");
}

} // namespace EndToEnd
