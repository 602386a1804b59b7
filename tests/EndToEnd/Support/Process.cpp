#include "tests/EndToEnd/Support/Process.h"

namespace EndToEnd {

ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& workingDirectory) {
    return Process(program, arguments, workingDirectory).Wait();
}

std::mutex& StartMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace EndToEnd
