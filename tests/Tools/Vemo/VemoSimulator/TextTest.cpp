#include "Tools/Vemo/VemoSimulator/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace VemoSimulator {

using Words = std::vector<std::string>;

TEST(TextTest, CommandsAreSplitIntoTheirWords) {
    const struct {
        const char* body;
        Words words;
    } rows[] = {
        {"CLI -1 ", {}},
        {"CLI -1 -vemo", {}},
        {"CLI -1 -vemo ", {}},
        {"CLI -1 -vemo  -wifi-stop", {"-wifi-stop"}},
        {"CLI -1 -vemo -wifi-stop", {"-wifi-stop"}},
        {"CLI -1  -exit", {"-exit"}},
        {"CLI -1 -vemo  -wifi-band 5 -wifi-channel 36", {"-wifi-band", "5", "-wifi-channel", "36"}},
        {"CLI -1 -vemo  \"a b\" c", {"a b", "c"}},
        {"CLI -1 -vemo  c \"a b\"", {"c", "a b"}},
        {"CLI -1 -vemo  \"  \" c", {"  ", "c"}},
        {"CLI -1 -vemo  a\tb", {"a\tb"}},
        {"CLI -1 -vemo  -a  ", {"-a"}},
        // Only the first word is the name of the tool.
        {"CLI -1 -vemo -vemo", {"-vemo"}},
        {"CLI -1 -VEMO", {"-VEMO"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(SplitCommand(row.body), row.words);
    }
}

TEST(TextTest, QuotesWithinAWordStayInIt) {
    const struct {
        const char* body;
        Words words;
    } rows[] = {
        {"CLI -1 a\"b", {"a\"b"}},
        {"CLI -1 \"a \"b\" c\" d", {"a \"b", "c\"", "d"}},
        {"CLI -1 \"a\"b c\" d", {"a\"b c", "d"}},
        {"CLI -1 \"a b", {"a b"}},
        {"CLI -1 \"", {""}},
        {"CLI -1 \"\" a", {"", "a"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(SplitCommand(row.body), row.words);
    }
}

TEST(TextTest, OtherBodiesAreNoCommand) {
    for (const char* body :
         {"", "CLI", "CLI -1", "CLI -2 -exit", "cli -1 -exit", " CLI -1 -exit"}) {
        SCOPED_TRACE(body);
        EXPECT_EQ(SplitCommand(body), std::nullopt);
    }
}

TEST(TextTest, LongWordsArriveWhole) {
    const std::string word(3 << 20, 'x');
    EXPECT_EQ(SplitCommand("CLI -1 -vemo  -remote " + word), (Words{"-remote", word}));
}

TEST(TextTest, DigitsAloneAreANumberOfUpTo64Bits) {
    EXPECT_EQ(ParseDecimal("0"), 0U);
    EXPECT_EQ(ParseDecimal("036"), 36U);
    EXPECT_EQ(ParseDecimal("18446744073709551615"), 18446744073709551615U);
}

TEST(TextTest, AnyOtherTextIsNoNumber) {
    for (const char* text : {"", " 1", "1 ", "+1", "-1", "1.5", "0x1F", "18446744073709551616"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ParseDecimal(text), std::nullopt);
    }
}

TEST(TextTest, LettersOfEitherCaseAreEqual) {
    EXPECT_TRUE(EqualsIgnoringCase("-connectBin", "-CONNECTbin"));
    EXPECT_TRUE(EqualsIgnoringCase("AZaz", "azAZ"));
    EXPECT_TRUE(EqualsIgnoringCase("", ""));
}

TEST(TextTest, OtherCharactersMustBeTheSame) {
    // These pairs differ by the distance between the two cases of a letter.
    EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
    EXPECT_FALSE(EqualsIgnoringCase("\xC4", "\xE4"));
    EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
}

} // namespace VemoSimulator
