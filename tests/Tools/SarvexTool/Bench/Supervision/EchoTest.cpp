#include "Tools/SarvexTool/Bench/Supervision/Echo.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

struct Case {
    const char* answer;
    const char* contradiction;
};

OwnSettings Own() {
    OwnSettings own;
    own.at(static_cast<std::size_t>(Setting::Band)) = "2.4";
    own.at(static_cast<std::size_t>(Setting::Channel)) = "42";
    own.at(static_cast<std::size_t>(Setting::Bandwidth)) = "80";
    own.at(static_cast<std::size_t>(Setting::BandwidthMode)) = "HE";
    own.at(static_cast<std::size_t>(Setting::Rate)) = "HE-MCS7";
    own.at(static_cast<std::size_t>(Setting::LargeRuSize)) = "two words";
    own.at(static_cast<std::size_t>(Setting::Mode)) = "{int:3}";
    return own;
}

TEST(EchoTest, SettingsThatTheDaemonRepeatsAreComparedWithThoseOfTheLine) {
    constexpr Case cases[] = {
        {"Target Power: Chain A (1) 12 dBm\n", ""},
        {"Target Power: Band 2.4 Channel 42 Bandwidth 80 MHz Rate HE-MCS7 Chain A (1) 12 dBm\n",
         ""},
        {"Target Power: Band 2.40 Channel 42 Rate he-mcs7 Bandwidth 80MHz Chain A (1) 12 dBm\n",
         ""},
        {"Target Power: Band 5 Channel 42 Chain A (1) 12 dBm\n", "Band 5 in place of 2.4"},
        {"Target Power: Channel 36 Rate MCS0 Chain A (1) -12. dBm\n",
         "Channel 36 in place of 42, Rate MCS0 in place of HE-MCS7"},
        {"Target Power: Bandwidth Mode VHT Bandwidth 80 Chain A (1) 12 dBm\n",
         "Bandwidth Mode VHT in place of HE"},
        // What the line does not write, or not as it is sent, or in words.
        {"Target Power: Chains B Resource Unit 26 Chain A (1) 12 dBm\n", ""},
        {"Target Power: Mode 4 Large RU Size three Chain A (1) 12 dBm\n", ""},
        // Of the line that the client takes the power from.
        {"Target Power: Channel 1 Chain B (2) 12 dBm\nTarget Power: Channel 2 Chain A (1) 1 dBm\n",
         "Channel 2 in place of 42"},
        {"Channel 1 Chain A (1) 12 dBm\nTarget Power: Channel 2 Chain A (1) x dBm\n", ""},
        {"Target Power: Channel 42 Chain A (1) 1 dBm\nTarget Power: Channel 2 Chain A (1) 1 dBm\n",
         ""},
        {"Target Power: Channel 42 Chain A (1) 1 dBm Channel 3 Chain A (1) 2 dBm Chain A (1) x\n",
         "Channel 3 in place of 42"},
        {"x Target Power: Channel", ""},
        {"Target Power: Channel Chain A (1) 1 dBm", ""},
        {"", ""}};
    for (const Case& test : cases) {
        SCOPED_TRACE(test.answer);
        EXPECT_EQ(ContradictionIn(test.answer, Chain::A, Own()), test.contradiction);
    }
}

TEST(EchoTest, EachChainHasItsOwnLine) {
    const std::string answer = "Target Power: Channel 42 Chain A (1) 12 dBm\n"
                               "Target Power: Channel 36 Chain B (2) 12 dBm\n";
    EXPECT_EQ(ContradictionIn(answer, Chain::A, Own()), "");
    EXPECT_EQ(ContradictionIn(answer, Chain::B, Own()), "Channel 36 in place of 42");
}

} // namespace
} // namespace Bench
