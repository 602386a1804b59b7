#include "Modules/xFramework/OSAL/ChildProcess.h"

#include "Modules/xFramework/OSAL/Handle.h"
#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <system_error>

namespace OSAL {

namespace {

[[noreturn]] void Throw(DWORD error, const std::string& what) {
    throw std::system_error(static_cast<int>(error), std::system_category(), what);
}

HANDLE ToSystem(const OwnedHandle& handle) {
    return reinterpret_cast<HANDLE>(handle.Get());
}

OwnedHandle Own(HANDLE handle) {
    return OwnedHandle(reinterpret_cast<Handle>(handle));
}

/// An argument as the C runtime's splitting gives it back: backslashes are doubled before a quote
/// only, and the one that ends the argument is a quote.
std::string Quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos)
        return argument;
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument) {
        if (character == '"')
            quoted.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, '\\') + "\"";
}

std::wstring CommandLineOf(const ChildStart& start) {
    // The splitting knows no escapes in the program's path, and no path holds a quote.
    std::string commandLine = "\"" + start.program + "\"";
    for (const std::string& argument : start.arguments)
        commandLine += " " + Quoted(argument);
    return FromUtf8(commandLine);
}

/// The path from the root; the child's working directory does not matter to it.
std::wstring FullPath(const std::string& path) {
    const std::wstring wide = FromUtf8(path);
    const DWORD size = ::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(::GetFullPathNameW(wide.c_str(), size, full.data(), nullptr));
    return full;
}

OwnedHandle OpenInheritable(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE file = ::CreateFileW(FromUtf8(path).c_str(), access,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      &inherit, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        Throw(::GetLastError(), path);
    return Own(file);
}

/// Start-up information of a child that gets its standard streams, inherits no other handle and
/// belongs to a job from its creation: were it put there afterwards, a program killed in between
/// would leave it behind.
class StartUpInformation {
public:
    StartUpInformation(const ChildStart& start, const OwnedHandle& job)
        : m_input(OpenInheritable("NUL", GENERIC_READ, OPEN_EXISTING)),
          m_output(OpenInheritable(start.outputFile, FILE_APPEND_DATA | SYNCHRONIZE, OPEN_ALWAYS)),
          m_inherited{ToSystem(m_input), ToSystem(m_output)},
          m_jobs{ToSystem(job)} {
        m_startup.StartupInfo.cb = sizeof m_startup;
        m_startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        m_startup.StartupInfo.hStdInput = ToSystem(m_input);
        m_startup.StartupInfo.hStdOutput = ToSystem(m_output);
        m_startup.StartupInfo.hStdError = ToSystem(m_output);
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, attributeCount, 0, &size);
        m_attributes.resize(size);
        auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_attributes.data());
        if (!::InitializeProcThreadAttributeList(list, attributeCount, 0, &size))
            Throw(::GetLastError(), start.program);
        m_startup.lpAttributeList = list;
        Set(PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_inherited, start.program);
        Set(PROC_THREAD_ATTRIBUTE_JOB_LIST, m_jobs, start.program);
    }
    ~StartUpInformation() { ::DeleteProcThreadAttributeList(m_startup.lpAttributeList); }
    StartUpInformation(const StartUpInformation&) = delete;
    StartUpInformation& operator=(const StartUpInformation&) = delete;

    STARTUPINFOW* Get() { return &m_startup.StartupInfo; }

private:
    static constexpr DWORD attributeCount = 2;

    template <std::size_t count>
    void Set(DWORD_PTR attribute, std::array<HANDLE, count>& handles, const std::string& what) {
        if (!::UpdateProcThreadAttribute(m_startup.lpAttributeList, 0, attribute, handles.data(),
                                         sizeof handles, nullptr, nullptr))
            Throw(::GetLastError(), what);
    }

    OwnedHandle m_input;
    OwnedHandle m_output;
    std::array<HANDLE, 2> m_inherited;
    std::array<HANDLE, 1> m_jobs;
    std::vector<std::byte> m_attributes;
    STARTUPINFOEXW m_startup{};
};

/// A job whose processes end with its last handle, which the system closes for a program that ends.
OwnedHandle CreateEndingJob(const std::string& what) {
    OwnedHandle job = Own(::CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (job.Get() == 0 ||
        !::SetInformationJobObject(ToSystem(job), JobObjectExtendedLimitInformation, &limits,
                                   sizeof limits))
        Throw(::GetLastError(), what);
    return job;
}

} // namespace

struct ChildProcess::System {
    OwnedHandle job;
    OwnedHandle process;
    DWORD id = 0;
};

ChildProcess::ChildProcess(const ChildStart& start) : m_pSystem(std::make_unique<System>()) {
    m_pSystem->job = CreateEndingJob(start.program);
    StartUpInformation startUp(start, m_pSystem->job);
    std::wstring commandLine = CommandLineOf(start);
    PROCESS_INFORMATION created{};
    // Without a console it hears of no key there and not of its closing; a group of its own would
    // keep Ctrl-C from it, but not Ctrl-Break.
    constexpr DWORD flags =
        CREATE_NEW_PROCESS_GROUP | DETACHED_PROCESS | EXTENDED_STARTUPINFO_PRESENT;
    if (!::CreateProcessW(FullPath(start.program).c_str(), commandLine.data(), nullptr, nullptr,
                          TRUE, flags, nullptr, FromUtf8(start.workingDirectory).c_str(),
                          startUp.Get(), &created)) {
        const DWORD error = ::GetLastError();
        const bool isDirectory = error == ERROR_DIRECTORY;
        Throw(error, isDirectory ? start.workingDirectory : start.program);
    }
    m_pSystem->process = Own(created.hProcess);
    m_pSystem->id = created.dwProcessId;
    Own(created.hThread);
}

// The job ends what still runs.
ChildProcess::~ChildProcess() = default;

void ChildProcess::Kill() {
    constexpr UINT killed = 1;
    ::TerminateJobObject(ToSystem(m_pSystem->job), killed);
}

ChildEnd ChildProcess::Wait() {
    DWORD code = 0;
    if (::WaitForSingleObject(ToSystem(m_pSystem->process), INFINITE) != WAIT_OBJECT_0 ||
        !::GetExitCodeProcess(ToSystem(m_pSystem->process), &code))
        Throw(::GetLastError(), "the end of process " + std::to_string(m_pSystem->id));
    return {static_cast<int>(code), false};
}

std::uint64_t ChildProcess::Id() const {
    return m_pSystem->id;
}

} // namespace OSAL
