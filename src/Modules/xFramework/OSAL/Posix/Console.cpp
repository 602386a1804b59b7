#include "Modules/xFramework/OSAL/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace OSAL {

std::vector<std::string> ReadArguments(int argc, const char* const argv[]) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

bool IsTerminal(StandardStream stream) {
    return ::isatty(static_cast<int>(stream)) == 1;
}

std::optional<std::size_t> TerminalWidth(StandardStream stream) {
    winsize size{};
    // A terminal on a serial line has the width 0.
    if (::ioctl(static_cast<int>(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return std::nullopt;
    return size.ws_col;
}

PreparedConsole::PreparedConsole() = default;

PreparedConsole::~PreparedConsole() = default;

bool AreSameFileName(const std::string& first, const std::string& second) {
    return first == second;
}

} // namespace OSAL
