#include "Tools/SarvexTool/Bench/Files/FileTime.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <chrono>

namespace Bench {
namespace {

std::filesystem::file_time_type At(std::chrono::seconds sinceEpoch) {
    return std::chrono::file_clock::from_sys(std::chrono::sys_seconds(sinceEpoch));
}

TEST(FileTimeTest, AMomentIsTheMinuteThatHasBegun) {
    EXPECT_EQ(InWords(At(std::chrono::seconds(0))), "1970-01-01 00:00 UTC");
    EXPECT_EQ(InWords(At(std::chrono::seconds(59))), "1970-01-01 00:00 UTC");
    EXPECT_EQ(InWords(At(std::chrono::seconds(951'827'696))), "2000-02-29 12:34 UTC");
}

TEST(FileTimeTest, AFilesTimeIsThatOfItsLastWriting) {
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.Create("result.csv", "Band\n");
    std::filesystem::last_write_time(PathOf(name), At(std::chrono::seconds(951'827'696)));
    EXPECT_EQ(LastWritten(name), "2000-02-29 12:34 UTC");
}

TEST(FileTimeTest, WhatIsNoFileHasNone) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_EQ(LastWritten("-"), std::nullopt);
    EXPECT_EQ(LastWritten(directory.Path("none.csv")), std::nullopt);
    EXPECT_EQ(LastWritten(directory.Path("")), std::nullopt);
}

} // namespace
} // namespace Bench
