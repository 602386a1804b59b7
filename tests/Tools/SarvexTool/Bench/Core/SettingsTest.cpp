#include "Tools/SarvexTool/Bench/Core/Settings.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

#include <iterator>

namespace Bench {
namespace {

TEST(SettingsTest, NamesAreTheClientsColumns) {
    const std::pair<Setting, const char*> names[] = {
        {Setting::Band, "Band"},
        {Setting::Chains, "Chains"},
        {Setting::Bandwidth, "Bandwidth"},
        {Setting::Channel, "Channel"},
        {Setting::BandwidthMode, "Bandwidth Mode"},
        {Setting::Rate, "Rate"},
        {Setting::Mode, "Mode"},
        {Setting::ResourceUnit, "Resource Unit"},
        {Setting::SpecificResourceUnit, "Specific Resource unit"},
        {Setting::LargeRuSize, "Large RU Size"}};
    EXPECT_EQ(std::size(names), SettingCount);
    for (const auto& [setting, name] : names)
        EXPECT_STREQ(NameOf(setting), name);
}

TEST(SettingsTest, AreEqualWhenEachIsTheSameTextOrMissingInBoth) {
    CoreFixture fixture;
    const Settings settings = fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS0"}});
    EXPECT_EQ(settings, fixture.Of({{Setting::Rate, "MCS0"}, {Setting::Band, "5"}}));
    EXPECT_NE(settings, fixture.Of({{Setting::Band, "5"}}));
    EXPECT_NE(settings, fixture.Of({{Setting::Band, "5.0"}, {Setting::Rate, "MCS0"}}));
    EXPECT_EQ(Settings(), fixture.Of({}));
}

TEST(SettingsTest, PoolKeepsEachTextOnce) {
    TextPool pool;
    const std::string* const first = pool.Keep("36");
    EXPECT_EQ(*first, "36");
    for (int number = 0; number < 1000; ++number)
        pool.Keep(std::to_string(number));
    EXPECT_EQ(pool.Keep("36"), first);
    EXPECT_NE(pool.Keep("37"), first);
    EXPECT_EQ(*pool.Keep(std::string_view("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(std::distance(pool.begin(), pool.end()), 1001);
}

} // namespace
} // namespace Bench
