#include "Tools/SarvexTool/Bench/Files/Cells.h"

#include <gmock/gmock.h>

#include <string>

namespace Bench {
namespace {

using testing::ElementsAre;

std::vector<std::string> Texts(std::string_view line, char separator = ',') {
    std::vector<Cell> cells;
    CutLine(line, separator, cells);
    std::vector<std::string> texts;
    for (const Cell& cell : cells)
        texts.emplace_back((cell.isQuoted ? "q:" : "") + std::string(cell.text));
    return texts;
}

TEST(CellsTest, ALineHasOneCellMoreThanSeparators) {
    EXPECT_THAT(Texts("5, AB ,\t36"), ElementsAre("5", "AB", "36"));
    EXPECT_THAT(Texts(",5,,"), ElementsAre("", "5", "", ""));
    EXPECT_THAT(Texts(""), ElementsAre(""));
    EXPECT_THAT(Texts("5;A,B;\t", ';'), ElementsAre("5", "A,B", "\t"));
}

TEST(CellsTest, QuotesHoldACellTogetherAndAreNoPartOfIt) {
    EXPECT_THAT(Texts("\"5,5\", \"AB\" ,36"), ElementsAre("q:5,5", "q:AB", "36"));
    EXPECT_THAT(Texts("\"\",\" \",\"a\"\"b\""), ElementsAre("q:", "q: ", "q:a\"\"b"));
    EXPECT_THAT(Texts("\"a\"\r"), ElementsAre("q:a"));
}

TEST(CellsTest, AQuoteThatHoldsNothingTogetherIsPartOfTheCell) {
    EXPECT_THAT(Texts("a\"b,c"), ElementsAre("a\"b", "c"));
    EXPECT_THAT(Texts("\"a,b"), ElementsAre("\"a", "b"));
    EXPECT_THAT(Texts("\"a\"b,c"), ElementsAre("\"a\"b", "c"));
    EXPECT_THAT(Texts("\""), ElementsAre("\""));
    EXPECT_THAT(Texts("\"\"\""), ElementsAre("\"\"\""));
}

TEST(CellsTest, ADecimalCommaIsBetweenDigits) {
    EXPECT_TRUE(HasDecimalComma("2,4"));
    EXPECT_TRUE(HasDecimalComma("10,45"));
    for (const std::string_view text : {"", ",", "2,", ",4", "2,4,6", "a,4", "2, 4", "2.4", "-2,4"})
        EXPECT_FALSE(HasDecimalComma(text)) << text;
}

} // namespace
} // namespace Bench
