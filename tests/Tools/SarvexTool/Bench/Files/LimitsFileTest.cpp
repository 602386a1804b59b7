#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

std::string Shown(const SettingPattern* pPattern) {
    if (pPattern == nullptr)
        return "*";
    std::string text;
    for (const std::string* value : pPattern->values)
        text += (text.empty() ? "" : "|") + *value;
    for (const SettingPattern::Range& range : pPattern->ranges)
        text += (text.empty() ? "" : "|") + range.first.ToText() + ".." + range.last.ToText();
    return text;
}

/// Each limit with its band, channel, chains and bounds; or all that is wrong with the table.
std::string Read(std::string_view bytes) {
    TextPool texts;
    std::string text;
    try {
        const Limits limits = ParseLimits(bytes, "limits.csv", texts);
        for (const Limit& limit : limits.lines)
            text += std::to_string(limit.line) + ": " +
                    Shown(limit.settings[static_cast<std::size_t>(Setting::Band)]) + " " +
                    Shown(limit.settings[static_cast<std::size_t>(Setting::Channel)]) + " " +
                    (limit.isForChainA ? "A" : "") + (limit.isForChainB ? "B" : "") + " " +
                    (limit.minimum ? limit.minimum->ToText() : "*") + " " +
                    (limit.maximum ? limit.maximum->ToText() : "*") + "\n";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), "limits.csv");
        for (const Problem& problem : bad.Problems())
            text += std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                    problem.text + "\n";
    }
    return text;
}

TEST(LimitsFileTest, CellsAreValuesListsRangesOrAnything) {
    EXPECT_EQ(Read("Channel,Max,Chain,Band,Min\n"
                   "36,14,A,5,10\n"
                   "36|40|52..64|x,12.5,B,*,-1\n"
                   "1..13,*,A|B,2.4,*\n"
                   "36 | 40,*,*,-5..-1,12\n"
                   "*,12,*,*,12\n"),
              "2: 5 36 A 10 14\n"
              "3: * 36|40|x|52..64 B -1 12.5\n"
              "4: 2.4 1..13 AB * *\n"
              "5: -5..-1 36|40 AB 12 *\n"
              "6: * * AB 12 12\n");
}

TEST(LimitsFileTest, LinesShareThePatternsOfEqualCells) {
    TextPool texts;
    const Limits limits =
        ParseLimits("Band,Rate,Chain,Min,Max\n5,5,*,1,2\n5,6,*,1,2\n", "limits.csv", texts);
    EXPECT_EQ(limits.patterns.size(), 2U);
    EXPECT_EQ(limits.lines[0].settings[0], limits.lines[1].settings[0]);
}

TEST(LimitsFileTest, ColumnsOfChainAndBoundsAreNeeded) {
    EXPECT_EQ(Read("Band,Min\n5,1\n"), "1:0 the column Chain is missing; add it\n"
                                       "1:0 the column Max is missing; add it\n");
    EXPECT_EQ(Read("Chain,Min,Max\n*,1,2\n"), "2: * * AB 1 2\n");
}

TEST(LimitsFileTest, TableWithoutALineIsRefused) {
    EXPECT_EQ(Read(""), "1:0 the file is empty; its first line names the columns\n");
    EXPECT_EQ(Read("Chain,Min,Max\n"), "1:0 there is no line after the header; add at least one\n");
}

TEST(LimitsFileTest, LineEndsOfWindowsAreNoMatter) {
    EXPECT_EQ(Read("Band,Chain,Min,Max\r\n5,A,1,2\r\n"), "2: 5 * A 1 2\n");
}

TEST(LimitsFileTest, EverythingWrongIsToldAtOnce) {
    EXPECT_EQ(Read("Band,Channel,Chain,Min,Max\n"
                   "-,36|-,C,x,1234567890\n"
                   "64..36,a..b,B|A,5,4\n"
                   "36||40,*|5,-,-,-\n"
                   "5,1,A,1,2,3\n"
                   "5,1,A,1\n"
                   "5,,A,1,2\n"
                   "\n"
                   "\"5\",1,A,1,2\n"
                   "64..36,1,A,1,2\n"
                   "1...2,|,A,1,2\n"),
              R"(2:1 no setting is "-"; write * for any value
2:2 no setting is "-"; write * for any value
2:3 "C" is no chain; write A, B, A|B or *
2:4 "x" is no decimal number; write one in dBm, or * for no bound
2:5 "1234567890" has too many digits; nine before the point and nine after it are possible
3:0 Min is above Max, so that nothing can pass; swap them
3:1 the range 64..36 is the wrong way round; write the lower end first
3:2 "a..b" is no range of numbers; write one like 36..64
3:3 "B|A" is no chain; write A, B, A|B or *
4:1 the list "36||40" has an empty place; take one | away
4:2 * in a list makes the rest of it needless; write * alone
4:3 "-" is no chain; write A, B, A|B or *
4:4 "-" is no decimal number; write one in dBm, or * for no bound
4:5 "-" is no decimal number; write one in dBm, or * for no bound
5:6 the line has 6 cells and the header 5; take those beyond it away
6:0 the line has 4 cells and the header 5; write * for any value, or for no bound
7:2 the cell is empty, so that what follows moves one cell to the left; write * for any value, or for no bound
8:0 the line is empty; take it away
9:1 the cell is in quotes, which count as a part of it; take them away
10:1 the range 64..36 is the wrong way round; write the lower end first
11:1 "1...2" is no range of numbers; write one like 36..64
11:2 the list "|" has an empty place; take one | away
11:2 the list "|" has an empty place; take one | away
)");
}

} // namespace
} // namespace Bench
