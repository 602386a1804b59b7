#include "Modules/xFramework/OSAL/File.h"

#include "tests/Support/Files.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace OSAL {
namespace {

// No test of symbolic links here: these tests run under wine, which follows the links of its host
// without telling, and making one needs a right of its own on Windows. Nor can the archive
// attribute be taken from a file there.

TEST(WindowsFile, OfADirectoryIsMarkedAsOne) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_TRUE(LookAtPath(directory.Path()).isDirectory);
    EXPECT_FALSE(OpenFileForReading(directory.Path()).IsOpen());
}

TEST(WindowsFile, CannotBeOpenedWhileSomeoneWritesIt) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Create("Socket.cfg", "8738");
    const HANDLE writer = ::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    // Sharing is for reading only: a file that someone is writing cannot be opened.
    EXPECT_FALSE(OpenFileForReading(path).IsOpen());
    ::CloseHandle(writer);
    OwnedHandle file = OpenFileForReading(path);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_TRUE(file.Close());
}

TEST(WindowsFile, EndsAsTextWhereAReadFails) {
    const std::string path = R"(\\.\pipe\sarvex-)" + std::to_string(::GetCurrentProcessId());
    const HANDLE pipe = ::CreateNamedPipeA(path.c_str(), PIPE_ACCESS_OUTBOUND,
                                           PIPE_TYPE_BYTE | PIPE_WAIT, 1, 64, 64, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    // A pipe that is closed has an end; one that its server disconnects fails the next read.
    const std::jthread server([pipe] {
        ::ConnectNamedPipe(pipe, nullptr);
        DWORD written = 0;
        EXPECT_TRUE(::WriteFile(pipe, "-exit 0", 7, &written, nullptr));
        ::FlushFileBuffers(pipe);
        EXPECT_TRUE(::DisconnectNamedPipe(pipe));
        ::CloseHandle(pipe);
    });
    EXPECT_EQ(ReadTextFile(path), "-exit 0");
}

} // namespace
} // namespace OSAL
