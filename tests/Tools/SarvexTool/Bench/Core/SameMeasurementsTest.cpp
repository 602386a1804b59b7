#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

using Numbers = std::vector<std::uint32_t>;

TEST(SameMeasurementsTest, RepeatsAreNumberedInTheirOrder) {
    CoreFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {{Setting::Chains, "AB"}, {Setting::Band, "5"}}, "1", "2"));
    builder.Add(fixture.RowOf(3, {{Setting::Band, "6"}}, "1", "2"));
    builder.Add(fixture.RowOf(4, {{Setting::Chains, "A"}, {Setting::Band, "5"}}, "1", ""));
    builder.Add(fixture.RowOf(5, {{Setting::Chains, "AB"}, {Setting::Band, "5"}}, "1", ""));
    builder.Add(fixture.RowOf(6, {}, "1", ""));
    // The chains of line 4 are other ones: the settings are the same only when all of them are.
    EXPECT_EQ(RepeatNumbers(builder.Take()), (Numbers{1, 1, 1, 1, 1, 2, 2, 3, 3}));
}

TEST(SameMeasurementsTest, GroupsRepeatsBesideEachOther) {
    CoreFixture fixture;
    RunResultBuilder builder;
    for (const char* band : {"5", "6", "5"})
        builder.Add(fixture.RowOf(2, {{Setting::Chains, "A"}, {Setting::Band, band}}, "1", ""));
    Numbers grouped;
    for (const HashedMeasurement& measurement : Grouped(builder.Take()))
        grouped.push_back(measurement.place);
    EXPECT_TRUE(grouped == (Numbers{0, 2, 1}) || grouped == (Numbers{1, 0, 2}));
}

} // namespace
} // namespace Bench
