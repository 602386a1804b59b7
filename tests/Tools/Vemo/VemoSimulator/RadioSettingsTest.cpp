#include "Tools/Vemo/VemoSimulator/RadioSettings.h"

#include <gtest/gtest.h>

#include <set>

namespace VemoSimulator {

TEST(RadioSettingsTest, TheTableIsInTheOrderOfTheEnumeration) {
    std::size_t index = 0;
    for (const SettingRow& row : SettingTable()) {
        SCOPED_TRACE(row.option);
        EXPECT_EQ(static_cast<std::size_t>(row.setting), index++);
    }
    EXPECT_EQ(index, SettingCount);
}

TEST(RadioSettingsTest, ANewDeviceHoldsAcceptedValues) {
    const RadioSettings settings;
    for (const SettingRow& row : SettingTable()) {
        SCOPED_TRACE(row.option);
        EXPECT_EQ(settings.Get(row.setting), row.initialValue);
        EXPECT_EQ(AcceptedValue(row.setting, row.initialValue), row.initialValue);
    }
}

TEST(RadioSettingsTest, AcceptedValuesTakeTheFormOfTheDocumentation) {
    const struct {
        Setting setting;
        const char* text;
        const char* value;
    } rows[] = {
        {Setting::Band, "2.4", "2.4"},
        {Setting::Chains, "ab", "AB"},
        {Setting::Bandwidth, "320", "320"},
        {Setting::Channel, "1", "1"},
        {Setting::Channel, "0036", "36"},
        {Setting::Channel, "233", "233"},
        {Setting::BandwidthMode, "vht", "VHT"},
        {Setting::Rate, "5.5", "5.5"},
        {Setting::Rate, "r1", "R1"},
        {Setting::Rate, "he-mcs11", "HE-MCS11"},
        {Setting::TransmissionMode, "mimo", "MIMO"},
        {Setting::ResourceUnit, "4X996", "4x996"},
        {Setting::SpecificResourceUnit, "0", "0"},
        {Setting::SpecificResourceUnit, "147", "147"},
        {Setting::LargeResourceUnit, "996+484+242", "996+484+242"},
        {Setting::Mode, "TX_MODULATED", "tx_modulated"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(AcceptedValue(row.setting, row.text), row.value);
    }
}

TEST(RadioSettingsTest, OtherValuesAreNotAccepted) {
    const struct {
        Setting setting;
        const char* text;
    } rows[] = {
        {Setting::Band, "7"},
        {Setting::Band, ""},
        {Setting::Band, "  "},
        {Setting::Chains, "A+B"},
        {Setting::Bandwidth, "80 MHz"},
        {Setting::Channel, "0"},
        {Setting::Channel, "234"},
        {Setting::Channel, "-1"},
        {Setting::Channel, "thirty-six"},
        {Setting::Channel, "18446744073709551652"},
        {Setting::Rate, "MCS14"},
        {Setting::Rate, "HE-MCS12"},
        {Setting::SpecificResourceUnit, "148"},
        {Setting::Mode, "-wifi-start"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(AcceptedValue(row.setting, row.text), std::nullopt);
    }
}

TEST(RadioSettingsTest, ValuesAreDescribedInOneLine) {
    EXPECT_EQ(DescribeValues(Setting::Chains), "A, B, AB");
    EXPECT_EQ(DescribeValues(Setting::Channel), "1 to 233");
    EXPECT_EQ(DescribeValues(Setting::SpecificResourceUnit), "0 to 147");
    EXPECT_EQ(DescribeValues(Setting::Rate),
              "1, 2, 5.5, 11, 6, 9, 12, 18, 24, 36, 48, 54, MCS0 to MCS13, R0 to R13, HT-MCS0 to "
              "HT-MCS7, VHT-MCS0 to VHT-MCS9, HE-MCS0 to HE-MCS11, EHT-MCS0 to EHT-MCS13");
}

TEST(RadioSettingsTest, EachRateHasANameOfItsOwn) {
    const auto names = RateNames();
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());
    // 12 legacy rates and the indices of six families.
    EXPECT_EQ(names.size(), 12U + 14 + 14 + 8 + 10 + 12 + 14);
}

TEST(RadioSettingsTest, FasterRatesGetLessPower) {
    const struct {
        const char* name;
        int backOff;
    } rows[] = {{"1", 0},          {"2", 0},          {"5.5", 0},        {"11", 0},
                {"6", 0},          {"9", 0},          {"12", 50},        {"18", 50},
                {"24", 100},       {"36", 100},       {"48", 200},       {"54", 250},
                {"MCS0", 0},       {"MCS1", 0},       {"MCS2", 50},      {"MCS3", 100},
                {"MCS5", 200},     {"MCS6", 250},     {"MCS8", 350},     {"MCS12", 600},
                {"MCS4", 150},     {"R13", 700},      {"HT-MCS7", 300},  {"VHT-MCS9", 400},
                {"HE-MCS10", 450}, {"HE-MCS11", 500}, {"EHT-MCS13", 700}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(RateBackOff(row.name), row.backOff);
    }
}

} // namespace VemoSimulator
