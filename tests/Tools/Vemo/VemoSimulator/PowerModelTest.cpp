#include "Tools/Vemo/VemoSimulator/PowerModel.h"

#include <gtest/gtest.h>

#include <set>

namespace VemoSimulator {

namespace {

RadioSettings MakeSettings(const std::string& band, const std::string& bandwidth,
                           const std::string& channel, const std::string& rate) {
    RadioSettings settings;
    settings.Set(Setting::Band, band);
    settings.Set(Setting::Bandwidth, bandwidth);
    settings.Set(Setting::Channel, channel);
    settings.Set(Setting::Rate, rate);
    return settings;
}

} // namespace

TEST(PowerModelTest, PowerWithoutNoiseFollowsTheDocumentedSum) {
    const struct {
        const char* band;
        const char* bandwidth;
        const char* channel;
        const char* rate;
        char chain;
        int power;
    } rows[] = {
        {"5", "20", "36", "MCS0", 'A', 1850 - 0 - 64 - 0},
        {"5", "20", "36", "MCS0", 'B', 1850 - 0 - 64 - 0 - 25},
        {"5", "80", "100", "MCS0", 'A', 1850 - 200},
        {"5", "160", "177", "HE-MCS11", 'B', 1850 - 300 - 77 - 500 - 25},
        {"2.4", "40", "1", "11", 'A', 2000 - 100 - 60},
        {"2.4", "20", "14", "54", 'A', 2000 - 70 - 250},
        {"6", "320", "1", "EHT-MCS13", 'A', 1700 - 400 - 116 - 700},
    };
    const PowerModel model(1, 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.power);
        const auto settings = MakeSettings(row.band, row.bandwidth, row.channel, row.rate);
        EXPECT_EQ(model.TargetPower(settings, row.chain), row.power);
    }
}

TEST(PowerModelTest, NoiseIsTheSameOnEveryPlatform) {
    const struct {
        std::uint64_t seed;
        int noiseA;
        int noiseB;
    } rows[] = {{0, 13, 18}, {1, 15, 21}, {2, -17, -7}};
    const RadioSettings settings;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.seed);
        const PowerModel noisy(row.seed, 25);
        EXPECT_EQ(noisy.TargetPower(settings, 'A'), 1786 + row.noiseA);
        EXPECT_EQ(noisy.TargetPower(settings, 'B'), 1761 + row.noiseB);
    }
}

TEST(PowerModelTest, NoiseStaysWithinItsLimitsAndReachesThem) {
    const PowerModel silent(7, 0);
    const PowerModel noisy(7, 3);
    std::set<int> noise;
    for (int channel = 1; channel <= 233; ++channel) {
        const auto settings = MakeSettings("6", "20", std::to_string(channel), "MCS0");
        noise.insert(noisy.TargetPower(settings, 'A') - silent.TargetPower(settings, 'A'));
    }
    EXPECT_EQ(noise, (std::set<int>{-3, -2, -1, 0, 1, 2, 3}));
}

TEST(PowerModelTest, OffsetIsAddedToThePowerAndItsNoise) {
    const RadioSettings settings;
    for (const char chain : {'A', 'B'})
        EXPECT_EQ(PowerModel(2, 25, 80).TargetPower(settings, chain),
                  PowerModel(2, 25).TargetPower(settings, chain) + 80);
}

TEST(PowerModelTest, SettingsThatFitHaveNoConflict) {
    EXPECT_EQ(FindConflict(MakeSettings("2.4", "40", "14", "1")), "");
    EXPECT_EQ(FindConflict(MakeSettings("5", "160", "177", "1")), "");
    EXPECT_EQ(FindConflict(MakeSettings("6", "320", "233", "1")), "");
}

TEST(PowerModelTest, SettingsThatDoNotFitSayWhatTheBandLacks) {
    EXPECT_EQ(FindConflict(MakeSettings("2.4", "20", "15", "1")), "Band 2.4 has no channel 15.");
    EXPECT_EQ(FindConflict(MakeSettings("5", "20", "35", "1")), "Band 5 has no channel 35.");
    EXPECT_EQ(FindConflict(MakeSettings("5", "20", "178", "1")), "Band 5 has no channel 178.");
    EXPECT_EQ(FindConflict(MakeSettings("2.4", "80", "6", "1")),
              "Band 2.4 has no bandwidth of 80 MHz.");
    EXPECT_EQ(FindConflict(MakeSettings("5", "320", "36", "1")),
              "Band 5 has no bandwidth of 320 MHz.");
}

TEST(PowerModelTest, PowersAreWrittenWithoutTrailingZeros) {
    const struct {
        int hundredths;
        const char* text;
    } rows[] = {{1750, "17.5"}, {1800, "18"},  {1733, "17.33"}, {1705, "17.05"}, {0, "0"},
                {5, "0.05"},    {-50, "-0.5"}, {-1, "-0.01"},   {-300, "-3"},    {-1234, "-12.34"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(FormatHundredths(row.hundredths), row.text);
    }
}

} // namespace VemoSimulator
