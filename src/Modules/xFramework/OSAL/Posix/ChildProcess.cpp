#include "Modules/xFramework/OSAL/ChildProcess.h"

#include "Modules/xFramework/OSAL/Handle.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <system_error>

namespace OSAL {

namespace {

/// The child's descriptors up to this one are given out anew.
constexpr int reportDescriptor = 3;

[[noreturn]] void Throw(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

/// Owns a descriptor above those that the child gives out anew. Throws std::system_error.
OwnedHandle MoveUp(int descriptor, const std::string& what) {
    if (descriptor < 0)
        Throw(errno, what);
    const int above = ::fcntl(descriptor, F_DUPFD_CLOEXEC, reportDescriptor + 1);
    const int error = errno;
    ::close(descriptor);
    if (above < 0)
        Throw(error, what);
    return OwnedHandle(static_cast<Handle>(above));
}

OwnedHandle Open(const std::string& path, int flags) {
    constexpr mode_t everybody = 0666;
    return MoveUp(::open(path.c_str(), flags | O_CLOEXEC, everybody), path);
}

int DescriptorOf(const OwnedHandle& handle) {
    return static_cast<int>(handle.Get());
}

/// A path that is the same from every working directory.
std::string AbsolutePath(const std::string& path) {
    if (path.starts_with('/'))
        return path;
    const std::unique_ptr<char, decltype(&std::free)> current(::getcwd(nullptr, 0), &std::free);
    if (!current)
        Throw(errno, path);
    return std::string(current.get()) + '/' + path;
}

/// What kept a child from becoming the program.
struct Failure {
    int error;
    bool isOfDirectory;
};

/// Keeps every signal from the calling thread while it lives.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t m_before{};
};

/// Everything that the child needs between its beginning and the program's. It allocates nothing
/// there: another thread may have held the allocator's lock when the child began.
class Preparation {
public:
    explicit Preparation(const ChildStart& start)
        : m_program(AbsolutePath(start.program)),
          m_directory(start.workingDirectory),
          m_input(Open("/dev/null", O_RDONLY)),
          m_output(Open(start.outputFile, O_WRONLY | O_APPEND | O_CREAT)) {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            Throw(errno, start.program);
        m_reportRead = OwnedHandle(static_cast<Handle>(ends[0]));
        m_reportWrite = MoveUp(ends[1], start.program);
        m_arguments.push_back(const_cast<char*>(m_program.c_str()));
        for (const std::string& argument : start.arguments)
            m_arguments.push_back(const_cast<char*>(argument.c_str()));
        m_arguments.push_back(nullptr);
    }

    /// In the child, with all signals blocked.
    [[noreturn]] void Become(pid_t parent) const {
        // A parent that was gone before this call is not noticed by the system.
        if (::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && ::getppid() != parent)
            static_cast<void>(::raise(SIGKILL));
        const Failure failure = TryToBecome();
        const bool isTold = ::write(reportDescriptor, &failure, sizeof failure) == sizeof failure;
        ::_exit(isTold ? 1 : 2);
    }

    /// In the parent: waits until the child is the program; nothing when it is.
    std::optional<Failure> ReadReport() {
        m_reportWrite.Close();
        Failure failure{};
        ssize_t size = 0;
        do {
            size = ::read(DescriptorOf(m_reportRead), &failure, sizeof failure);
        } while (size < 0 && errno == EINTR);
        return size == sizeof failure ? std::optional(failure) : std::nullopt;
    }

private:
    /// Returns only when it cannot.
    Failure TryToBecome() const {
        if (::setpgid(0, 0) != 0 || !TakeDescriptors())
            return {errno, false};
        if (::chdir(m_directory.c_str()) != 0)
            return {errno, true};
        RestoreSignals();
        ::execv(m_program.c_str(), m_arguments.data());
        return {errno, false};
    }

    bool TakeDescriptors() const {
        if (::dup2(DescriptorOf(m_input), STDIN_FILENO) < 0 ||
            ::dup2(DescriptorOf(m_output), STDOUT_FILENO) < 0 ||
            ::dup2(DescriptorOf(m_output), STDERR_FILENO) < 0 ||
            ::dup3(DescriptorOf(m_reportWrite), reportDescriptor, O_CLOEXEC) < 0)
            return false;
        ::closefrom(reportDescriptor + 1);
        return true;
    }

    static void RestoreSignals() {
        struct sigaction action {};
        action.sa_handler = SIG_DFL;
        // Those that cannot be changed fail, and have their default.
        for (int signal = 1; signal < NSIG; ++signal)
            ::sigaction(signal, &action, nullptr);
        sigset_t none;
        ::sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
    }

    std::string m_program;
    std::string m_directory;
    OwnedHandle m_input;
    OwnedHandle m_output;
    OwnedHandle m_reportRead;
    OwnedHandle m_reportWrite;
    std::vector<char*> m_arguments;
};

/// Where it is ignored that children end, the system forgets how they did.
void KeepEndsOfChildren() {
    struct sigaction action {};
    if (::sigaction(SIGCHLD, nullptr, &action) != 0 || action.sa_handler != SIG_IGN)
        return;
    action.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &action, nullptr);
}

/// Waits for the end and gives the process's number back to the system.
void Reap(pid_t child, int& status) {
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            Throw(errno, "the end of process " + std::to_string(child));
    }
}

ChildEnd ToEnd(int status) {
    if (WIFSIGNALED(status))
        return {WTERMSIG(status), true};
    return {WEXITSTATUS(status), false};
}

} // namespace

struct ChildProcess::System {
    pid_t child = -1;
    /// Guards that nothing is sent to the process's number after the system may have given it to
    /// another one.
    std::mutex mutex;
    std::optional<ChildEnd> end;
};

ChildProcess::ChildProcess(const ChildStart& start) : m_pSystem(std::make_unique<System>()) {
    KeepEndsOfChildren();
    Preparation preparation(start);
    const pid_t parent = ::getpid();
    int error = 0;
    {
        const BlockedSignals blocked;
        m_pSystem->child = ::fork();
        error = errno;
        if (m_pSystem->child == 0)
            preparation.Become(parent);
    }
    if (m_pSystem->child < 0)
        Throw(error, start.program);
    const std::optional<Failure> failure = preparation.ReadReport();
    if (!failure)
        return;
    int status = 0;
    Reap(m_pSystem->child, status);
    Throw(failure->error, failure->isOfDirectory ? start.workingDirectory : start.program);
}

ChildProcess::~ChildProcess() {
    try {
        Kill();
        Wait();
    } catch (const std::system_error&) {
        // Somebody else has waited for it.
    }
}

void ChildProcess::Kill() {
    const std::lock_guard lock(m_pSystem->mutex);
    if (!m_pSystem->end)
        ::kill(-m_pSystem->child, SIGKILL);
}

ChildEnd ChildProcess::Wait() {
    // First without taking its number away, so that Kill need not wait.
    siginfo_t information{};
    const auto id = static_cast<id_t>(m_pSystem->child);
    while (!m_pSystem->end && ::waitid(P_PID, id, &information, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    const std::lock_guard lock(m_pSystem->mutex);
    if (!m_pSystem->end) {
        int status = 0;
        Reap(m_pSystem->child, status);
        m_pSystem->end = ToEnd(status);
    }
    return *m_pSystem->end;
}

std::uint64_t ChildProcess::Id() const {
    return static_cast<std::uint64_t>(m_pSystem->child);
}

} // namespace OSAL
