#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace Bench {
namespace {

TEST(LimitsPatternTest, AnyFitsEveryValueAndTheUnknownOne) {
    const SettingPattern pattern;
    const std::string value = "36";
    EXPECT_TRUE(pattern.Fits(&value));
    EXPECT_TRUE(pattern.Fits(nullptr));
}

TEST(LimitsPatternTest, ValuesFitAsExactTextsAndRangesAsNumbers) {
    SettingPattern pattern;
    pattern.isAny = false;
    pattern.values = {"auto", "100"};
    pattern.ranges = {{"36"_dB, "64"_dB}, {"2.4"_dB, "2.5"_dB}};
    for (const char* fitting : {"auto", "100", "36", "64", "40.5", "036", "36.0", "2.4", "2.50"}) {
        const std::string value = fitting;
        EXPECT_TRUE(pattern.Fits(&value)) << value;
    }
    for (const char* other : {"Auto", "100.0", "35.999999999", "64.000000001", "", "36 ", "NA"}) {
        const std::string value = other;
        EXPECT_FALSE(pattern.Fits(&value)) << value;
    }
    EXPECT_FALSE(pattern.Fits(nullptr));
}

class LimitsTest : public testing::Test {
protected:
    /// A limit for one value of the band, or for any.
    static Limit ForBand(LineNumber line, const char* band) {
        Limit limit;
        limit.line = line;
        SettingPattern& pattern = limit.settings[static_cast<std::size_t>(Setting::Band)];
        pattern.isAny = band == nullptr;
        if (band != nullptr)
            pattern.values = {band};
        return limit;
    }

    /// The line of the limit that is found; 0 when none is.
    static LineNumber Find(LimitTable& table, const Settings& settings, Chain chain = Chain::A) {
        const Limit* const limit = table.Find(settings, chain);
        return limit == nullptr ? 0 : limit->line;
    }

    static std::vector<LineNumber> NeverFitting(const LimitTable& table) {
        std::vector<LineNumber> lines;
        for (const Limit* limit : table.NeverFitting())
            lines.push_back(limit->line);
        return lines;
    }

    CoreFixture fixture;
};

TEST_F(LimitsTest, FirstLimitThatFitsCounts) {
    LimitTable table({ForBand(2, "5"), ForBand(3, "5"), ForBand(4, nullptr)});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 2U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "6"}})), 4U);
    EXPECT_EQ(Find(table, Settings()), 4U);
}

TEST_F(LimitsTest, NoneFitsWhereNoneIsForTheValue) {
    LimitTable table({ForBand(2, "5")});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "6"}})), 0U);
    EXPECT_EQ(Find(table, Settings()), 0U);
    LimitTable empty({});
    EXPECT_EQ(Find(empty, Settings()), 0U);
}

TEST_F(LimitsTest, AllSettingsHaveToFit) {
    Limit limit = ForBand(2, "5");
    SettingPattern& rate = limit.settings[static_cast<std::size_t>(Setting::Rate)];
    rate.isAny = false;
    rate.values = {"MCS0"};
    LimitTable table({limit});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS0"}})), 2U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS1"}})), 0U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 0U);
}

TEST_F(LimitsTest, ChainHasToFit) {
    Limit onlyB = ForBand(2, nullptr);
    onlyB.isForChainA = false;
    LimitTable table({onlyB, ForBand(3, nullptr)});
    EXPECT_EQ(Find(table, Settings(), Chain::A), 3U);
    EXPECT_EQ(Find(table, Settings(), Chain::B), 2U);
    EXPECT_EQ(Find(table, Settings(), Chain::None), 3U);
}

TEST_F(LimitsTest, FindsAcrossMoreLimitsThanAWordHasBits) {
    std::vector<Limit> limits;
    for (LineNumber line = 2; line < 202; ++line)
        limits.push_back(ForBand(line, std::to_string(line).c_str()));
    LimitTable table(limits);
    for (LineNumber line = 2; line < 202; ++line)
        EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, std::to_string(line)}})), line);
    EXPECT_TRUE(NeverFitting(table).empty());
}

TEST_F(LimitsTest, LimitThatFitsIsTellableFromOneThatNeverDoes) {
    LimitTable table({ForBand(2, "5"), ForBand(3, "7"), ForBand(4, nullptr), ForBand(5, "5")});
    EXPECT_EQ(NeverFitting(table), (std::vector<LineNumber>{2, 3, 4, 5}));
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 2U);
    EXPECT_EQ(NeverFitting(table), std::vector<LineNumber>{3})
        << "one that fits is one, although another comes before it";
}

} // namespace
} // namespace Bench
