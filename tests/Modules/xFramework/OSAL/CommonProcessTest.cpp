#include "Modules/xFramework/OSAL/Process.h"

#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Modules/xFramework/OSAL/LoopbackPeer.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace OSAL {
namespace {

/// What one read of at most size bytes gives of a command's output.
std::string ReadOutput(const std::string& command, std::size_t size) {
    std::array<char, 1024> buffer{};
    Pipe* const pipe = OpenPipe(command);
    if (pipe == nullptr)
        return "no pipe";
    const std::string output(buffer.data(), ReadPipe(pipe, buffer.data(), size));
    ClosePipe(pipe);
    return output;
}

TEST(CommonProcessTest, KnowsTheFileThatItRuns) {
    std::string path;
    ASSERT_TRUE(ReadModulePath(path));
    EXPECT_EQ(std::filesystem::path(path).stem().string(), "OSALTests");
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
    EXPECT_TRUE(std::filesystem::equivalent(ModulePathInUtf8(), path));
}

TEST(CommonProcessTest, HasANumber) {
    EXPECT_NE(ProcessId(), 0U);
    EXPECT_EQ(ProcessId(), ProcessId());
}

TEST(CommonProcessTest, KnowsItsEnvironment) {
    EXPECT_FALSE(EnvironmentVariable("PATH").value_or("").empty());
    EXPECT_EQ(EnvironmentVariable("SARVEX_TEST_NOT_SET"), std::nullopt);
}

TEST(CommonProcessTest, FindsWhatIsBesideIt) {
    std::string directory;
    ASSERT_EQ(Utilities::GetModuleDirectory(directory), 0);
    EXPECT_EQ(directory.back(), PathSeparator);
    std::string path;
    ReadModulePath(path);
    EXPECT_EQ(directory + std::filesystem::path(path).filename().string(), path);
}

TEST(CommonProcessTest, SleepsAndReturnsZero) {
    EXPECT_EQ(Sleep(0), 0);
    EXPECT_EQ(Sleep(1), 0);
}

TEST(CommonProcessTest, SleepsAtLeastAsLongAsAsked) {
    for (const std::uint32_t milliseconds : {20u, 1020u}) {
        const auto start = std::chrono::steady_clock::now();
        Sleep(milliseconds);
        // Windows counts in ticks of its clock and may end up to one tick early.
        EXPECT_GE(std::chrono::steady_clock::now() - start,
                  std::chrono::milliseconds(milliseconds - 16));
    }
}

TEST(CommonProcessPipeTest, CarriesTheOutputOfACommand) {
    EXPECT_EQ(ReadOutput("echo vemo", 4), "vemo");
}

TEST(CommonProcessPipeTest, IsReadOnlyAsFarAsAsked) {
    EXPECT_EQ(ReadOutput("echo 0123456789", 7), "0123456");
}

TEST(CommonProcessPipeTest, GathersOutputThatComesInPieces) {
    const std::string child = Utilities::PathBesideProgram("OSALTestsChild");
    EXPECT_EQ(ReadOutput(child + " echo first && " + child + " echo second", 1024),
              "[first][second]");
}

TEST(CommonProcessPipeTest, OfACommandThatDoesNotExistIsEmpty) {
    EXPECT_EQ(ReadOutput("no-such-command-anywhere 2>&1 >" +
                             std::string(PathSeparator == '/' ? "/dev/null" : "NUL") +
                             (PathSeparator == '/' ? " 2>/dev/null" : " 2>NUL"),
                         1024),
              "");
}

class CommonProcessChildTest : public testing::Test {
protected:
    /// The path as the launcher builds it: the directory's own separator, then one more.
    static std::string ExecutablePath(const std::string& name) {
        return Utilities::PathBesideProgram("") + PathSeparator + name + ExecutableSuffix;
    }

    TestSupport::TemporaryDirectory directory;
    LoopbackPeer peer;
    ProcessInformation information;
};

TEST_F(CommonProcessChildTest, RunsInTheDirectoryThatItIsGivenWithThisEnvironment) {
    // The environment keeps the text itself.
    static std::string variable = "OSAL_TESTS_CHILD=all";
    ::putenv(variable.data());
    directory.Create("port.txt", peer.Port());
    const std::string executable = ExecutablePath("OSALTestsChild");
    ASSERT_TRUE(CreateChildProcess(executable, "\"" + executable + "\" ", directory.Path(), false,
                                   information));
    peer.Accept();
    EXPECT_EQ(peer.ReceiveAll(), std::filesystem::canonical(directory.Path()).string() +
                                     "\nall inherited\n[" + executable + "]");
}

TEST_F(CommonProcessChildTest, ThatDoesNotExistLeavesItsErrorNumber) {
    constexpr std::uint32_t noSuchFile = 2;
    const std::string executable = ExecutablePath("no-such-program");
    EXPECT_FALSE(CreateChildProcess(executable, "\"" + executable + "\" ", directory.Path(), false,
                                    information));
    EXPECT_EQ(GetLastError(), noSuchFile);
}

TEST_F(CommonProcessChildTest, CannotRunInADirectoryThatDoesNotExist) {
    const std::string executable = ExecutablePath("OSALTestsChild");
    EXPECT_FALSE(CreateChildProcess(executable, "\"" + executable + "\" ",
                                    directory.Path("missing"), false, information));
    EXPECT_NE(GetLastError(), 0u);
}

} // namespace
} // namespace OSAL
