#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <optional>

namespace Bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::system_clock;

TEST(UtcTimeTest, IsIso8601ToTheMillisecond) {
    EXPECT_EQ(UtcTime(system_clock::time_point()), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(UtcTime(system_clock::time_point(seconds(1'773'043'500) + milliseconds(7))),
              "2026-03-09T08:05:00.007Z");
    EXPECT_EQ(UtcTime(system_clock::time_point(seconds(1'709'251'199) + milliseconds(999))),
              "2024-02-29T23:59:59.999Z");
}

TEST(UtcTimeTest, IsReadAsItIsWritten) {
    for (const auto moment : {milliseconds(0), milliseconds(1'773'043'500'007),
                              milliseconds(1'709'251'199'999), milliseconds(-1)}) {
        const system_clock::time_point time(moment);
        EXPECT_EQ(ParseUtcTime(UtcTime(time)), time) << moment.count();
    }
    EXPECT_EQ(ParseUtcTime("2026-03-09T08:05:00Z"),
              system_clock::time_point(seconds(1'773'043'500)));
}

TEST(UtcTimeTest, NoOtherTextIsOne) {
    for (const char* text :
         {"", "2026-03-09", "2026-03-09T08:05:00", "2026-03-09 08:05:00Z", "2026-3-9T08:05:00Z",
          "2026-02-29T08:05:00Z", "2026-13-01T08:05:00Z", "2026-03-09T24:00:00Z",
          "2026-03-09T08:60:00Z", "2026-03-09T08:05:60Z", "2026-03-09T08:05:00.1Z",
          "2026-03-09T08:05:00.1234Z", "2026-03-09T08:05:00.Z", "2026-03-09T08:05:00ZZ",
          "2026-03-09T08:05:00+01:00", "+026-03-09T08:05:00Z", "2026-03-09T08:05Z"})
        EXPECT_EQ(ParseUtcTime(text), std::nullopt) << text;
}

TEST(UtcTimeTest, WhatTheClockCannotCountIsNoTime) {
    for (const char* day : {"0000-01-01", "1677-12-31", "2262-01-01", "9999-12-31"}) {
        EXPECT_EQ(ParseUtcDay(day), std::nullopt) << day;
        EXPECT_EQ(ParseUtcTime(day + std::string("T00:00:00Z")), std::nullopt) << day;
    }
    EXPECT_EQ(UtcTime(ParseUtcTime("2261-12-31T23:59:59Z").value()), "2261-12-31T23:59:59.000Z");
    EXPECT_EQ(UtcTime(ParseUtcDay("1678-01-01").value()), "1678-01-01T00:00:00.000Z");
}

TEST(UtcTimeTest, ADayBeginsWithItsFirstMoment) {
    EXPECT_EQ(ParseUtcDay("2026-03-09"), ParseUtcTime("2026-03-09T00:00:00Z"));
    for (const char* text : {"", "2026-03", "2026-03-09T", "2026-02-30", "26-03-09", "2026-03-09 "})
        EXPECT_EQ(ParseUtcDay(text), std::nullopt) << text;
}

std::filesystem::file_time_type At(std::chrono::seconds sinceEpoch) {
    return std::chrono::file_clock::from_sys(std::chrono::sys_seconds(sinceEpoch));
}

TEST(UtcTimeInWordsTest, AMomentIsTheMinuteThatHasBegun) {
    EXPECT_EQ(InWords(At(std::chrono::seconds(0))), "1970-01-01 00:00 UTC");
    EXPECT_EQ(InWords(At(std::chrono::seconds(59))), "1970-01-01 00:00 UTC");
    EXPECT_EQ(InWords(At(std::chrono::seconds(951'827'696))), "2000-02-29 12:34 UTC");
}

TEST(UtcTimeLastWrittenTest, AFilesTimeIsThatOfItsLastWriting) {
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.Create("result.csv", "Band\n");
    std::filesystem::last_write_time(PathOf(name), At(std::chrono::seconds(951'827'696)));
    EXPECT_EQ(LastWritten(name), "2000-02-29 12:34 UTC");
}

TEST(UtcTimeLastWrittenTest, WhatIsNoFileHasNone) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_EQ(LastWritten("-"), std::nullopt);
    EXPECT_EQ(LastWritten(directory.Path("none.csv")), std::nullopt);
    EXPECT_EQ(LastWritten(directory.Path("")), std::nullopt);
}

} // namespace
} // namespace Bench
