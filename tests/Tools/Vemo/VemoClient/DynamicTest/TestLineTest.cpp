#include "Tools/Vemo/VemoClient/DynamicTest/TestLine.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

TEST(TestLineTest, FieldsAreTrimmedUnlessTheyAreBlankAltogether) {
    const std::pair<std::string, std::string> cases[] = {
        {"5", "5"},
        {" 5 ", "5"},
        {"\t5\r\n", "5"},
        {"Resource Unit", "Resource Unit"},
        {" a \t b ", "a \t b"},
        {"", ""},
        {" ", " "},
        {" \t\r\n", " \t\r\n"},
        {"\v5\f", "\v5\f"},
        {"\xA0"
         "5\0"s,
         "\xA0"
         "5\0"s},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(TrimField(text), expected);
    }
}

TEST(TestLineTest, LinesAreCutAtRunsOfCommas) {
    const std::pair<std::string, Fields> cases[] = {
        {"", {}},
        {",", {}},
        {",,,", {}},
        {"5", {"5"}},
        {"5,AB,36", {"5", "AB", "36"}},
        {"5,,36", {"5", "36"}},
        {",,5,,,36,", {"5", "36"}},
        {" 5 ,\tAB\t, 36 \r", {"5", "AB", "36"}},
        {"5, ,36", {"5", " ", "36"}},
        {" \t,", {" \t"}},
        {"-,5", {"-", "5"}},
        {"\"5,6\"", {"\"5", "6\""}},
        {"5;6", {"5;6"}},
        {"\xEF\xBB\xBF"
         "Band,Chains\r",
         {"\xEF\xBB\xBF"
          "Band",
          "Chains"}},
        {"a\0b,\xFF"s, {"a\0b"s, "\xFF"}},
    };
    for (const auto& [line, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(line));
        EXPECT_EQ(SplitFields(line), expected);
    }
}

TEST(TestLineTest, LineOfOneMebibyteIsCut) {
    constexpr std::size_t size = 1 << 20;
    EXPECT_EQ(SplitFields(std::string(size, ',')), Fields());
    EXPECT_EQ(SplitFields(std::string(size, 'x')), Fields{std::string(size, 'x')});
    std::string line;
    while (line.size() < size)
        line += "5,";
    EXPECT_EQ(SplitFields(line), Fields(size / 2, "5"));
}

} // namespace
