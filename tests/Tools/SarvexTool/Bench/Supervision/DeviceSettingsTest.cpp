#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

OwnSettings Own(Setting setting, const std::string& text) {
    OwnSettings settings;
    settings.at(static_cast<std::size_t>(setting)) = text;
    return settings;
}

TEST(DeviceSettingsTest, LaterSettingsReplaceEarlierOnesInTheOrderOfTheColumns) {
    DeviceSettings device;
    EXPECT_THAT(device.Command(), IsEmpty());
    device.Accept(Own(Setting::Rate, "MCS0"));
    device.Accept(Own(Setting::Band, "5"));
    device.Accept(Own(Setting::Rate, "two words"));
    device.Accept({});
    EXPECT_THAT(device.Command(), ElementsAre("-wifi-band", "5", "-wifi-rate", "two words"));
}

TEST(DeviceSettingsTest, SettingsOfACommandAreItsOptionsAndTheArgumentsAfterThem) {
    DeviceSettings device;
    device.Accept(SettingsIn({"-connectbin", "-WIFI-BAND", "6", "-wifi-channel", "1",
                              "-wifi-channel", "5", "-wifi-mode", "rx", "-wifi-rate"}));
    EXPECT_THAT(device.Command(), ElementsAre("-wifi-band", "6", "-wifi-channel", "5"));
}

TEST(DeviceSettingsTest, WhateverMayStartATransmissionIsFound) {
    EXPECT_TRUE(MayStart({"-wifi-mode", "rx", "-Wifi-Start"}));
    EXPECT_TRUE(MayStart({"-wifi-start "}));
    EXPECT_TRUE(MayStart({"$(START)"}));
    EXPECT_TRUE(MayStart({"{string:-wifi-start}"}));
    EXPECT_FALSE(MayStart({"-wifi-stop", "-wifi-mode", "start"}));
    EXPECT_FALSE(MayStart({}));
}

TEST(DeviceSettingsTest, OneWhiteSpaceCharacterAtTheEndIsNotSent) {
    EXPECT_THAT(AsSent({"a ", "b  "}), ElementsAre("a ", "b "));
    EXPECT_THAT(AsSent({"a", "b"}), ElementsAre("a", "b"));
    EXPECT_THAT(AsSent({""}), ElementsAre(""));
    EXPECT_THAT(AsSent({}), IsEmpty());
}

} // namespace
} // namespace Bench
