#include "tests/EndToEnd/Support/Process.h"

#include "tests/Support/Files.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace EndToEnd {

using Clock = std::chrono::steady_clock;

struct Process::System {
    pid_t child = -1;
    /// Of standard output, where that is a pipe to be read.
    int readEnd = -1;
    TestSupport::TemporaryDirectory output;
    Clock::time_point start = Clock::now();
};

namespace {

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The largest resident size of a program up to now; 0 when it has ended. What wait4 tells of the
/// program begins with what this one held when it started the other.
std::uint64_t PeakOf(pid_t process) {
    constexpr std::string_view label = "VmHWM:";
    constexpr std::uint64_t unit = 1024;
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(label))
            return std::stoull(line.substr(label.size())) * unit;
    }
    return 0;
}

/// The child's signals are as a shell gives them to a program in the foreground, even if this
/// program was started in the background, where SIGINT is ignored.
class DefaultSignals {
public:
    DefaultSignals() {
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGPIPE);
        for (const Interruption& interruption : Interruptions())
            ::sigaddset(&signals, interruption.number);
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
        ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGDEF);
    }
    ~DefaultSignals() { ::posix_spawnattr_destroy(&m_attributes); }
    DefaultSignals(const DefaultSignals&) = delete;
    DefaultSignals& operator=(const DefaultSignals&) = delete;

    const posix_spawnattr_t* Attributes() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

/// The descriptors of a pipe; nothing but -1 of one that is not wanted.
class OutputPipe {
public:
    explicit OutputPipe(bool isWanted) {
        constexpr int size = 4096;
        if (!isWanted)
            return;
        if (::pipe2(m_ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error(std::string("cannot make a pipe: ") + std::strerror(errno));
        ::fcntl(m_ends[1], F_SETPIPE_SZ, size);
    }
    ~OutputPipe() {
        CloseReadEnd();
        if (m_ends[1] >= 0)
            ::close(m_ends[1]);
    }
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    int WriteEnd() const { return m_ends[1]; }
    int TakeReadEnd() { return std::exchange(m_ends[0], -1); }
    void CloseReadEnd() {
        if (const int end = TakeReadEnd(); end >= 0)
            ::close(end);
    }

private:
    std::array<int, 2> m_ends{-1, -1};
};

} // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const std::string& workingDirectory, const Start& start)
    : m_system(std::make_unique<System>()) {
    std::vector<char*> pointers{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const std::string in = start.inputFile.empty() ? "/dev/null" : start.inputFile;
    const std::string out = m_system->output.Path("out");
    const std::string err = m_system->output.Path("err");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    ::posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    OutputPipe pipe(start.output != Output::Kept);
    if (start.output == Output::BrokenPipe)
        pipe.CloseReadEnd();
    if (start.output != Output::Kept)
        ::posix_spawn_file_actions_adddup2(&actions, pipe.WriteEnd(), 1);
    else
        ::posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    const std::lock_guard starting(StartMutex());
    const int error = ::posix_spawn(&m_system->child, program.c_str(), &actions,
                                    DefaultSignals().Attributes(), pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + program + ": " + std::strerror(error));
    m_system->readEnd = pipe.TakeReadEnd();
}

Process::~Process() {
    if (m_system->readEnd >= 0)
        ::close(m_system->readEnd);
    if (m_system->child > 0) {
        Kill();
        ::waitpid(m_system->child, nullptr, 0);
    }
}

ProcessResult Process::Wait(double timeoutSeconds) {
    int status = 0;
    ProcessResult result;
    while (::waitpid(m_system->child, &status, WNOHANG) == 0) {
        result.peakBytes = std::max(result.peakBytes, PeakOf(m_system->child));
        if (SecondsSince(m_system->start) > timeoutSeconds) {
            result.timedOut = true;
            Kill();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    m_system->child = -1;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = OutSoFar();
    result.err = ErrSoFar();
    result.seconds = SecondsSince(m_system->start);
    return result;
}

void Process::Kill() {
    Interrupt({"SIGKILL", SIGKILL});
}

void Process::Interrupt(const Interruption& interruption) {
    // To -1 the signal would go to every process there is.
    if (m_system->child > 0)
        ::kill(m_system->child, interruption.number);
}

void Process::End() {
    constexpr int patienceMilliseconds = 5000;
    Interrupt({"SIGTERM", SIGTERM});
    for (int waited = 0; m_system->child > 0 && waited < patienceMilliseconds; ++waited) {
        if (::waitpid(m_system->child, nullptr, WNOHANG) != 0)
            m_system->child = -1;
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool Process::HasEnded() const {
    siginfo_t information{};
    return m_system->child < 0 || (::waitid(P_PID, static_cast<id_t>(m_system->child), &information,
                                            WEXITED | WNOHANG | WNOWAIT) == 0 &&
                                   information.si_pid != 0);
}

bool Process::Halt() {
    Interrupt({"SIGSTOP", SIGSTOP});
    return true;
}

void Process::GoOn() {
    Interrupt({"SIGCONT", SIGCONT});
}

std::uint64_t Process::Id() const {
    return static_cast<std::uint64_t>(m_system->child);
}

std::vector<Interruption> Interruptions() {
    return {{"SIGKILL", SIGKILL}, {"SIGTERM", SIGTERM}, {"SIGINT", SIGINT}};
}

std::string Process::OutSoFar() const {
    return TestSupport::ReadBytes(m_system->output.Path("out"));
}

std::string Process::ReadOut() {
    std::string text;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t size = ::read(m_system->readEnd, piece.data(), piece.size());
        if (size <= 0)
            return text;
        text.append(piece.data(), static_cast<std::size_t>(size));
    }
}

std::string Process::ErrSoFar() const {
    return TestSupport::ReadBytes(m_system->output.Path("err"));
}

std::vector<std::uint64_t> ProgramsIn(const std::string& folder) {
    std::vector<std::uint64_t> programs;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string id = entry.path().filename().string();
        if (id.find_first_not_of("0123456789") != std::string::npos)
            continue;
        // Those of others, and those that have ended, cannot be read.
        std::error_code ignored;
        const std::filesystem::path file =
            std::filesystem::read_symlink(entry.path() / "exe", ignored);
        if (file.parent_path() == std::filesystem::path(folder))
            programs.push_back(std::stoull(id));
    }
    return programs;
}

void KillProgram(std::uint64_t id) {
    ::kill(static_cast<pid_t>(id), SIGKILL);
}

void KeepFromChildren(std::uint64_t nativeSocket) {
    ::fcntl(static_cast<int>(nativeSocket), F_SETFD, FD_CLOEXEC);
}

int KilledStatus() {
    return -1;
}

int ExitStatus(int code) {
    return code >= 0 && code <= 255 ? code : 255;
}

std::string ExecutableName(const std::string& name) {
    return name;
}

std::string TestProgramDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

std::string TextMode(const std::string& text) {
    return text;
}

} // namespace EndToEnd
