#include "Tools/Vemo/VemoSimulator/Device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace VemoSimulator {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DeviceTest : public testing::Test {
protected:
    Reply Execute(const std::vector<std::string>& words) { return m_device.Execute(words); }

    Device m_device{DeviceIdentity{}, PowerModel(1, 0)};
};

} // namespace

TEST_F(DeviceTest, CalibrationAndStartReportThePowerOfTheActiveChains) {
    const Reply reply =
        Execute({"-wifi-band", "5", "-wifi-tx-chains-from-file", "AB", "-wifi-channel", "100",
                 "-wifi-calibrate-tx", "-wifi-mode", "tx_modulated", "-wifi-start"});
    EXPECT_THAT(
        reply.information,
        ElementsAre("Band: 5", "Chains: AB", "Channel: 100", "The transmitter is calibrated.",
                    "Mode: tx_modulated", "Started in mode tx_modulated.",
                    "Target Power: Band 5 Channel 100 Bandwidth 20 MHz Rate MCS0 Chain A (1) 18.5 "
                    "dBm",
                    "Target Power: Band 5 Channel 100 Bandwidth 20 MHz Rate MCS0 Chain B (2) 18.25 "
                    "dBm"));
    EXPECT_THAT(reply.errors, IsEmpty());
    EXPECT_EQ(reply.returnCode, "0");
    EXPECT_FALSE(reply.endsProgram);
}

TEST_F(DeviceTest, AChainThatIsNotActiveHasNoTargetPower) {
    const Reply reply =
        Execute({"-wifi-tx-chains-from-file", "B", "-wifi-calibrate-tx", "-wifi-start"});
    EXPECT_THAT(
        reply.information,
        ElementsAre("Chains: B", "The transmitter is calibrated.", "Started in mode tx_modulated.",
                    "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Rate MCS0 Chain B (2) 17.61 "
                    "dBm"));
}

TEST_F(DeviceTest, SettingsAreKeptForLaterCommands) {
    Execute({"-wifi-band", "6", "-wifi-bandwidth", "320", "-wifi-tx-chains-from-file", "A"});
    Execute({"-wifi-channel", "117", "-wifi-rate", "EHT-MCS13"});
    EXPECT_THAT(
        Execute({"-wifi-calibrate-tx", "-wifi-start"}).information,
        ElementsAre("The transmitter is calibrated.", "Started in mode tx_modulated.",
                    "Target Power: Band 6 Channel 117 Bandwidth 320 MHz Rate EHT-MCS13 Chain A (1) "
                    "6 dBm"));
}

TEST_F(DeviceTest, EverySettingCanBeSet) {
    for (const SettingRow& row : SettingTable()) {
        SCOPED_TRACE(row.option);
        const std::string value(row.initialValue);
        const Reply reply = Execute({std::string(row.option), value});
        EXPECT_THAT(reply.information, ElementsAre(std::string(row.title) + ": " + value));
        EXPECT_EQ(reply.returnCode, "0");
    }
}

TEST_F(DeviceTest, AStartWithoutCalibrationIsUncalibrated) {
    EXPECT_THAT(Execute({"-wifi-start"}).information,
                ElementsAre("Started in mode tx_modulated.", "The transmitter is uncalibrated."));
}

TEST_F(DeviceTest, ASettingOfTheRadioMakesTheCalibrationVoid) {
    const std::pair<const char*, const char*> settings[] = {{"-wifi-band", "5"},
                                                            {"-wifi-tx-chains-from-file", "A"},
                                                            {"-wifi-bandwidth", "40"},
                                                            {"-wifi-channel", "100"},
                                                            {"-wifi-bw-mode", "HT"},
                                                            {"-wifi-rate", "MCS1"},
                                                            {"-wifi-tx-transm-mode", "MIMO"},
                                                            {"-wifi-resource-unit", "26"},
                                                            {"-wifi-specific-resource-unit", "1"},
                                                            {"-wifi-large-ru", "none"}};
    for (const auto& [option, value] : settings) {
        SCOPED_TRACE(option);
        Execute({"-wifi-calibrate-tx"});
        Execute({option, value});
        EXPECT_THAT(
            Execute({"-wifi-start"}).information,
            ElementsAre("Started in mode tx_modulated.", "The transmitter is uncalibrated."));
    }
}

TEST_F(DeviceTest, AChangeOfTheModeLeavesTheCalibration) {
    Execute({"-wifi-calibrate-tx", "-wifi-tx-chains-from-file", "A", "-wifi-calibrate-tx"});
    EXPECT_THAT(Execute({"-wifi-mode", "tx_modulated", "-wifi-start"}).information,
                ElementsAre("Mode: tx_modulated", "Started in mode tx_modulated.",
                            "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Rate MCS0 Chain A "
                            "(1) 17.86 dBm"));
}

TEST_F(DeviceTest, OtherModesHaveNoTargetPower) {
    EXPECT_THAT(Execute({"-wifi-calibrate-tx", "-wifi-mode", "rx", "-wifi-start"}).information,
                ElementsAre("The transmitter is calibrated.", "Mode: rx", "Started in mode rx."));
}

