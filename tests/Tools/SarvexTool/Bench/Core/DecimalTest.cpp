#include "Tools/SarvexTool/Bench/Core/Decimal.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace Bench {
namespace {

struct Reading {
    const char* text;
    const char* shortest;
};

TEST(DecimalTest, IsReadAndWrittenExactly) {
    constexpr Reading readings[] = {{"0", "0"},
                                    {"-0", "0"},
                                    {"12", "12"},
                                    {"12.", "12"},
                                    {"12.0", "12"},
                                    {"-3.50", "-3.5"},
                                    {"-0.5", "-0.5"},
                                    {"007.25", "7.25"},
                                    {"0.000000001", "0.000000001"},
                                    {"-0.000000001", "-0.000000001"},
                                    {"999999999.999999999", "999999999.999999999"},
                                    {"-999999999.999999999", "-999999999.999999999"},
                                    {"0000000000000000001.10000000000000", "1.1"}};
    for (const Reading& reading : readings) {
        SCOPED_TRACE(reading.text);
        const std::optional<Decimal> decimal = Decimal::Parse(reading.text);
        ASSERT_TRUE(decimal.has_value());
        EXPECT_EQ(decimal->ToText(), reading.shortest);
        EXPECT_TRUE(HasDecimalForm(reading.text));
    }
}

TEST(DecimalTest, TextsOfAnotherFormAreNoDecimals) {
    for (const char* text :
         {"",   "-",   ".",     "-.",    ".5", "+1", "1,5", "1e3", "0x10", " 1",
          "1 ", "--1", "1.2.3", "17..5", "1-", "NA", "nan", "inf", "1\r",  "\xD9\xA1"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Decimal::Parse(text), std::nullopt);
        EXPECT_FALSE(HasDecimalForm(text));
    }
    EXPECT_EQ(Decimal::Parse(std::string_view("1\0", 2)), std::nullopt);
}

TEST(DecimalTest, MoreDigitsThanItHoldsAreNoDecimalButHaveItsForm) {
    for (const char* text : {"1000000000", "-1234567890", "0.0000000001", "1.1234567891"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Decimal::Parse(text), std::nullopt);
        EXPECT_TRUE(HasDecimalForm(text));
    }
}

TEST(DecimalTest, DifferencesLoseNoDigit) {
    EXPECT_EQ("10.4"_dB - "10.1"_dB, "0.3"_dB);
    EXPECT_EQ("0.1"_dB + "0.2"_dB, "0.3"_dB);
    EXPECT_EQ(-"2.5"_dB, "-2.5"_dB);
    EXPECT_EQ(("999999999.999999999"_dB - "-999999999.999999999"_dB).Units(),
              1'999'999'999'999'999'998);
}

TEST(DecimalTest, IsOrderedByItsValue) {
    std::vector<Decimal> numbers{"2"_dB, "-10"_dB, "10"_dB, "1.99"_dB, "-9.5"_dB};
    std::sort(numbers.begin(), numbers.end());
    EXPECT_THAT(numbers, testing::ElementsAre("-10"_dB, "-9.5"_dB, "1.99"_dB, "2"_dB, "10"_dB));
    EXPECT_EQ("12.0"_dB, Decimal::FromInteger(12));
}

TEST(DecimalTest, MagnitudeHasNoSign) {
    EXPECT_EQ(Magnitude("-1.5"_dB), "1.5"_dB);
    EXPECT_EQ(Magnitude("1.5"_dB), "1.5"_dB);
    EXPECT_EQ(Magnitude(Decimal()), Decimal());
}

TEST(DecimalTest, IsNearToItsFloatingPointValue) {
    EXPECT_DOUBLE_EQ("-12.375"_dB.ToDouble(), -12.375);
}

} // namespace
} // namespace Bench
