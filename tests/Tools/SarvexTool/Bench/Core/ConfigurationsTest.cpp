#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(ConfigurationsTest, OnlyThreeValuesOfChainsNameChains) {
    CoreFixture fixture;
    EXPECT_TRUE(ChainsOf(fixture.Text("A")).a);
    EXPECT_FALSE(ChainsOf(fixture.Text("A")).b);
    EXPECT_FALSE(ChainsOf(fixture.Text("B")).a);
    EXPECT_TRUE(ChainsOf(fixture.Text("B")).b);
    EXPECT_EQ(ChainsOf(fixture.Text("AB")).Count(), 2);
    for (const char* text : {"BA", "ab", "A ", "A+B", "", "1"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(ChainsOf(fixture.Text(text)).AreKnown());
    }
    EXPECT_FALSE(ChainsOf(nullptr).AreKnown());
}

class ConfigurationsCarriedTest : public testing::Test {
protected:
    void Write(LineNumber line, CoreFixture::Cells cells, bool isAccepted) {
        carried.Write(line, fixture.Of(cells));
        before = carried.FirstUncertain();
        carried.Judge(isAccepted);
    }

    /// What is uncertain in the line written last, as "SETTING since LINE", or nothing.
    std::string Uncertain() const {
        return before.since == 0
                   ? ""
                   : std::string(NameOf(before.setting)) + " since " + std::to_string(before.since);
    }

    CoreFixture fixture;
    CarriedSettings carried;
    CarriedSettings::Uncertain before;
};

TEST_F(ConfigurationsCarriedTest, SettingStaysUntilALineWritesAnother) {
    EXPECT_EQ(carried.Effective(), Settings());
    Write(2, {{Setting::Band, "5"}, {Setting::Channel, "36"}}, true);
    Write(3, {{Setting::Channel, "40"}}, true);
    EXPECT_EQ(carried.Effective(), fixture.Of({{Setting::Band, "5"}, {Setting::Channel, "40"}}));
    Write(4, {}, true);
    EXPECT_EQ(carried.Effective(), fixture.Of({{Setting::Band, "5"}, {Setting::Channel, "40"}}));
    EXPECT_EQ(Uncertain(), "");
}

TEST_F(ConfigurationsCarriedTest, WhatARefusedLineWroteIsUncertainInTheLinesAfterIt) {
    Write(2, {{Setting::Band, "5"}, {Setting::Channel, "36"}}, true);
    Write(3, {{Setting::Channel, "500"}}, false);
    EXPECT_EQ(Uncertain(), "") << "the line's own settings are what it was sent with";
    Write(4, {{Setting::Band, "6"}}, true);
    EXPECT_EQ(Uncertain(), "Channel since 3");
    Write(5, {{Setting::Channel, "40"}}, true);
    EXPECT_EQ(Uncertain(), "");
    Write(6, {}, true);
    EXPECT_EQ(Uncertain(), "");
}

TEST_F(ConfigurationsCarriedTest, LineThatOnlyCarriesNothingNewMakesNothingUncertain) {
    Write(2, {{Setting::Band, "5"}}, true);
    Write(3, {}, false);
    Write(4, {}, true);
    EXPECT_EQ(Uncertain(), "");
}

TEST_F(ConfigurationsCarriedTest, RefusedLineThatWritesAnUncertainSettingAgainMovesItsLine) {
    Write(2, {{Setting::Band, "5"}, {Setting::Rate, "MCS0"}}, false);
    Write(3, {{Setting::Band, "6"}}, false);
    Write(4, {}, true);
    EXPECT_EQ(Uncertain(), "Band since 3");
    Write(5, {{Setting::Band, "6"}}, true);
    EXPECT_EQ(Uncertain(), "Rate since 2");
}

TEST_F(ConfigurationsCarriedTest, FirstUncertainFollowsTheColumnsOrder) {
    Write(2, {{Setting::Rate, "MCS0"}}, false);
    Write(3, {{Setting::Chains, "A"}}, false);
    Write(4, {}, true);
    EXPECT_EQ(Uncertain(), "Chains since 3");
}

TEST_F(ConfigurationsCarriedTest, ALineThatWasSentWholeReliesOnNoOther) {
    Write(2, {{Setting::Band, "5"}, {Setting::Channel, "36"}}, false);
    carried.WriteAll(3, fixture.Of({{Setting::Channel, "40"}}));
    EXPECT_EQ(carried.FirstUncertain().since, 0u);
    EXPECT_EQ(carried.Effective(), fixture.Of({{Setting::Band, "5"}, {Setting::Channel, "40"}}));
    carried.Judge(false);
    Write(4, {{Setting::Channel, "44"}}, true);
    EXPECT_EQ(Uncertain(), "Band since 3") << "line 3 has sent the band too";
    carried.WriteAll(5, fixture.Of({}));
    EXPECT_EQ(carried.FirstUncertain().since, 0u);
}

} // namespace
} // namespace Bench
