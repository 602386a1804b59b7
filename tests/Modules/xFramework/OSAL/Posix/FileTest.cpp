#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Support/Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace OSAL {
namespace {

// Symbolic links are shown on this system only: the Windows tests run under wine, which follows
// the links of its host without telling.

TEST(FileSymbolicLinkTest, IsALinkWhateverItLeadsTo) {
    const TestSupport::TemporaryDirectory directory;
    directory.Create("file", "content");
    std::filesystem::create_directory(directory.Path("folder"));
    for (const std::string target : {"file", "folder", "nowhere"}) {
        SCOPED_TRACE(target);
        const std::string link = directory.Path("link-to-" + target);
        std::filesystem::create_symlink(target, link);
        EXPECT_TRUE(LookAtPath(link).isSymbolicLink);
        EXPECT_TRUE(LookAtPath(link).isToBeArchived);
        EXPECT_FALSE(LookAtPath(link).isDirectory);
        EXPECT_TRUE(Utilities::IsLink(link));
    }
    EXPECT_FALSE(Utilities::IsLink(directory.Path("file")));
}

TEST(FileDirectoryTest, IsNoLinkThoughItHasManyNames) {
    const TestSupport::TemporaryDirectory directory;
    std::filesystem::create_directories(directory.Path("folder/inner"));
    const std::string folder = directory.Path("folder");
    EXPECT_GT(CountNames(folder), 1u);
    EXPECT_FALSE(Utilities::IsLink(folder));
}

TEST(FileDirectoryTest, HoldsNothingToRead) {
    const TestSupport::TemporaryDirectory directory;
    char byte = 0;
    OwnedHandle file = OpenFileForReading(directory.Path());
    EXPECT_EQ(ReadFile(file, &byte, 1), 0u);
}

TEST(FileReadErrorTest, GivesAnEmptyText) {
    // A regular file by its kind, which opens; nothing is mapped at its start.
    const std::string memory = "/proc/self/mem";
    ASSERT_TRUE(std::filesystem::is_regular_file(memory));
    char byte = 0;
    OwnedHandle file = OpenFileForReading(memory);
    ASSERT_TRUE(file.IsOpen());
    ASSERT_EQ(::read(static_cast<int>(file.Get()), &byte, 1), -1);
    EXPECT_EQ(ReadTextFile(memory), "");
}

TEST(FileNamedPipeTest, IsOpenedWithoutWaitingForAWriter) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    char byte = 0;
    OwnedHandle file = OpenFileForReading(path);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(ReadFile(file, &byte, 1), 0u);
    EXPECT_TRUE(file.Close());
}

TEST(FileHandleTest, IsClosedOnce) {
    const TestSupport::TemporaryDirectory directory;
    OwnedHandle file = OpenFileForReading(directory.Create("file", ""));
    const Handle closed = file.Get();
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.Close());
    EXPECT_FALSE(CloseHandle(closed));
    EXPECT_FALSE(CloseHandle(InvalidHandle));
}

} // namespace
} // namespace OSAL
