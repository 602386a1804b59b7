#include "Tools/SarvexTool/Bench/Files/ExchangeLog.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"
#include "tests/Support/Files.h"

#include <signal.h>
#include <sys/resource.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace Bench {
namespace {

using testing::HasSubstr;
using TestSupport::ReadBytes;

/// A limit of the size of files, in the place of a disk that becomes full.
class LimitedFileSize {
public:
    explicit LimitedFileSize(rlim_t size) : m_previous(::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit limit{size, m_limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LimitedFileSize() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        ::signal(SIGXFSZ, m_previous);
    }
    LimitedFileSize(const LimitedFileSize&) = delete;
    LimitedFileSize& operator=(const LimitedFileSize&) = delete;

private:
    rlimit m_limit{};
    void (*m_previous)(int);
};

/// What a call on a full disk throws.
template <typename Call>
std::string ErrorOnFullDisk(rlim_t size, Call call) {
    const LimitedFileSize limited(size);
    try {
        call();
    } catch (const std::system_error& error) {
        return error.what();
    } catch (const BadFile& bad) {
        return bad.what();
    }
    return "none";
}

class RunDeviceTest : public testing::Test {
protected:
    static FinishedLine Line(LineNumber line) {
        return {.line = line, .outcome = {}, .row = "5,1,2\n"};
    }

    TestSupport::TemporaryDirectory directory;
    const std::string testFile = directory.Create("short.csv", std::string(100, 'x') + "\n");
    const std::string folder = directory.Path("run");
};

TEST_F(RunDeviceTest, ARowThatAFullDiskDoesNotTakeIsNotJournalled) {
    RunDirectory run = RunDirectory::Create(folder, testFile, {}, {});
    run.KeepHeader("Band,A, B\n");
    run.KeepLine(Line(2), "", 0);
    const std::string journal = ReadBytes(run.Files().journal);
    EXPECT_EQ(ErrorOnFullDisk(18, [&] { run.KeepLine(Line(3), "", 0); }),
              "cannot write " + run.Files().result + ": File too large");
    EXPECT_EQ(ReadBytes(run.Files().result), "Band,A, B\n5,1,2\n");
    EXPECT_EQ(ReadBytes(run.Files().journal), journal);
    EXPECT_EQ(run.LastLine(), 2u);
}

TEST_F(RunDeviceTest, ALineWhoseEntryAFullDiskDoesNotTakeIsRunAgain) {
    std::string journal;
    {
        RunDirectory run = RunDirectory::Create(folder, testFile, {}, {});
        run.KeepHeader("Band,A, B\n");
        run.KeepLine(Line(2), "", 0);
        journal = ReadBytes(run.Files().journal);
        EXPECT_EQ(ErrorOnFullDisk(journal.size() + 5, [&] { run.KeepLine(Line(3), "", 0); }),
                  "cannot write " + run.Files().journal + ": File too large");
        EXPECT_EQ(ReadBytes(run.Files().journal), journal);
    }
    const RunDirectory resumed = RunDirectory::Resume(folder, {});
    EXPECT_EQ(resumed.LastLine(), 2u);
    EXPECT_EQ(ReadBytes(resumed.Files().result), "Band,A, B\n5,1,2\n");
}

TEST_F(RunDeviceTest, FactsThatAFullDiskDoesNotTakeLeaveTheOldOnes) {
    RunDirectory run = RunDirectory::Create(folder, testFile, {}, {});
    run.Facts().startPassedOn = true;
    EXPECT_EQ(ErrorOnFullDisk(20, [&] { run.SaveFacts(); }),
              "cannot write " + run.Files().facts + ".part: File too large");
    EXPECT_FALSE(ReadRunFacts(run.Files().facts).startPassedOn);
    run.SaveFacts();
    EXPECT_TRUE(ReadRunFacts(run.Files().facts).startPassedOn);
}

TEST_F(RunDeviceTest, NothingIsLeftOfARunThatAFullDiskDoesNotTake) {
    EXPECT_EQ(ErrorOnFullDisk(50, [&] { RunDirectory::Create(folder, testFile, {}, {}); }),
              "cannot write " + folder + "/test-file.csv: File too large");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(RunDeviceTest, AnExchangeThatAFullDiskDoesNotTakeIsTold) {
    const std::string name = directory.Path("exchanges.jsonl");
    ExchangeLog log(name);
    EXPECT_EQ(ErrorOnFullDisk(10, [&] { log.Append({}); }),
              "cannot write " + name + ": File too large");
    EXPECT_EQ(ReadBytes(name), "");
}

TEST_F(RunDeviceTest, ASegmentThatAFullDiskDoesNotTakeIsTold) {
    const std::string name = directory.Path("lines.csv");
    EXPECT_EQ(ErrorOnFullDisk(10, [&] { WriteSegment(name, std::string(100, 'x'), {}); }),
              name + ": cannot be written (File too large)");
}

TEST_F(RunDeviceTest, AFolderThatCannotBeMadeIsTold) {
    EXPECT_THAT(ErrorOnFullDisk(RLIM_INFINITY,
                                [&] { RunDirectory::Create("/dev/null/run", testFile, {}, {}); }),
                HasSubstr("Not a directory"));
}

// A link to itself cannot be looked through, whoever asks.
TEST_F(RunDeviceTest, WhatCannotBeLookedAtIsNotTakenForMissing) {
    std::filesystem::create_symlink("loop", directory.Path("loop"));
    const std::string unseen = directory.Path("loop") + "/run";
    const std::string problem = "cannot be looked at: Too many levels of symbolic links";
    EXPECT_THAT(ErrorOnFullDisk(RLIM_INFINITY, [&] { RunDirectory::Resume(unseen, {}); }),
                HasSubstr(problem));
    EXPECT_THAT(
        ErrorOnFullDisk(RLIM_INFINITY, [&] { RunDirectory::Create(unseen, testFile, {}, {}); }),
        HasSubstr(problem));
}

} // namespace
} // namespace Bench
