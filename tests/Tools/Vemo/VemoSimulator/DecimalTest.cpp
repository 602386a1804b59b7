#include "Tools/Vemo/VemoSimulator/Decimal.h"

#include <gtest/gtest.h>

namespace VemoSimulator {

TEST(DecimalTest, DigitsAloneAreANumberOfUpTo64Bits) {
    EXPECT_EQ(ParseDecimal("0"), 0U);
    EXPECT_EQ(ParseDecimal("036"), 36U);
    EXPECT_EQ(ParseDecimal("18446744073709551615"), 18446744073709551615U);
}

TEST(DecimalTest, AnyOtherTextIsNoNumber) {
    for (const char* text : {"", " 1", "1 ", "+1", "-1", "1.5", "0x1F", "18446744073709551616"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseDecimal(text), std::nullopt);
    }
}

} // namespace VemoSimulator
