#include "tests/EndToEnd/Support/TaskList.h"

#include "Modules/xFramework/OSAL/Process.h"

#include <signal.h>

#include <array>
#include <filesystem>

namespace EndToEnd {

bool PrepareTaskList(const Bench&) {
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
