#include "tests/EndToEnd/Support/Process.h"

#include "tests/Support/Files.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <stdexcept>

namespace EndToEnd {

using Clock = std::chrono::steady_clock;

struct Process::System {
    PROCESS_INFORMATION child{};
    /// Of standard output, where that is a pipe to be read.
    HANDLE readEnd = nullptr;
    TestSupport::TemporaryDirectory output;
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

/// Ends the test with the system's error when a call has failed.
void Require(bool succeeded, const std::string& what) {
    const DWORD error = ::GetLastError();
    if (!succeeded)
        throw std::runtime_error("cannot " + what + ": error " + std::to_string(error));
}

std::wstring Widen(const std::string& text, UINT codePage) {
    const int size = static_cast<int>(text.size());
    const int wideSize = ::MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    ::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), wideSize);
    return wide;
}

HANDLE OpenInheritable(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE file = ::CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      &inherit, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    Require(file != INVALID_HANDLE_VALUE, "open " + path);
    return file;
}

/// Makes a pipe; returns its end for writing.
HANDLE OpenPipe(HANDLE& readEnd) {
    constexpr DWORD bytes = 4096;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE writeEnd = nullptr;
    Require(::CreatePipe(&readEnd, &writeEnd, &inherit, bytes), "make a pipe");
    return writeEnd;
}

HANDLE OpenBrokenPipe() {
    HANDLE readEnd = nullptr;
    const HANDLE writeEnd = OpenPipe(readEnd);
    ::CloseHandle(readEnd);
    return writeEnd;
}

/// Start-up information of a child that gets three handles and inherits no other.
class ThreeHandles {
public:
    ThreeHandles(HANDLE in, HANDLE out, HANDLE err) : m_handles{in, out, err} {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_attributes.resize(size);
        m_startup.StartupInfo.cb = sizeof m_startup;
        m_startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        m_startup.StartupInfo.hStdInput = in;
        m_startup.StartupInfo.hStdOutput = out;
        m_startup.StartupInfo.hStdError = err;
        m_startup.lpAttributeList =
            reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_attributes.data());
        Require(::InitializeProcThreadAttributeList(m_startup.lpAttributeList, 1, 0, &size),
                "make a list of attributes");
        Require(::UpdateProcThreadAttribute(m_startup.lpAttributeList, 0,
                                            PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                            sizeof m_handles, nullptr, nullptr),
                "list the handles of a program");
    }
    ~ThreeHandles() {
        ::DeleteProcThreadAttributeList(m_startup.lpAttributeList);
        for (const HANDLE handle : m_handles)
            ::CloseHandle(handle);
    }
    ThreeHandles(const ThreeHandles&) = delete;
    ThreeHandles& operator=(const ThreeHandles&) = delete;

    STARTUPINFOW* StartUp() { return &m_startup.StartupInfo; }

private:
    std::array<HANDLE, 3> m_handles;
    std::vector<char> m_attributes;
    STARTUPINFOEXW m_startup{};
};

/// Waits until the process ends or the time is over; returns its largest resident size.
std::uint64_t WatchUntilEnd(HANDLE child, double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    SIZE_T peak = 0;
    DWORD pause = 1;
    do {
        // Wine forgets the sizes of a process at its end.
        PROCESS_MEMORY_COUNTERS memory{};
        if (::K32GetProcessMemoryInfo(child, &memory, sizeof memory))
            peak = std::max(peak, memory.PeakWorkingSetSize);
        pause = std::min<DWORD>(2 * pause, 50);
    } while (::WaitForSingleObject(child, pause) != WAIT_OBJECT_0 && Clock::now() < end);
    return peak;
}

