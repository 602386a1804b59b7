#include "Modules/xFramework/OSAL/Process.h"

#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>

extern "C" {
// The C runtime would expand wildcards in the arguments; an argument * must arrive as *.
int _dowildcard = 0;
}

namespace OSAL {

const char PathSeparator = '\\';
const char* const ExecutableSuffix = ".exe ";

struct Pipe {
    FILE* stream;
};

void PrepareStandardStreams() {
    // Files and sockets have no numbers here that could be those of a standard stream.
}

int Sleep(std::uint32_t milliseconds) {
    ::Sleep(milliseconds);
    return 0;
}

std::uint64_t ProcessId() {
    return ::GetCurrentProcessId();
}

std::uint32_t GetLastError() {
    return ::GetLastError();
}

bool ReadModulePath(std::string& path) {
    constexpr std::size_t bufferSize = 1024;
    std::array<wchar_t, bufferSize + 1> wide{};
    if (::GetModuleFileNameW(nullptr, wide.data(), bufferSize) == 0)
        return false;
    std::array<char, bufferSize> narrow{};
    const std::size_t length = std::wcstombs(narrow.data(), wide.data(), narrow.size());
    if (length == static_cast<std::size_t>(-1))
        return false;
    path.assign(narrow.data(), length);
    return true;
}

std::string ModulePathInUtf8() {
    constexpr DWORD longestPath = 32'768;
    std::wstring wide(longestPath, L'\0');
    const DWORD length = ::GetModuleFileNameW(nullptr, wide.data(), longestPath);
    wide.resize(length == longestPath ? 0 : length);
    return ToUtf8(wide);
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    constexpr DWORD longestValue = 32'768;
    std::wstring wide(longestValue, L'\0');
    ::SetLastError(ERROR_SUCCESS);
    const DWORD length =
        ::GetEnvironmentVariableW(FromUtf8(name).c_str(), wide.data(), longestValue);
    // A variable without a value has no length either.
    if ((length == 0 && ::GetLastError() != ERROR_SUCCESS) || length >= longestValue)
        return std::nullopt;
    wide.resize(length);
    return ToUtf8(wide);
}

bool CreateChildProcess(const std::string& executablePath, const std::string& commandLine,
                        const std::string& workingDirectory, bool newConsole,
                        ProcessInformation& information) {
    std::wstring wideCommandLine = Widen(commandLine);
    const std::wstring wideDirectory = Widen(workingDirectory);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION created{};
    const BOOL done = ::CreateProcessW(
        Widen(executablePath).c_str(), wideCommandLine.data(), nullptr, nullptr, TRUE,
        newConsole ? CREATE_NEW_CONSOLE : 0, nullptr,
        wideDirectory.empty() ? nullptr : wideDirectory.c_str(), &startup, &created);
    if (done == FALSE)
        return false;
    information = {OwnedHandle(reinterpret_cast<Handle>(created.hProcess)),
                   OwnedHandle(reinterpret_cast<Handle>(created.hThread))};
    return true;
}

std::string TaskListCommand(const std::string& name) {
    return "tasklist /FI \"IMAGENAME eq " + name + ".exe\"";
}

Pipe* OpenPipe(const std::string& command) {
    FILE* stream = ::_popen(command.c_str(), "r");
    return stream == nullptr ? nullptr : new Pipe{stream};
}

std::size_t ReadPipe(Pipe* pipe, char* buffer, std::size_t size) {
    return std::fread(buffer, 1, size, pipe->stream);
}

void ClosePipe(Pipe* pipe) {
    ::_pclose(pipe->stream);
    delete pipe;
}

int ToExitStatus(int returnCode) {
    return returnCode;
}

} // namespace OSAL
