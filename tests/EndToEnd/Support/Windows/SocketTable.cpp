#include "tests/EndToEnd/Support/SocketTable.h"

#include "tests/Support/Files.h"

namespace EndToEnd {

std::string ReadSocketTable() {
    // Under wine this drive is the root of the system below.
    return TestSupport::ReadBytes("Z:\\proc\\net\\tcp");
}

} // namespace EndToEnd