/// The path of a program's executable file; empty when it has ended or may not be asked.
std::filesystem::path FileOf(DWORD id) {
    const HANDLE process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
    if (process == nullptr)
        return {};
    std::array<wchar_t, 1024> path{};
    auto size = static_cast<DWORD>(path.size());
    if (!::QueryFullProcessImageNameW(process, 0, path.data(), &size))
        size = 0;
    ::CloseHandle(process);
    return std::wstring(path.data(), size);
}

} // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::string& workingDirectory, const Start& start)
    : m_system(std::make_unique<System>()) {
    std::string commandLine = Quote(program);
    for (const std::string& argument : arguments)
        commandLine += " " + Quote(argument);
    ThreeHandles handles(
        OpenInheritable(start.inputFile.empty() ? "NUL" : start.inputFile, GENERIC_READ,
                        OPEN_EXISTING),
        start.output == Output::BrokenPipe ? OpenBrokenPipe()
        : start.output == Output::Pipe
            ? OpenPipe(m_system->readEnd)
            : OpenInheritable(m_system->output.Path("out"), GENERIC_WRITE, CREATE_ALWAYS),
        OpenInheritable(m_system->output.Path("err"), GENERIC_WRITE, CREATE_ALWAYS));
    const std::lock_guard starting(StartMutex());
    std::wstring wideCommandLine = Widen(commandLine, start.areArgumentsUtf8 ? CP_UTF8 : CP_ACP);
    const BOOL started = ::CreateProcessW(Widen(program, CP_ACP).c_str(), wideCommandLine.data(),
                                          nullptr, nullptr, TRUE, EXTENDED_STARTUPINFO_PRESENT,
                                          nullptr, Widen(workingDirectory, CP_ACP).c_str(),
                                          handles.StartUp(), &m_system->child);
    Require(started, "start " + program);
}

Process::~Process() {
    Kill();
    ::WaitForSingleObject(m_system->child.hProcess, INFINITE);
    ::CloseHandle(m_system->child.hThread);
    ::CloseHandle(m_system->child.hProcess);
    if (m_system->readEnd != nullptr)
        ::CloseHandle(m_system->readEnd);
}

ProcessResult Process::Wait(double timeoutSeconds) {
    const HANDLE child = m_system->child.hProcess;
    ProcessResult result;
    result.peakBytes = WatchUntilEnd(child, timeoutSeconds);
    if (::WaitForSingleObject(child, 0) == WAIT_OBJECT_0) {
        DWORD exitCode = 0;
        Require(::GetExitCodeProcess(child, &exitCode), "read a program's exit code");
        result.exitCode = static_cast<int>(exitCode);
    } else {
        result.timedOut = true;
        Kill();
        ::WaitForSingleObject(child, INFINITE);
    }
    result.out = OutSoFar();
    result.err = ErrSoFar();
    result.seconds = std::chrono::duration<double>(Clock::now() - m_system->start).count();
    return result;
}

void Process::Kill() {
    ::TerminateProcess(m_system->child.hProcess, 1);
}

void Process::End() {
    Kill();
}

void Process::Interrupt(const Interruption&) {
    Kill();
}

bool Process::HasEnded() const {
    return ::WaitForSingleObject(m_system->child.hProcess, 0) == WAIT_OBJECT_0;
}

bool Process::Halt() {
    return false;
}

void Process::GoOn() {}

std::uint64_t Process::Id() const {
    return m_system->child.dwProcessId;
}

std::vector<Interruption> Interruptions() {
    return {{"TerminateProcess", 0}};
}

std::string Process::OutSoFar() const {
    return TestSupport::ReadBytes(m_system->output.Path("out"));
}

std::string Process::ReadOut() {
    std::string text;
    std::array<char, 4096> piece{};
    for (;;) {
        DWORD size = 0;
        if (!::ReadFile(m_system->readEnd, piece.data(), static_cast<DWORD>(piece.size()), &size,
                        nullptr) ||
            size == 0)
            return text;
        text.append(piece.data(), size);
    }
}

std::string Process::ErrSoFar() const {
    return TestSupport::ReadBytes(m_system->output.Path("err"));
}

std::vector<std::uint64_t> ProgramsIn(const std::string& folder) {
    std::vector<std::uint64_t> programs;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    Require(snapshot != INVALID_HANDLE_VALUE, "list the processes");
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    std::error_code ignored;
    for (BOOL found = ::Process32FirstW(snapshot, &entry); found;
         found = ::Process32NextW(snapshot, &entry)) {
        const std::filesystem::path file = FileOf(entry.th32ProcessID);
        if (!file.empty() && std::filesystem::equivalent(file.parent_path(), folder, ignored))
            programs.push_back(entry.th32ProcessID);
    }
    ::CloseHandle(snapshot);
    return programs;
}

void KillProgram(std::uint64_t id) {
    const HANDLE process = ::OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(id));
    if (process == nullptr)
        return;
    ::TerminateProcess(process, 1);
    ::CloseHandle(process);
}

void KeepFromChildren(std::uint64_t nativeSocket) {
    ::SetHandleInformation(reinterpret_cast<HANDLE>(nativeSocket), HANDLE_FLAG_INHERIT, 0);
}

int KilledStatus() {
    return 1;
}

int ExitStatus(int code) {
    return code;
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
