#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace Bench {
namespace {

TEST(ShownTimeTest, MomentsAreShownInUtc) {
    struct Case {
        std::int64_t seconds;
        const char* day;
        const char* minute;
        const char* iso;
    };
    const Case cases[] = {{0, "1970-01-01", "1970-01-01 00:00", "1970-01-01T00:00:00Z"},
                          {-1, "1969-12-31", "1969-12-31 23:59", "1969-12-31T23:59:59Z"},
                          {1'773'043'509, "2026-03-09", "2026-03-09 08:05", "2026-03-09T08:05:09Z"},
                          {1'709'164'800, "2024-02-29", "2024-02-29 00:00", "2024-02-29T00:00:00Z"},
                          {std::numeric_limits<std::int64_t>::min(), "0000-01-01",
                           "0000-01-01 00:00", "0000-01-01T00:00:00Z"},
                          {std::numeric_limits<std::int64_t>::max(), "9999-12-31",
                           "9999-12-31 23:59", "9999-12-31T23:59:59Z"}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.seconds);
        EXPECT_EQ(ShownDay(each.seconds), each.day);
        EXPECT_EQ(ShownMinute(each.seconds), each.minute);
        EXPECT_EQ(IsoTime(each.seconds), each.iso);
    }
}

} // namespace
} // namespace Bench