TEST_F(DeviceTest, AStopTellsWhetherAnythingRan) {
    EXPECT_THAT(Execute({"-wifi-stop"}).information, ElementsAre("Nothing was running."));
    Execute({"-wifi-start"});
    EXPECT_THAT(Execute({"-wifi-stop"}).information, ElementsAre("Stopped."));
    EXPECT_THAT(Execute({"-wifi-stop"}).information, ElementsAre("Nothing was running."));
}

TEST_F(DeviceTest, TheDeviceTellsItsIdentity) {
    m_device = Device({"016", "DE"}, PowerModel(1, 0));
    EXPECT_THAT(Execute({"-wifi-get-mac-type", "-wifi-get-mcc"}).information,
                ElementsAre("Mac Type: 016", "Current MCC: DE"));
}

TEST_F(DeviceTest, ExitEndsTheProgram) {
    const Reply reply = Execute({"-exit"});
    EXPECT_TRUE(reply.endsProgram);
    EXPECT_THAT(reply.information, ElementsAre("The simulated daemon ends."));
}

TEST_F(DeviceTest, OptionsWithoutAnEffectAreAcknowledged) {
    const Reply reply =
        Execute({"-connectBin", "-disconnectBin", "-connect", "-disconnect", "-connectbin",
                 "-disconnectxvt", "-remote", "10.0.0.7", "-remoteDaemon", "10.0.0.7",
                 "-set_init_retries", "3", "-open_local_daemon", "-no_automation"});
    EXPECT_THAT(reply.errors, IsEmpty());
    EXPECT_EQ(reply.information.size(), 11U);
    EXPECT_EQ(reply.information.front(), "Connected to the device with Bin Commands.");
    EXPECT_EQ(reply.information.back(), "The answer comes all the same.");
}

TEST_F(DeviceTest, HelpListsEveryOption) {
    EXPECT_EQ(Execute({"-help"}).information, DescribeDeviceOptions());
    EXPECT_EQ(Execute({"-?"}).information, DescribeDeviceOptions());
    EXPECT_THAT(DescribeDeviceOptions(),
                testing::IsSupersetOf({"-wifi-band <Band>", "-exit", "-set_init_retries <count>"}));
}

TEST_F(DeviceTest, ACommandWithoutOptionsDoesNothing) {
    const Reply reply = Execute({});
    EXPECT_THAT(reply.information, IsEmpty());
    EXPECT_THAT(reply.errors, IsEmpty());
    EXPECT_EQ(reply.returnCode, "0");
}

TEST_F(DeviceTest, FailuresHaveAnErrorAndACodeAndNoInformation) {
    const struct {
        std::vector<std::string> words;
        const char* error;
        const char* code;
    } rows[] = {
        {{"-wifi-bandit"}, "Unknown option '-wifi-bandit'.", "1"},
        {{"5"}, "Unknown option '5'.", "1"},
        {{"-wifi-get-mcc", ""}, "Unknown option ''.", "1"},
        {{"-wifi-band", "7"}, "Band cannot be '7'. Accepted: 2.4, 5, 6.", "2"},
        {{"-wifi-channel", "234"}, "Channel cannot be '234'. Accepted: 1 to 233.", "2"},
        {{"-wifi-band"}, "Option '-wifi-band' needs a value.", "3"},
        {{"-remote"}, "Option '-remote' needs a value.", "3"},
        {{"-wifi-band", "2.4", "-wifi-calibrate-tx"}, "Band 2.4 has no channel 36.", "4"},
        {{"-wifi-band", "2.4", "-wifi-start"}, "Band 2.4 has no channel 36.", "4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        const Reply reply = Execute(row.words);
        EXPECT_THAT(reply.information, IsEmpty());
        EXPECT_THAT(reply.errors, ElementsAre(row.error));
        EXPECT_EQ(reply.returnCode, row.code);
    }
}

TEST_F(DeviceTest, AFailedCommandLeavesTheDeviceAsItWas) {
    Execute({"-wifi-tx-chains-from-file", "A"});
    EXPECT_FALSE(Execute({"-wifi-tx-chains-from-file", "B", "-exit", "-bogus"}).endsProgram);
    EXPECT_THAT(
        Execute({"-wifi-calibrate-tx", "-wifi-start"}).information,
        ElementsAre("The transmitter is calibrated.", "Started in mode tx_modulated.",
                    "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Rate MCS0 Chain A (1) 17.86 "
                    "dBm"));
}

TEST_F(DeviceTest, WordsInMessagesAreShortAndOfOneLine) {
    EXPECT_THAT(Execute({std::string("a\nb\0c\x7F\xE4", 7)}).errors,
                ElementsAre("Unknown option 'a?b?c\x7F\xE4'."));
    EXPECT_THAT(Execute({std::string(100, 'x')}).errors,
                ElementsAre("Unknown option '" + std::string(100, 'x') + "'."));
    EXPECT_THAT(Execute({std::string(101, 'x')}).errors,
                ElementsAre("Unknown option '" + std::string(100, 'x') + "...'."));
}

} // namespace VemoSimulator
