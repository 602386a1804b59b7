#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace Bench
