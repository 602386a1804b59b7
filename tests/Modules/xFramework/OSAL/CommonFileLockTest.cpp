#include "Modules/xFramework/OSAL/FileLock.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <utility>

namespace OSAL {
namespace {

using TestSupport::ReadBytes;

class CommonFileLockTest : public testing::Test {
protected:
    /// Another process that tries to lock a file, and lives until it is told to end.
    class Other {
    public:
        Other(const std::string& file, std::string end)
            : m_end(std::move(end)),
              m_pPipe(OpenPipe(Utilities::PathBesideProgram("OSALTestsChild") + " lock " + file +
                               " " + m_end)) {}
        ~Other() { End(); }
        Other(const Other&) = delete;
        Other& operator=(const Other&) = delete;

        /// "taken" or "other".
        std::string Said() {
            std::array<char, 5> buffer{};
            return std::string(buffer.data(), ReadPipe(m_pPipe, buffer.data(), buffer.size()));
        }

        /// It ends without giving back what it has.
        void End() {
            TestSupport::WriteBytes(m_end, "");
            if (m_pPipe != nullptr)
                ClosePipe(std::exchange(m_pPipe, nullptr));
        }

    private:
        std::string m_end;
        Pipe* m_pPipe;
    };

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("run.lock");
    const std::string end = directory.Path("end");
};

TEST_F(CommonFileLockTest, IsTakenOnceAndShowsItsHolder) {
    std::optional<FileLock> lock = FileLock::TryLock(path, "the first, with a long text");
    ASSERT_TRUE(lock);
    EXPECT_FALSE(FileLock::TryLock(path, "the second"));
    EXPECT_EQ(ReadBytes(path), "the first, with a long text");
    lock.reset();
    EXPECT_TRUE(FileLock::TryLock(path, "the third"));
    EXPECT_EQ(ReadBytes(path), "the third");
}

TEST_F(CommonFileLockTest, IsOfOneFileOnly) {
    const std::optional<FileLock> lock = FileLock::TryLock(path, "");
    EXPECT_TRUE(FileLock::TryLock(directory.Path("other.lock"), ""));
}

TEST_F(CommonFileLockTest, GoesWithTheOneThatItWasMovedTo) {
    std::optional<FileLock> lock = FileLock::TryLock(path, "");
    ASSERT_TRUE(lock);
    {
        const FileLock moved(std::move(*lock));
        lock.reset();
        EXPECT_FALSE(FileLock::TryLock(path, ""));
    }
    EXPECT_TRUE(FileLock::TryLock(path, ""));
}

TEST_F(CommonFileLockTest, IsNotTakenByAnotherProcess) {
    const std::optional<FileLock> lock = FileLock::TryLock(path, "the tests");
    Other other(path, end);
    EXPECT_EQ(other.Said(), "other");
    EXPECT_EQ(ReadBytes(path), "the tests");
}

TEST_F(CommonFileLockTest, OfAnotherProcessIsFreeWhenThatHasEnded) {
    Other other(path, end);
    ASSERT_EQ(other.Said(), "taken");
    EXPECT_FALSE(FileLock::TryLock(path, "the tests"));
    EXPECT_EQ(ReadBytes(path), "the tests' child");
    other.End();
    EXPECT_TRUE(FileLock::TryLock(path, "the tests"));
}

TEST_F(CommonFileLockTest, IsNotInheritedByAChildThatLivesLonger) {
    std::optional<FileLock> lock = FileLock::TryLock(path, "the tests");
    Other other(directory.Path("other.lock"), end);
    ASSERT_EQ(other.Said(), "taken");
    lock.reset();
    EXPECT_TRUE(FileLock::TryLock(path, "the tests"));
}

TEST_F(CommonFileLockTest, OfAFileThatCannotBeOpenedIsTold) {
    const std::string missing = directory.Path("none/run.lock");
    try {
        FileLock::TryLock(missing, "");
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::string(error.what()).find("cannot open " + missing + ": "), 0u);
    }
}

TEST_F(CommonFileLockTest, HasANameInUtf8) {
    EXPECT_TRUE(FileLock::TryLock(directory.Path() + "/Prüf lauf Ω.lock", ""));
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(directory.Path()) /
                                        std::filesystem::path(u8"Prüf lauf Ω.lock")));
}

TEST(CommonUserFolderTest, IsMadeOnceAndCanBeWritten) {
    const std::string name = "SarvexToolTests" + std::to_string(std::random_device()());
    const std::string folder = MakeUserFolder(name);
    EXPECT_NE(folder.find(name), std::string::npos);
    EXPECT_EQ(MakeUserFolder(name), folder);
    EXPECT_TRUE(FileLock::TryLock(folder + "/a lock", ""));
    EXPECT_GT(std::filesystem::remove_all(std::u8string(folder.begin(), folder.end())), 1u);
}

} // namespace
} // namespace OSAL
