#include "tests/EndToEnd/Support/TaskList.h"

#include "Modules/xFramework/OSAL/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>

#include <array>
#include <filesystem>
#include <stdexcept>

namespace EndToEnd {

namespace {

/// Other builds' tests that look for the daemon wait until this program has ended.
void TakeTurn() {
    static const int lock = ::open("/tmp/sarvex-local-daemon.lock", O_CREAT | O_CLOEXEC, 0666);
    if (lock < 0 || ::flock(lock, LOCK_EX) != 0)
        throw std::runtime_error("cannot lock /tmp/sarvex-local-daemon.lock");
}

} // namespace

bool PrepareTaskList(const Bench&) {
    TakeTurn();
    OSAL::Pipe* const pipe = OSAL::OpenPipe(OSAL::TaskListCommand("vemo"));
    std::array<char, 16> list{};
    const std::size_t size = OSAL::ReadPipe(pipe, list.data(), list.size());
    OSAL::ClosePipe(pipe);
    return size == 0;
}

void ShowInTaskList(const Bench&, const std::string&) {}

void EndDaemon(const Bench& bench, const std::string& name) {
    const std::filesystem::path program = bench.Path(ExecutableName(name));
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
        std::error_code unreadable;
        if (std::filesystem::read_symlink(process.path() / "exe", unreadable) == program)
            ::kill(std::stoi(process.path().filename()), SIGKILL);
    }
}

} // namespace EndToEnd
