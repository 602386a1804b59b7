#include "Modules/xFramework/OSAL/Process.h"

#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace OSAL {
namespace {

std::string ReadOutput(const std::string& command) {
    std::array<char, 1024> buffer{};
    Pipe* const pipe = OpenPipe(command);
    const std::size_t count = ReadPipe(pipe, buffer.data(), buffer.size());
    ClosePipe(pipe);
    return std::string(buffer.data(), count);
}

/// Runs the child to its end; the exit code that the system keeps.
DWORD RunToItsEnd(const std::string& arguments) {
    const std::string executable = Utilities::PathBesideProgram("OSALTestsChild.exe ");
    ProcessInformation information;
    EXPECT_TRUE(CreateChildProcess(executable, "\"" + executable + "\" " + arguments,
                                   Utilities::PathBesideProgram(""), false, information));
    const auto process = reinterpret_cast<HANDLE>(information.process.Get());
    ::WaitForSingleObject(process, INFINITE);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process, &exitCode);
    EXPECT_TRUE(information.thread.Close());
    EXPECT_TRUE(information.process.Close());
    return exitCode;
}

TEST(ProcessTest, SeparatesPathsByBackslashesAndEndsExecutableNamesInABlank) {
    EXPECT_EQ(PathSeparator, '\\');
    EXPECT_STREQ(ExecutableSuffix, ".exe ");
}

TEST(ProcessTest, EndsWithTheWholeReturnCode) {
    for (const int returnCode : {0, 1, 10, 255, 256, 258, -1}) {
        SCOPED_TRACE(returnCode);
        EXPECT_EQ(ToExitStatus(returnCode), returnCode);
        EXPECT_EQ(RunToItsEnd("exit " + std::to_string(returnCode)),
                  static_cast<DWORD>(returnCode));
    }
}

TEST(ProcessTest, HandsWildcardsOverAsTheyAre) {
    const std::string child = Utilities::PathBesideProgram("OSALTestsChild");
    EXPECT_EQ(ReadOutput(child + " echo * ?* \"*.exe\" x*"), "[*][?*][*.exe][x*]");
}

TEST(ProcessTaskListTest, IsAskedForTheImageName) {
    const std::string command = TaskListCommand("vemo");
    EXPECT_EQ(command, "tasklist /FI \"IMAGENAME eq vemo.exe\"");
    EXPECT_EQ(command.find("vemo"), 27u);
}

} // namespace
} // namespace OSAL
