#include "Tools/Vemo/VemoSimulator/CommandText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace VemoSimulator {

using Words = std::vector<std::string>;

TEST(CommandTextTest, CommandsAreSplitIntoTheirWords) {
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

TEST(CommandTextTest, QuotesWithinAWordStayInIt) {
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

TEST(CommandTextTest, OtherBodiesAreNoCommand) {
    for (const char* body :
         {"", "CLI", "CLI -1", "CLI -2 -exit", "cli -1 -exit", " CLI -1 -exit"}) {
        SCOPED_TRACE(body);
        EXPECT_EQ(SplitCommand(body), std::nullopt);
    }
}

TEST(CommandTextTest, LongWordsArriveWhole) {
    const std::string word(3 << 20, 'x');
    EXPECT_EQ(SplitCommand("CLI -1 -vemo  -remote " + word), (Words{"-remote", word}));
}

} // namespace VemoSimulator
