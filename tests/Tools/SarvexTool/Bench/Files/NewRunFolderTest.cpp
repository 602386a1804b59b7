#include "Tools/SarvexTool/Bench/Files/NewRunFolder.h"

#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;
using std::chrono::system_clock;
using testing::StartsWith;

const LockHolder holder{.processId = 1, .directory = "here", .since = "now"};

class NewRunFolderTest : public testing::Test {
protected:
    NewRunFolderTest() { fs::current_path(directory.Path()); }
    ~NewRunFolderTest() override { fs::current_path(before); }

    /// The name of the folder that a run gets without a name of its own. Before it makes one,
    /// happens is called with its name.
    std::string CreateAfter(const std::function<void(const std::string&)>& happens) const {
        const auto create = [&](const std::string& name) {
            happens(name);
            return RunDirectory::Create(name, testFile, {}, holder);
        };
        const auto newName = [&] { return NewRunName("short.csv", now); };
        return CreateUnderNewName(newName, create).Files().directory;
    }

    /// The file and the text of the problem that CreateAfter tells.
    template <typename Error>
    std::string ProblemAfter(const std::function<void(const std::string&)>& happens) const {
        try {
            CreateAfter(happens);
        } catch (const Error& bad) {
            return bad.File() + ": " + bad.Problems().at(0).text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    const std::string testFile = directory.Create("short.csv", "Band\n5\n");
    const fs::path before = fs::current_path();
    const system_clock::time_point now{seconds(1'773'043'500)};
    const std::string first = "runs/short-20260309-080500";
};

TEST_F(NewRunFolderTest, HasTheTestFilesNameAndTheTime) {
    EXPECT_EQ(NewRunName("/a b/Prüf lauf.csv", now), "runs/Prüf lauf-20260309-080500");
    fs::create_directories(first);
    EXPECT_EQ(NewRunName("short.csv", now), first + "-2");
    fs::create_directories(first + "-2");
    EXPECT_EQ(NewRunName("short.csv", now), first + "-3");
}

TEST_F(NewRunFolderTest, IsAnotherWhereSomebodyTakesItInThatMoment) {
    std::optional<OSAL::FileLock> beginning;
    std::optional<RunDirectory> begun;
    const std::string name = CreateAfter([&](const std::string& taken) {
        if (taken == first) {
            fs::create_directories(taken);
            beginning = TakeLock(RunFiles(taken).lock, taken, "the folder", holder);
        } else if (taken == first + "-2") {
            begun = RunDirectory::Create(taken, testFile, {}, holder);
        }
    });
    EXPECT_EQ(name, first + "-3");
}

TEST_F(NewRunFolderTest, IsNotToBlameForWhatElseIsInUse) {
    int calls = 0;
    const auto findDaemonInUse = [&](const std::string& name) {
        ++calls;
        fs::create_directories(name);
        throw InUse("127.0.0.1 port 1", "the daemon is in use");
    };
    EXPECT_EQ(ProblemAfter<InUse>(findDaemonInUse), "127.0.0.1 port 1: the daemon is in use");
    EXPECT_EQ(calls, 1);
}

TEST_F(NewRunFolderTest, IsToldWhereNoFolderCanBeMade) {
    TestSupport::WriteBytes("runs", "a file");
    EXPECT_THAT(ProblemAfter<BadOutput>([](const std::string&) {}),
                StartsWith(first + ": cannot be made the folder of a run ("));
}

} // namespace
} // namespace Bench
