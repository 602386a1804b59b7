#include "Modules/xFramework/OSAL/FileLock.h"

#include "tests/Support/Files.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <system_error>

namespace OSAL {
namespace {

namespace fs = std::filesystem;

TEST(FileLockTest, OfAProcessThatWasKilledIsFree) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("run.lock");
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::optional<FileLock> lock = FileLock::TryLock(path, "the child");
        const char byte = lock ? 'y' : 'n';
        if (::write(ends[1], &byte, 1) == 1)
            ::pause();
        ::_exit(1);
    }
    char byte = 0;
    ASSERT_EQ(::read(ends[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y');
    EXPECT_FALSE(FileLock::TryLock(path, "the test"));
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(FileLock::TryLock(path, "the test"));
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(FileLockTest, LeavesAloneWhatALinkLeadsTo) {
    const TestSupport::TemporaryDirectory directory;
    const std::string target = directory.Create("target", "content");
    fs::create_symlink("target", directory.Path("link"));
    EXPECT_THROW(FileLock::TryLock(directory.Path("link"), "holder"), std::system_error);
    EXPECT_EQ(TestSupport::ReadBytes(target), "content");
}

class UserFolderTest : public testing::Test {
protected:
    ~UserFolderTest() override { fs::remove_all(path); }

    /// The text of the error; the folder where there is none.
    std::string Make() const {
        try {
            return MakeUserFolder(name);
        } catch (const std::system_error& error) {
            return error.what();
        }
    }

    const std::string name = "SarvexToolTests" + std::to_string(std::random_device()());
    const std::string path = "/tmp/" + name + "-" + std::to_string(::geteuid());
};

TEST_F(UserFolderTest, IsForItsOwnerAloneWhereverTemporaryFilesAre) {
    ::setenv("TMPDIR", "/no/such/folder", 1);
    EXPECT_EQ(Make(), path);
    ::unsetenv("TMPDIR");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
}

TEST_F(UserFolderTest, IsNotUsedWhenOthersMayWriteIt) {
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    fs::permissions(path, fs::perms::owner_all | fs::perms::others_write);
    EXPECT_EQ(Make(), "cannot keep from others " + path + ": Permission denied");
}

TEST_F(UserFolderTest, IsNoLinkAndNoFile) {
    fs::create_symlink("/", path);
    EXPECT_EQ(Make(), "cannot use " + path + ": Not a directory");
    fs::remove(path);
    TestSupport::WriteBytes(path, "");
    EXPECT_EQ(Make(), "cannot use " + path + ": Not a directory");
}

TEST_F(UserFolderTest, IsNotUsedWhenItIsSomebodyElses) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the administrator can give a folder away";
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    EXPECT_EQ(Make(), "cannot keep from others " + path + ": Permission denied");
}

} // namespace
} // namespace OSAL
