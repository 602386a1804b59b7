#include "tests/EndToEnd/Support/Process.h"

#include "tests/EndToEnd/Support/Files.h"

#include <windows.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <stdexcept>

namespace EndToEnd {

using Clock = std::chrono::steady_clock;

struct Process::System {
    PROCESS_INFORMATION child{};
    TemporaryDirectory output;
    Clock::time_point start = Clock::now();
};

namespace {

/// An argument as the C runtime's splitting gives it back unchanged.
std::string Quote(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument) {
        if (character == '\\') {
            ++backslashes;
            continue;
        }
        const bool isQuote = character == '"';
        quoted.append(isQuote ? 2 * backslashes + 1 : backslashes, '\\');
        quoted += character;
        backslashes = 0;
    }
    return quoted.append(2 * backslashes, '\\') + "\"";
}

HANDLE OpenInheritable(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    return ::CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                         disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::string& workingDirectory)
    : m_system(std::make_unique<System>()) {
    std::string commandLine = Quote(program);
    for (const std::string& argument : arguments)
        commandLine += " " + Quote(argument);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = OpenInheritable("NUL", GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput =
        OpenInheritable(m_system->output.Path("out"), GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = OpenInheritable(m_system->output.Path("err"), GENERIC_WRITE, CREATE_ALWAYS);
    const BOOL started =
        ::CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                         workingDirectory.c_str(), &startup, &m_system->child);
    for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError})
        ::CloseHandle(handle);
    if (!started)
        throw std::runtime_error("cannot start " + program);
}

Process::~Process() {
    Kill();
    ::WaitForSingleObject(m_system->child.hProcess, INFINITE);
    ::CloseHandle(m_system->child.hThread);
    ::CloseHandle(m_system->child.hProcess);
}

ProcessResult Process::Wait(double timeoutSeconds) {
    const HANDLE child = m_system->child.hProcess;
    ProcessResult result;
    if (::WaitForSingleObject(child, static_cast<DWORD>(timeoutSeconds * 1000)) == WAIT_OBJECT_0) {
        DWORD exitCode = 0;
        ::GetExitCodeProcess(child, &exitCode);
        result.exitCode = static_cast<int>(exitCode);
    } else {
        Kill();
        ::WaitForSingleObject(child, INFINITE);
    }
    result.out = OutSoFar();
    result.err = ReadBytes(m_system->output.Path("err"));
    result.seconds = std::chrono::duration<double>(Clock::now() - m_system->start).count();
    return result;
}

void Process::Kill() {
    ::TerminateProcess(m_system->child.hProcess, 1);
}

std::string Process::OutSoFar() const {
    return ReadBytes(m_system->output.Path("out"));
}

void KeepFromChildren(std::uint64_t nativeSocket) {
    ::SetHandleInformation(reinterpret_cast<HANDLE>(nativeSocket), HANDLE_FLAG_INHERIT, 0);
}

std::string ExecutableName(const std::string& name) {
    return name + ".exe";
}

std::string TestProgramDirectory() {
    std::array<char, MAX_PATH> path{};
    ::GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
    return std::filesystem::path(path.data()).parent_path().string();
}

std::string TextMode(const std::string& text) {
    std::string result;
    for (const char character : text)
        result += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return result;
}

} // namespace EndToEnd
