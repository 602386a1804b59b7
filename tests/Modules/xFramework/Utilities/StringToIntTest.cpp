#include "Modules/xFramework/Utilities/StringToInt.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace Utilities {
namespace {

struct NumberCase {
    std::string text;
    std::int32_t value;
};

TEST(StringToIntTest, ReadsTheDecimalNumberAtTheFront) {
    const std::vector<NumberCase> cases{{"0", 0},
                                        {"16", 16},
                                        {"-16", -16},
                                        {"+16", 16},
                                        {"-0", 0},
                                        {"007", 7},
                                        {" \t\n\v\f\r42", 42},
                                        {"  -42", -42},
                                        {"42 ", 42},
                                        {"42 dBm", 42},
                                        {"17.5", 17},
                                        {"0x1F", 0},
                                        {"5+5", 5},
                                        {"1e3", 1},
                                        {std::string("7\0"
                                                     "8",
                                                     3),
                                         7},
                                        {"2147483647", 2147483647},
                                        {"+2147483647", 2147483647},
                                        {"-2147483648", -2147483647 - 1},
                                        {"00000000000000000001", 1}};
    for (const NumberCase& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(StringToInt(each.text), each.value);
    }
}

/// What the conversion complains about; empty when it does not.
template <typename Error>
std::string ErrorOf(const std::string& text) {
    try {
        StringToInt(text);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

TEST(StringToIntTest, RefusesATextWithoutNumber) {
    for (const std::string text :
         {"", " ", "\t\n", "-", "+", "x", "x1", ".5", "--1", "++1", "+-1", "-+1", "- 1", "+ 1",
          "\xA0"
          "1",
          "O"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ErrorOf<std::invalid_argument>(text), "invalid stoi argument");
    }
}

TEST(StringToIntTest, RefusesANumberOfMoreThan32Bits) {
    for (const std::string text : {"2147483648", "+2147483648", "-2147483649", " 4294967296",
                                   "99999999999999999999999", "-99999999999999999999999x"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ErrorOf<std::out_of_range>(text), "stoi argument out of range");
    }
}

} // namespace
} // namespace Utilities
