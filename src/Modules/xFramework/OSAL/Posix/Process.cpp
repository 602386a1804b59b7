#include "Modules/xFramework/OSAL/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace OSAL {

const char PathSeparator = '/';
const char* const ExecutableSuffix = "";

struct Pipe {
    FILE* stream;
};

namespace {

/// The path of this program as the system knows it; empty when it cannot be read.
std::string FindModulePath() {
    std::array<char, PATH_MAX> buffer;
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    return length <= 0 ? std::string() : std::string(buffer.data(), buffer.data() + length);
}

/// Lets a write to a pipe that nobody reads fail, where its signal would end the process. A handler
/// does that, for children begin without it; a signal that is ignored stays so in them.
void SurviveBrokenPipes() {
    struct sigaction action {};
    if (::sigaction(SIGPIPE, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = [](int) {};
    ::sigaction(SIGPIPE, &action, nullptr);
}

} // namespace

void PrepareStandardStreams() {
    SurviveBrokenPipes();
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The system hands out the lowest free descriptor, which is this one: those below are open.
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) < 0)
            return;
    }
}

int Sleep(std::uint32_t milliseconds) {
    constexpr std::uint32_t nanosecondsPerMillisecond = 1'000'000;
    timespec remaining{static_cast<time_t>(milliseconds / 1000),
                       static_cast<long>(milliseconds % 1000 * nanosecondsPerMillisecond)};
    while (::nanosleep(&remaining, &remaining) != 0 && errno == EINTR) {
    }
    return 0;
}

std::uint64_t ProcessId() {
    return static_cast<std::uint64_t>(::getpid());
}

std::uint32_t GetLastError() {
    return static_cast<std::uint32_t>(errno);
}

bool ReadModulePath(std::string& path) {
    static const std::string modulePath = FindModulePath();
    if (modulePath.empty())
        return false;
    path = modulePath;
    return true;
}

std::string ModulePathInUtf8() {
    std::string path;
    ReadModulePath(path);
    return path;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* const value = ::getenv(name.c_str()); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool CreateChildProcess(const std::string& executablePath, const std::string& /*commandLine*/,
                        const std::string& workingDirectory, bool /*newConsole*/,
                        ProcessInformation& information) {
    std::string argument = executablePath;
    std::array<char*, 2> arguments{argument.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (!workingDirectory.empty())
        ::posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    pid_t child = 0;
    const int error =
        ::posix_spawn(&child, executablePath.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    information = {};
    errno = error;
    return error == 0;
}

std::string TaskListCommand(const std::string& name) {
    // A process that has ended and only waits for its parent does not count as running. One that
    // ends meanwhile makes sed stop at its file, but not cat.
    return "cat /proc/[0-9]*/stat 2>/dev/null | sed -n 's/^[0-9]* (\\(" + name +
           "\\)) [^Z].*/\\1/p'";
}

Pipe* OpenPipe(const std::string& command) {
    FILE* stream = ::popen(command.c_str(), "r");
    return stream == nullptr ? nullptr : new Pipe{stream};
}

std::size_t ReadPipe(Pipe* pipe, char* buffer, std::size_t size) {
    return std::fread(buffer, 1, size, pipe->stream);
}

void ClosePipe(Pipe* pipe) {
    ::pclose(pipe->stream);
    delete pipe;
}

int ToExitStatus(int returnCode) {
    constexpr int largestStatus = 255;
    return returnCode < 0 || returnCode > largestStatus ? largestStatus : returnCode;
}

} // namespace OSAL
