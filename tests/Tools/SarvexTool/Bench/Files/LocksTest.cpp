#include "Tools/SarvexTool/Bench/Files/Locks.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <random>
#include <string>

namespace Bench {
namespace {

const LockHolder holder{
    .processId = 4711, .directory = "/home/a b/runs/short", .since = "2026-03-09T08:05:00.007Z"};

/// What is told about a lock that is taken a second time.
template <typename Take>
std::string RefusalOf(Take take) {
    try {
        take();
    } catch (const InUse& inUse) {
        return inUse.File() + ": " + inUse.Problems().at(0).text;
    }
    return "none";
}

TEST(LocksTest, TheSecondOneIsToldWhoTheFirstIs) {
    const TestSupport::TemporaryDirectory directory;
    const std::string file = directory.Path("run.lock");
    std::optional<OSAL::FileLock> lock = TakeLock(file, "runs/x", "the run", holder);
    EXPECT_EQ(
        RefusalOf([&] { TakeLock(file, "runs/x", "the run", {}); }),
        "runs/x: the run is in use by process 4711, since 2026-03-09T08:05:00.007Z, with the run in "
        "/home/a b/runs/short");
    lock.reset();
    EXPECT_EQ(RefusalOf([&] { TakeLock(file, "runs/x", "the run", {}); }), "none");
}

TEST(LocksTest, AHolderWithoutAWordIsAnotherProcess) {
    const TestSupport::TemporaryDirectory directory;
    const std::string file = directory.Path("run.lock");
    const std::optional<OSAL::FileLock> lock = OSAL::FileLock::TryLock(file, "");
    EXPECT_EQ(RefusalOf([&] { TakeLock(file, "runs/x", "the run", {}); }),
              "runs/x: the run is in use by another process");
}

TEST(LocksTest, AHolderWithoutARunIsToldWithoutOne) {
    const TestSupport::TemporaryDirectory directory;
    const std::string file = directory.Path("run.lock");
    const OSAL::FileLock lock =
        TakeLock(file, "runs/x", "the run", {.processId = 4711, .directory = "", .since = "now"});
    EXPECT_EQ(RefusalOf([&] { TakeLock(file, "runs/x", "the run", {}); }),
              "runs/x: the run is in use by process 4711, since now");
}

/// Addresses that no daemon has, for other tests may run meanwhile.
class DaemonLockTest : public testing::Test {
protected:
    ~DaemonLockTest() override {
        for (const std::string& file : {DaemonLockFile(host, 1), DaemonLockFile(host, 2)})
            std::filesystem::remove(std::u8string(file.begin(), file.end()));
    }

    const std::string host = "a:b/ö" + std::to_string(std::random_device()());
};

TEST_F(DaemonLockTest, IsOfOneAddress) {
    const OSAL::FileLock lock = LockDaemon(host, 1, holder);
    EXPECT_EQ(
        RefusalOf([&] { LockDaemon(host, 1, {}); }),
        host +
            " port 1: the daemon is in use by process 4711, since 2026-03-09T08:05:00.007Z, with the run "
            "in /home/a b/runs/short");
    EXPECT_EQ(RefusalOf([&] { LockDaemon(host, 2, {}); }), "none");
}

TEST_F(DaemonLockTest, HasAFileOfItsOwnForEachAddress) {
    const std::string file = DaemonLockFile("127.0.0.1", 8738);
    EXPECT_EQ(file.substr(file.find_last_of('/')), "/daemon-127.0.0.1-8738.lock");
    EXPECT_NE(DaemonLockFile("::1", 1).find("/daemon-%3a%3a1-1.lock"), std::string::npos);
    EXPECT_NE(DaemonLockFile("A/b", 1), DaemonLockFile("a/b", 1));
    EXPECT_NE(DaemonLockFile("A/b", 1).find("/daemon-%41%2fb-1.lock"), std::string::npos);
}

} // namespace
} // namespace Bench
