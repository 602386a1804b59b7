#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

namespace Bench {
namespace {

TEST(LimitsPatternTest, ValuesFitAsExactTextsAndRangesAsNumbers) {
    CoreFixture fixture;
    SettingPattern pattern;
    pattern.values = {fixture.Text("auto"), fixture.Text("100")};
    pattern.ranges = {{"36"_dB, "64"_dB}, {"2.4"_dB, "2.5"_dB}};
    for (const char* fitting : {"auto", "100", "36", "64", "40.5", "036", "36.0", "2.4", "2.50"})
        EXPECT_TRUE(pattern.Fits(fixture.Text(fitting))) << fitting;
    for (const char* other : {"Auto", "100.0", "35.999999999", "64.000000001", "", "36 ", "NA"})
        EXPECT_FALSE(pattern.Fits(fixture.Text(other))) << other;
    EXPECT_FALSE(pattern.Fits(nullptr));
}

class LimitsTest : public testing::Test {
protected:
    /// A limit for one value of the band, or for any.
    Limit ForBand(LineNumber line, const char* band) {
        return band == nullptr ? With(line, {}) : With(line, {{Setting::Band, {{band}, {}}}});
    }

    struct Pattern {
        std::vector<std::string> values;
        std::vector<SettingPattern::Range> ranges;
    };

    Limit With(LineNumber line, const std::vector<std::pair<Setting, Pattern>>& patterns) {
        Limit limit;
        limit.line = line;
        for (const auto& [setting, pattern] : patterns) {
            SettingPattern& kept = m_patterns.emplace_back();
            kept.ranges = pattern.ranges;
            for (const std::string& value : pattern.values)
                kept.values.push_back(fixture.Text(value));
            limit.settings[static_cast<std::size_t>(setting)] = &kept;
        }
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

private:
    std::deque<SettingPattern> m_patterns;
};

TEST_F(LimitsTest, FirstLimitThatFitsCounts) {
    LimitTable table({{ForBand(2, "5"), ForBand(3, "5"), ForBand(4, nullptr)}, {}});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 2U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "6"}})), 4U);
    EXPECT_EQ(Find(table, Settings()), 4U);
}

TEST_F(LimitsTest, NoneFitsWhereNoneIsForTheValue) {
    LimitTable table({{ForBand(2, "5")}, {}});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "6"}})), 0U);
    EXPECT_EQ(Find(table, Settings()), 0U);
    LimitTable empty({{}, {}});
    EXPECT_EQ(Find(empty, Settings()), 0U);
}

TEST_F(LimitsTest, AllSettingsHaveToFit) {
    LimitTable table(
        {{With(2, {{Setting::Band, {{"5"}, {}}}, {Setting::Rate, {{"MCS0"}, {}}}})}, {}});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS0"}})), 2U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS1"}})), 0U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 0U);
}

TEST_F(LimitsTest, ChainHasToFit) {
    Limit onlyB = ForBand(2, nullptr);
    onlyB.isForChainA = false;
    LimitTable table({{onlyB, ForBand(3, nullptr)}, {}});
    EXPECT_EQ(Find(table, Settings(), Chain::A), 3U);
    EXPECT_EQ(Find(table, Settings(), Chain::B), 2U);
    EXPECT_EQ(Find(table, Settings(), Chain::None), 3U);
}

TEST_F(LimitsTest, FindsAcrossMoreLimitsThanAWordHasBits) {
    std::vector<Limit> limits;
    for (LineNumber line = 2; line < 202; ++line)
        limits.push_back(ForBand(line, std::to_string(line).c_str()));
    LimitTable table({limits, {}});
    for (LineNumber line = 2; line < 202; ++line)
        EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, std::to_string(line)}})), line);
    EXPECT_TRUE(NeverFitting(table).empty());
}

TEST_F(LimitsTest, LimitThatFitsIsTellableFromOneThatNeverDoes) {
    LimitTable table(
        {{ForBand(2, "5"), ForBand(3, "7"), ForBand(4, nullptr), ForBand(5, "5")}, {}});
    EXPECT_EQ(NeverFitting(table), (std::vector<LineNumber>{2, 3, 4, 5}));
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Band, "5"}})), 2U);
    EXPECT_EQ(NeverFitting(table), std::vector<LineNumber>{3})
        << "one that fits is one, although another comes before it";
}

