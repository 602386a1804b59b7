#include "tests/EndToEnd/Support/Process.h"

namespace EndToEnd {

ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& workingDirectory) {
    return Process(program, arguments, workingDirectory).Wait();
}

} // namespace EndToEnd
