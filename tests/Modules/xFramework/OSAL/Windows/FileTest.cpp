#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/OSAL/Windows/FileAttributes.h"
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

struct KindCase {
    const char* what;
    DWORD attributes;
    DWORD reparseTag;
    PathKind kind;
};

constexpr DWORD archive = 0x20;
constexpr DWORD reparse = 0x400;
constexpr DWORD symbolicLink = 0xA000000C;
constexpr DWORD mountPoint = 0xA0000003;
constexpr PathKind archived{.isToBeArchived = true};

const KindCase kinds[] = {
    {"plain file", archive, 0, archived},
    {"plain file with a further attribute", archive | 0x1, 0, archived},
    {"plain file, not archived", 0x80, 0, {}},
    {"directory", 0x10, 0, {.isDirectory = true}},
    {"archived directory", 0x10 | archive, 0, {.isDirectory = true, .isToBeArchived = true}},
    {"symbolic link",
     archive | reparse,
     symbolicLink,
     {.isSymbolicLink = true, .isToBeArchived = true}},
    {"symbolic link, not archived", reparse, symbolicLink, {.isSymbolicLink = true}},
    {"other reparse point", archive | reparse, mountPoint, archived},
    {"reparse point whose tag cannot be told", archive | reparse, 0, archived},
    {"the tag without the attribute", archive, symbolicLink, archived},
    // All bits are set in this value, and yet there is nothing to look at.
    {"unreadable attributes", 0xFFFFFFFF, symbolicLink, {}},
};

TEST(FileAttributesTest, MakeALinkOnlyWithTheTagOfASymbolicLink) {
    for (const KindCase& each : kinds) {
        SCOPED_TRACE(each.what);
        const PathKind kind = KindOf(each.attributes, each.reparseTag);
        EXPECT_EQ(kind.isDirectory, each.kind.isDirectory);
        EXPECT_EQ(kind.isSymbolicLink, each.kind.isSymbolicLink);
        EXPECT_EQ(kind.isToBeArchived, each.kind.isToBeArchived);
    }
}

TEST(FileTest, OfADirectoryIsMarkedAsOne) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_TRUE(LookAtPath(directory.Path()).isDirectory);
    EXPECT_FALSE(OpenFileForReading(directory.Path()).IsOpen());
}

TEST(FileTest, CannotBeOpenedWhileSomeoneWritesIt) {
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

TEST(FileTest, EndsAsTextWhereAReadFails) {
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