TEST_F(LimitsTest, LimitThatFitsNothingIsWarnedOf) {
    LimitTable table({{ForBand(2, "5"), ForBand(3, "7")}, {}});
    Find(table, fixture.Of({{Setting::Band, "5"}}));
    const std::vector<Problem> problems = NeedlessLimits(table);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].severity, Severity::Warning);
    EXPECT_EQ(problems[0].line, 3U);
    EXPECT_EQ(problems[0].text,
              "the line fits no measurement; look for a misspelt value, or take it away");
    Find(table, fixture.Of({{Setting::Band, "7"}}));
    EXPECT_TRUE(NeedlessLimits(table).empty());
}

/// Tables of few and of many limits are searched in different ways: all have to find what a search
/// through one limit after the other finds.
TEST_F(LimitsTest, EveryTableFindsWhatASearchLineByLineFinds) {
    std::minstd_rand random(1);
    const auto choose = [&random](std::size_t count) { return random() % count; };
    const std::vector<std::string> values{"1", "2", "3", "x", "2.5"};
    for (const std::size_t size : {1U, 5U, 40U, 300U}) {
        std::vector<Limit> limits;
        for (LineNumber line = 0; line < size; ++line) {
            std::vector<std::pair<Setting, Pattern>> patterns;
            for (const Setting setting : {Setting::Band, Setting::Channel, Setting::Rate}) {
                Pattern pattern;
                const std::size_t kind = choose(4);
                for (std::size_t count = 0; count < kind; ++count)
                    pattern.values.push_back(values[choose(values.size())]);
                if (kind == 3)
                    pattern.ranges.push_back({"2"_dB, "3"_dB});
                if (kind != 0)
                    patterns.emplace_back(setting, pattern);
            }
            limits.push_back(With(line + 2, patterns));
            limits.back().isForChainA = choose(3) != 0;
        }
        LimitTable table({limits, {}});
        std::vector<bool> hasFitted(size);
        for (int count = 0; count < 30; ++count) {
            Settings settings;
            for (const Setting setting : {Setting::Band, Setting::Channel, Setting::Rate}) {
                const std::size_t value = choose(values.size() + 1);
                if (value < values.size())
                    settings[setting] = fixture.Text(values[value]);
            }
            const Chain chain = choose(2) == 0 ? Chain::A : Chain::B;
            LineNumber expected = 0;
            for (std::size_t index = size; index-- > 0;) {
                if (!limits[index].Fits(settings, chain))
                    continue;
                hasFitted[index] = true;
                expected = limits[index].line;
            }
            EXPECT_EQ(Find(table, settings, chain), expected) << size << " limits";
        }
        std::vector<LineNumber> never;
        for (std::size_t index = 0; index < size; ++index) {
            if (!hasFitted[index])
                never.push_back(limits[index].line);
        }
        EXPECT_EQ(NeverFitting(table), never);
    }
}

TEST_F(LimitsTest, ListOfManyValuesIsFoundLikeAShortOne) {
    Pattern channels;
    for (int channel = 1; channel <= 100; ++channel)
        channels.values.push_back(std::to_string(channel));
    LimitTable table(
        {{With(2, {{Setting::Channel, channels}, {Setting::Band, {{"5", "6"}, {}}}})}, {}});
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Channel, "100"}, {Setting::Band, "6"}})), 2U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Channel, "101"}, {Setting::Band, "6"}})), 0U);
    EXPECT_EQ(Find(table, fixture.Of({{Setting::Channel, "100"}, {Setting::Band, "7"}})), 0U);
}

TEST_F(LimitsTest, ListOfVeryManyValuesAndRangesIsFoundInShortTime) {
    constexpr int count = 100'000;
    Pattern channels;
    for (int channel = 0; channel < count; ++channel) {
        channels.values.push_back("v" + std::to_string(channel));
        const Decimal end = Decimal::FromInteger(2 * channel);
        channels.ranges.push_back({end, end});
    }
    LimitTable table({{With(2, {{Setting::Channel, channels}})}, {}});
    EXPECT_THAT(NeverFitting(table), testing::ElementsAre(2U));
    for (int channel = 0; channel < count; ++channel) {
        const std::string number = std::to_string(channel);
        ASSERT_EQ(Find(table, fixture.Of({{Setting::Channel, "v" + number}})), 2U);
        ASSERT_EQ(Find(table, fixture.Of({{Setting::Channel, number}})),
                  channel % 2 == 0 ? 2U : 0U);
    }
    EXPECT_THAT(NeverFitting(table), testing::IsEmpty());
}

} // namespace
} // namespace Bench
