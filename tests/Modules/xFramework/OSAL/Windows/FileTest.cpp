#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Support/Files.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace OSAL {
namespace {

// No test of symbolic links here: these tests run under wine, which follows the links of its host
// without telling, and making one needs a right of its own on Windows.

TEST(WindowsFile, AttributesAreThoseOfTheSystem) {
    EXPECT_EQ(InvalidFileAttributes, INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(ArchiveAttribute, static_cast<std::uint32_t>(FILE_ATTRIBUTE_ARCHIVE));
    EXPECT_EQ(ReparsePointAttribute, static_cast<std::uint32_t>(FILE_ATTRIBUTE_REPARSE_POINT));
    EXPECT_EQ(SymbolicLinkTag, static_cast<std::uint32_t>(IO_REPARSE_TAG_SYMLINK));
    EXPECT_EQ(reinterpret_cast<HANDLE>(InvalidHandle), INVALID_HANDLE_VALUE);
}

TEST(WindowsFile, OfADirectoryIsMarkedAsOne) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_NE(ReadFileAttributes(directory.Path()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_EQ(OpenFileForReading(directory.Path()), InvalidHandle);
}

TEST(WindowsFile, CannotBeOpenedWhileSomeoneWritesIt) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Create("Socket.cfg", "8738");
    const HANDLE writer = ::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    // Sharing is for reading only: a file that someone is writing cannot be opened.
    EXPECT_EQ(OpenFileForReading(path), InvalidHandle);
    ::CloseHandle(writer);
    const Handle file = OpenFileForReading(path);
    EXPECT_NE(file, InvalidHandle);
    EXPECT_TRUE(CloseHandle(file));
}

} // namespace
} // namespace OSAL
