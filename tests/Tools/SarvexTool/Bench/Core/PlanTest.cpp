#include "Tools/SarvexTool/Bench/Core/Plan.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace Bench {
namespace {

class PlanTest : public testing::Test {
protected:
    LineNumber Add(LineNumber line,
                   std::initializer_list<std::pair<Setting, const char*>> settings) {
        Settings own;
        for (const auto& [setting, text] : settings)
            own[setting] = pool.Keep(text);
        return builder.Add(line, own);
    }

    TextPool pool;
    PlanBuilder builder;
};

TEST_F(PlanTest, AMeasurementIsAChainOfAConfiguration) {
    Add(2, {{Setting::Chains, "AB"}});
    Add(3, {{Setting::Chains, "A"}});
    Add(4, {{Setting::Channel, "36"}});
    const Plan plan = builder.Take();
    EXPECT_EQ(plan.configurations, 3);
    EXPECT_EQ(plan.measurements, 4);
    EXPECT_EQ(plan.configurationsOfUnknownChains, 0);
}

TEST_F(PlanTest, ConfigurationsOfUnknownChainsAreCounted) {
    Add(2, {});
    Add(3, {{Setting::Chains, "C"}});
    Add(4, {{Setting::Chains, "B"}});
    const Plan plan = builder.Take();
    EXPECT_EQ(plan.measurements, 1);
    EXPECT_EQ(plan.configurationsOfUnknownChains, 2);
}

TEST_F(PlanTest, ALineRepeatsOneWithTheSameEffectiveSettings) {
    EXPECT_EQ(Add(2, {{Setting::Band, "5"}, {Setting::Channel, "36"}}), 0);
    EXPECT_EQ(Add(3, {{Setting::Channel, "40"}}), 0);
    EXPECT_EQ(Add(4, {{Setting::Channel, "36"}}), 2);
    EXPECT_EQ(Add(5, {}), 2);
    EXPECT_EQ(Add(6, {{Setting::Band, "36"}, {Setting::Channel, "5"}}), 0);
    const Plan plan = builder.Take();
    ASSERT_EQ(plan.distinct.size(), 3);
    EXPECT_EQ(plan.distinct[1].line, 3);
    EXPECT_EQ(*plan.distinct[1].settings[Setting::Band], "5");
    EXPECT_EQ(*plan.distinct[1].settings[Setting::Channel], "40");
}

TEST_F(PlanTest, AConfigurationTellsWhatItsLineWritesFromWhatItCarriesOver) {
    Add(2, {{Setting::Band, "5"}, {Setting::LargeRuSize, "none"}});
    Add(3, {{Setting::Channel, "40"}});
    const Plan plan = builder.Take();
    EXPECT_TRUE(plan.distinct[0].IsOwn(Setting::LargeRuSize));
    EXPECT_FALSE(plan.distinct[0].IsOwn(Setting::Channel));
    EXPECT_FALSE(plan.distinct[1].IsOwn(Setting::LargeRuSize));
    EXPECT_TRUE(plan.distinct[1].IsOwn(Setting::Channel));
}

TEST_F(PlanTest, SettingsThatTheFirstLineLacksAreUnsetThere) {
    Add(2, {{Setting::Band, "5"},
            {Setting::Rate, "MCS7"},
            {Setting::Mode, "SISO"},
            {Setting::Chains, "A"},
            {Setting::Bandwidth, "20"},
            {Setting::BandwidthMode, "HE"},
            {Setting::ResourceUnit, "26"},
            {Setting::SpecificResourceUnit, "0"}});
    Add(3, {{Setting::Channel, "36"}});
    const Plan plan = builder.Take();
    ASSERT_EQ(plan.unset.size(), 2);
    EXPECT_EQ(plan.unset[0].setting, Setting::Channel);
    EXPECT_EQ(plan.unset[0].line, 2);
    EXPECT_EQ(plan.unset[1].setting, Setting::LargeRuSize);
}

TEST_F(PlanTest, WithoutALineNothingIsUnset) {
    EXPECT_TRUE(builder.Take().unset.empty());
}

} // namespace
} // namespace Bench
