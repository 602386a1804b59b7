#include "tests/EndToEnd/Support/SocketTable.h"

#include "tests/Support/Files.h"

namespace EndToEnd {

std::string ReadSocketTable() {
    return TestSupport::ReadBytes("/proc/net/tcp");
}

} // namespace EndToEnd
