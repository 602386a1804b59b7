#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/OutputFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultTree.h"
#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"
#include "tests/Support/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <iostream>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using TestSupport::ReadBytes;

TEST(DeviceTest, ADeviceIsWrittenAndNotReplaced) {
    WriteOutput("/dev/null", std::cout, "text");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(DeviceTest, APipeIsWrittenByTheNameThatAShellGivesIt) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    // As in --json >(jq .passed)
    WriteOutput("/dev/fd/" + std::to_string(ends[1]), std::cout, "text");
    ::close(ends[1]);
    std::array<char, 16> bytes{};
    const ssize_t count = ::read(ends[0], bytes.data(), bytes.size());
    ::close(ends[0]);
    EXPECT_EQ(std::string(bytes.data(), static_cast<std::size_t>(count)), "text");
}

TEST(DeviceTest, AFullDiskIsTold) {
    try {
        WriteOutput("/dev/full", std::cout, "text");
        FAIL() << "nothing was thrown";
    } catch (const BadOutput& bad) {
        EXPECT_EQ(bad.Problems().at(0).text,
                  "cannot be written to its end (No space left on device)");
    }
}

TEST(DeviceTest, ADiskThatIsFullBeforeTheEndIsTold) {
    OutputFile file("/dev/full", std::cout);
    // The second piece finds the first one refused.
    file.Stream() << std::string(100'000, 'a') << std::string(100'000, 'b');
    errno = 0;
    try {
        file.Finish();
        FAIL() << "nothing was thrown";
    } catch (const BadOutput& bad) {
        EXPECT_EQ(bad.Problems().at(0).text,
                  "cannot be written to its end (No space left on device)");
    }
}

TEST(DeviceTest, ATreeOnAFullDiskLeavesTheFormerOne) {
    const TestSupport::TemporaryDirectory directory;
    const std::string rows = directory.Create("result.csv", ",Chain-A Power, Chain B Power\n");
    const std::string tree = directory.Create("result.xml", "former");
    fs::create_symlink("/dev/full", tree + ".part");
    try {
        WriteResultTree({rows, "", "US"}, tree);
        FAIL() << "nothing was thrown";
    } catch (const BadOutput& bad) {
        EXPECT_EQ(bad.Problems().at(0).text,
                  "cannot be written to its end (No space left on device)");
    }
    EXPECT_EQ(ReadBytes(tree), "former");
    EXPECT_FALSE(fs::is_symlink(tree + ".part"));
}

TEST(DeviceTest, ATreeThatIsAPipeIsNotWaitedFor) {
    const TestSupport::TemporaryDirectory directory;
    const std::string pipe = directory.Path("result.xml");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(ReadResultTree(pipe).whyUnknown, "result.xml cannot be read");
}

TEST(DeviceTest, ALinkStaysAndLeadsToTheNewFile) {
    const TestSupport::TemporaryDirectory directory;
    const std::string target = directory.Create("target.csv", "old");
    fs::create_symlink("target.csv", directory.Path("link.csv"));
    fs::create_symlink("new.csv", directory.Path("dangling.csv"));
    WriteOutput(directory.Path("link.csv"), std::cout, "first");
    WriteOutput(directory.Path("dangling.csv"), std::cout, "second");
    EXPECT_EQ(ReadBytes(target), "first");
    EXPECT_EQ(ReadBytes(directory.Path("new.csv")), "second");
    EXPECT_TRUE(fs::is_symlink(directory.Path("link.csv")));
}

TEST(DeviceTest, LinksThatLeadToEachOtherAreNotReplaced) {
    const TestSupport::TemporaryDirectory directory;
    fs::create_symlink("second.csv", directory.Path("first.csv"));
    fs::create_symlink("first.csv", directory.Path("second.csv"));
    EXPECT_THROW(WriteOutput(directory.Path("first.csv"), std::cout, "text"), BadOutput);
    EXPECT_TRUE(fs::is_symlink(directory.Path("first.csv")));
    EXPECT_TRUE(fs::is_symlink(directory.Path("second.csv")));
}

TEST(DeviceTest, AnOutputIsNotTheFileThatStandardInputIsReadFrom) {
    const TestSupport::TemporaryDirectory directory;
    const std::string file = directory.Create("in.csv", "Band\n");
    const int saved = ::dup(STDIN_FILENO);
    const int opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::dup2(opened, STDIN_FILENO), STDIN_FILENO);
    EXPECT_EQ(ProblemOfNames({"-"}, {file}), "the output " + file + " would replace the input -");
    EXPECT_EQ(ProblemOfNames({}, {"-", file}), std::nullopt);
    EXPECT_EQ(ProblemOfNames({"-"}, {directory.Path("other.csv")}), std::nullopt);
    ::dup2(saved, STDIN_FILENO);
    ::close(saved);
    ::close(opened);
}

TEST(DeviceTest, TheNewFileHasThePermissionsOfTheOldOne) {
    const TestSupport::TemporaryDirectory directory;
    const std::string target = directory.Create("target.csv", "old");
    constexpr auto wanted = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(target, wanted);
    WriteOutput(target, std::cout, "new");
    EXPECT_EQ(fs::status(target).permissions(), wanted);
}

TEST(DeviceTest, AnOutputIsNoInputThroughALink) {
    const TestSupport::TemporaryDirectory directory;
    const std::string input = directory.Create("in.csv", "Band\n");
    const std::string link = directory.Path("link.csv");
    fs::create_symlink("in.csv", link);
    EXPECT_EQ(ProblemOfNames({input}, {link}),
              "the output " + link + " would replace the input " + input);
    const std::string dangling = directory.Path("dangling.csv");
    fs::create_symlink("out.csv", dangling);
    EXPECT_EQ(ProblemOfNames({input}, {directory.Path("out.csv"), dangling}),
              "the output " + dangling + " would replace the output " + directory.Path("out.csv"));
}

} // namespace
} // namespace Bench
