#include "Tools/SarvexTool/Client/Launcher.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include <array>
#include <iostream>
#include <memory>

namespace {

struct PipeCloser {
    void operator()(OSAL::Pipe* pipe) const { OSAL::ClosePipe(pipe); }
};

/// The first 1024 bytes of the task list, up to a NUL.
std::string ReadTaskList(const std::string& name) {
    constexpr std::size_t listSize = 1024;
    std::array<char, listSize + 1> list{};
    const std::unique_ptr<OSAL::Pipe, PipeCloser> pipe(OSAL::OpenPipe(OSAL::TaskListCommand(name)));
    if (pipe != nullptr)
        OSAL::ReadPipe(pipe.get(), list.data(), listSize);
    return list.data();
}

} // namespace

bool StartLocalDaemon(const std::string& name) {
    constexpr std::uint32_t startPauseMilliseconds = 2000;
    if (IsProcessRunning(name, false))
        return true;
    std::string directory;
    Utilities::GetModuleDirectory(directory);
    OSAL::ProcessInformation information;
    const bool started = StartProcess(directory, name, "", false, information);
    const std::uint32_t error = OSAL::GetLastError();
    OSAL::Sleep(startPauseMilliseconds);
    information.thread.Close();
    information.process.Close();
    if (!started)
        std::cerr << "Error occurred: Can't start SarvexTool daemon. Error code: " << error
                  << std::endl;
    return started;
}

bool IsProcessRunning(const std::string& name, bool requireTwo) {
    try {
        const std::string list = ReadTaskList(name);
        // The search is case-sensitive, the task list's own filter is not: an image listed in
        // another case is not found, and a second daemon is started. That is how the check works.
        const std::size_t first = list.find(name);
        if (list.empty() || first == std::string::npos)
            return false;
        if (name != "VEMO" && !requireTwo)
            return true;
        return list.find(name, first + 1) != std::string::npos;
    } catch (...) {
        Utilities::TakeCaughtException();
        return false;
    }
}

bool StartProcess(const std::string& directory, const std::string& name,
                  const std::string& arguments, bool newConsole,
                  OSAL::ProcessInformation& information) {
    // The directory ends in a separator already; the path holds two in a row. Without a directory
    // it is relative.
    const std::string separator = directory.empty() ? "" : std::string(1, OSAL::PathSeparator);
    const std::string path = directory + separator + name + OSAL::ExecutableSuffix;
    return OSAL::CreateChildProcess(path, "\"" + path + "\" " + arguments, directory, newConsole,
                                    information);
}
