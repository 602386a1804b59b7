#include "Modules/xFramework/OSAL/Console.h"

#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <array>
#include <cstdio>

extern "C" {
// The C runtime's own splitting of the command line, as for a main with wide arguments; the last
// argument is its structure _startupinfo, an int.
int __cdecl __wgetmainargs(int* count, wchar_t*** arguments, wchar_t*** environment,
                           int expandWildcards, int* startUp);
}

namespace OSAL {

namespace {

constexpr std::array<DWORD, 3> systemNumbers{STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

HANDLE SystemHandle(StandardStream stream) {
    return ::GetStdHandle(systemNumbers.at(static_cast<std::size_t>(stream)));
}

void ObeyEscapeSequences(StandardStream stream) {
    DWORD mode = 0;
    if (::GetConsoleMode(SystemHandle(stream), &mode))
        ::SetConsoleMode(SystemHandle(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

/// The name without what the system drops at its end.
std::wstring Significant(const std::string& name) {
    std::wstring wide = FromUtf8(name);
    wide.resize(wide.find_last_not_of(L". ") + 1);
    return wide;
}

} // namespace

std::vector<std::string> ReadArguments(int /*argc*/, const char* const /*argv*/[]) {
    int count = 0;
    wchar_t** wide = nullptr;
    wchar_t** environment = nullptr;
    int startUp = 0;
    std::vector<std::string> arguments;
    if (__wgetmainargs(&count, &wide, &environment, 0, &startUp) < 0)
        return arguments;
    for (int index = 1; index < count; ++index)
        arguments.push_back(ToUtf8(wide[index]));
    return arguments;
}

bool IsTerminal(StandardStream stream) {
    // The console answers; a device such as NUL, which the C runtime takes for a terminal, does
    // not.
    DWORD mode = 0;
    return ::GetConsoleMode(SystemHandle(stream), &mode) != FALSE;
}

std::optional<std::size_t> TerminalWidth(StandardStream stream) {
    CONSOLE_SCREEN_BUFFER_INFO information{};
    if (!::GetConsoleScreenBufferInfo(SystemHandle(stream), &information))
        return std::nullopt;
    // The buffer may be wider than what is seen of it.
    const SMALL_RECT& window = information.srWindow;
    if (window.Right < window.Left)
        return std::nullopt;
    return static_cast<std::size_t>(window.Right - window.Left + 1);
}

PreparedConsole::PreparedConsole() : m_codePage(::GetConsoleOutputCP()) {
    for (FILE* const file : {stdin, stdout, stderr})
        ::_setmode(::_fileno(file), _O_BINARY);
    if (m_codePage != 0)
        ::SetConsoleOutputCP(CP_UTF8);
    ObeyEscapeSequences(StandardStream::Output);
    ObeyEscapeSequences(StandardStream::Error);
}

PreparedConsole::~PreparedConsole() {
    std::fflush(nullptr);
    if (m_codePage != 0)
        ::SetConsoleOutputCP(m_codePage);
}

bool AreSameFileName(const std::string& first, const std::string& second) {
    const std::wstring left = Significant(first);
    const std::wstring right = Significant(second);
    return ::CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                  static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

} // namespace OSAL
