#include "Modules/xFramework/OSAL/Console.h"

#include <unistd.h>

namespace OSAL {

std::vector<std::string> ReadArguments(int argc, const char* const argv[]) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

bool IsTerminal(StandardStream stream) {
    return ::isatty(static_cast<int>(stream)) == 1;
}

PreparedConsole::PreparedConsole() = default;

PreparedConsole::~PreparedConsole() = default;

bool AreSameFileName(const std::string& first, const std::string& second) {
    return first == second;
}

} // namespace OSAL
