#include "Tools/SarvexTool/Bench/Files/Table.h"

#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const TableRules& Rules() {
    static const TableRules rules{.columns = {"Band", "Chains", "Channel", "Resource Unit"}};
    return rules;
}

/// What is said of a file, one line for each problem.
std::vector<std::string> ProblemsOf(std::string_view bytes, const TableRules& rules = Rules()) {
    Table table(bytes, rules);
    TableRow row;
    while (table.Read(row)) {
    }
    std::vector<std::string> texts;
    for (const Problem& problem : table.Problems().InOrder())
        texts.push_back((problem.severity == Severity::Error ? "E " : "W ") +
                        std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                        problem.text);
    return texts;
}

/// The texts of a file's rows, the header first.
std::vector<std::vector<std::string>> CellsOf(std::string_view bytes) {
    Table table(bytes, Rules());
    std::vector<std::vector<std::string>> rows;
    const auto add = [&rows](const TableRow& row) {
        rows.emplace_back();
        for (const Cell& cell : row.cells)
            rows.back().emplace_back(cell.text);
    };
    add(table.Header());
    TableRow row;
    while (table.Read(row))
        add(row);
    return rows;
}

/// The text as the client reads it on Windows.
std::string WindowsText(std::string_view bytes) {
    std::string text;
    for (std::size_t place = 0; place < bytes.size() && bytes[place] != '\x1A'; ++place) {
        if (!bytes.substr(place).starts_with("\r\n"))
            text += bytes[place];
    }
    return text;
}

TEST(TableTest, ASoundFileHasNoProblems) {
    for (const std::string_view bytes :
         {"Band,Chains\n5,AB\n", "Band,Chains\n5,AB", " Band\t, Resource Unit \n 5,\t-\nΩ,x y\n",
          "Channel\n36\n"})
        EXPECT_THAT(ProblemsOf(bytes), IsEmpty()) << bytes;
}

TEST(TableTest, ASoundFileIsCutAsTheClientCutsIt) {
    constexpr std::string_view bytes = "Band,Chains,Channel\r\n 5,AB\t,36\r\n-,a b,x\r\n";
    EXPECT_THAT(CellsOf(bytes),
                ElementsAre(ElementsAre("Band", "Chains", "Channel"), ElementsAre("5", "AB", "36"),
                            ElementsAre("-", "a b", "x")));
    for (const std::string& text : {std::string(bytes), WindowsText(bytes)}) {
        const std::string line = text.substr(text.find('\n') + 1);
        EXPECT_THAT(PowerTest::SplitFields(line.substr(0, line.find('\n'))),
                    ElementsAre("5", "AB", "36"));
    }
}

TEST(TableTest, TheColumnsHaveTheirPlaces) {
    const Table table("Channel,Band,Band\n", Rules());
    EXPECT_EQ(table.PlaceOf(0), 2);
    EXPECT_EQ(table.PlaceOf(1), std::nullopt);
    EXPECT_EQ(table.PlaceOf(2), 0);
}

struct ProblemCase {
    std::string_view bytes;
    std::vector<std::string> problems;
};

using namespace std::string_view_literals;
constexpr const char* unsetRemedy = "write \"-\" for a setting that is to stay";

TEST(TableTest, EachProblemIsToldWithItsPlaceAndRemedy) {
    const std::string remedy = unsetRemedy;
    for (
        const auto& [bytes, problems] : std::vector<ProblemCase>{
            {"", {"E 1:0 the file is empty; its first line names the columns"}},
            {"Band\n", {"E 1:0 there is no line after the header; add at least one"}},
            {",,\n5\n", {"E 1:0 the header is empty; the first line names the columns"}},
            {"\n5\n", {"E 1:0 the header is empty; the first line names the columns"}},
            {"\xEF\xBB\xBF"
             "Band\n5\n",
             {"E 1:1 the file begins with a byte order mark, which counts as a part of "
              "the first column's name; save it as UTF-8 without one"}},
            {"\xFF\xFE"
             "B\0a\0n\0d\0\n\0"
             "5\0\n\0"sv,
             {"E 1:0 the file is in UTF-16; save it as UTF-8 without byte order mark"}},
            {"Band;Chains\n5;AB\n",
             {"E 1:0 the cells are separated by semicolons; separate them by commas"}},
            {"Band\tChains\n5\tAB\n",
             {"E 1:0 the cells are separated by tabs; separate them by commas"}},
            {"Band,Chains\n5;AB\n",
             {"E 2:0 the line's cells are separated by semicolons; separate them by commas"}},
            {"Band,Chains\n5\tAB\n",
             {"E 2:0 the line's cells are separated by tabs; separate them by commas"}},
            {"Band,\"Chains\"\n",
             {"E 1:0 there is no line after the header; add at least one",
              "E 1:2 the cell is in quotes, which count as a part of it; take them away"}},
            {"Band,Chains\n5,A\"B\n",
             {"E 2:2 the cell A\"B holds a quote, which would end its text in the command; take it "
              "away"}},
            {"Band;Channel\n2,4;1\n",
             {"E 1:0 the cells are separated by semicolons; separate them by commas",
              "E 2:1 the number 2,4 has a decimal comma; write a point"}},
            {"Band\n\"a,b\"\n",
             {"E 2:1 the cell is in quotes, which count as a part of it; take them away",
              "E 2:1 the cell \"a,b\" holds a comma, at which it is cut; a cell cannot hold one"}},
            {"Band,Chains\n5\r,AB\n",
             {"E 2:0 there is a carriage return in the line; take it away"}},
            {"Band\n5\r", {"E 2:0 there is a carriage return in the line; take it away"}},
            {"Band\r5\r6\r",
             {"E 1:0 the lines end in a carriage return alone, so that all of them count as "
              "the header; end them with a line feed"}},
            {"Band\n5\0\n"sv, {"E 2:1 the cell holds the control byte 0x00; take it away"}},
            {"Band\n5\x1B[m\n", {"E 2:1 the cell holds the control byte 0x1B; take it away"}},
            {"Band\n5\n6\x1A\n",
             {"E 3:1 the cell holds the control byte 0x1A, which ends the file on Windows; take it "
              "away"}},
            {"Band\nB\xE4nd\n",
             {"E 2:1 the cell \"B\xE4nd\" is not in UTF-8; save the file as UTF-8"}},
            {"Band\n5\t6\n",
             {"E 2:1 there is a tab in the cell \"5\t6\", which ends a value in the command; take "
              "it away"}},
            {"Band,Chains,Channel\n5,,36\n",
             {"E 2:2 the cell is empty, so that what follows moves one cell to the left; " +
              remedy}},
            {"Band,,Channel\n5,A,36\n",
             {"E 1:2 the cell is empty, so that what follows moves one cell to the left; name the "
              "column"}},
            {"Band,Chains\n ,A\n",
             {"E 2:1 the cell holds nothing but blanks, which are sent as they are; " + remedy}},
            {"Band,Chains,Channel\n5,A\n6\n",
             {"E 2:0 the line has 2 cells and the header 3; " + remedy,
              "E 3:0 the line has 1 cell and the header 3; " + remedy}},
            {"Band\n\n5\n", {"W 2:0 the line is empty; it is run with the settings as they are"}},
            {"Band\r\n\r\n5\r\n",
             {"W 1:0 the lines end in CR LF, which a client on Linux copies into result.csv; save "
              "the file with LF",
              "E 2:0 the line is empty but for its CR, which a client on Linux takes for the first "
              "cell; take the line away"}},
            {"Band\n5,A\n",
             {"W 2:2 the line has 2 cells and the header 1; those beyond it are "
              "ignored"}},
            {"Band,Chanel\n5,36\n",
             {"E 1:2 there is no column \"Chanel\"; did you mean \"Channel\"?"}},
            {"band,resource unit\n5,36\n",
             {"E 1:1 there is no column \"band\"; did you mean \"Band\"?",
              "E 1:2 there is no column \"resource unit\"; did you mean \"Resource Unit\"?"}},
            {"Antenna\n5\n",
             {"E 1:1 there is no column \"Antenna\"; the columns are Band, Chains, Channel, "
              "Resource Unit"}},
            {"sep=,\n5\n",
             {"E 1:1 the line with \"sep=\" is for a spreadsheet alone, and counts as the "
              "header; take the line away"}},
            {"Band,Chains,Band\n5,A,6\n",
             {"E 1:3 the column \"Band\" is cell 1 already; take one of them away"}},
        }) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(ProblemsOf(bytes), problems);
    }
}

TEST(TableTest, ATableMayBeStricterAboutLinesAndHaveItsOwnRemedy) {
    TableRules rules = Rules();
    rules.longLines = Severity::Error;
    rules.emptyLines = Severity::Error;
    rules.remedy = "write *";
    EXPECT_THAT(ProblemsOf("Band,Chains\n5,A,6\n\n,A\n", rules),
                ElementsAre("E 2:3 the line has 3 cells and the header 2; take those beyond it "
                            "away",
                            "E 3:0 the line is empty; take it away",
                            "E 4:1 the cell is empty, so that what follows moves one cell to the "
                            "left; write *"));
}

TEST(TableTest, AnEmptyColumnAtTheEndIsNone) {
    EXPECT_THAT(ProblemsOf("Band,Chains,,\n5,A,,\n6,B,\n7,A\n"), ElementsAre());
    EXPECT_THAT(ProblemsOf("Band,Chains,\n5,A,6\n5,A, \n5,A,,\n"),
                ElementsAre("W 2:3 the line has 3 cells and the header 2; those beyond it are "
                            "ignored",
                            "W 3:3 the line has 3 cells and the header 2; those beyond it are "
                            "ignored",
                            "W 4:3 the line has 4 cells and the header 2; those beyond it are "
                            "ignored"));
    EXPECT_THAT(ProblemsOf("Band,Chains\n5,A,\n"),
                ElementsAre("W 2:3 the line has 3 cells and the header 2; those beyond it are "
                            "ignored"));
}

TEST(TableTest, AFileFullOfOneMistakeNamesTheFirstOnesAndCountsTheOthers) {
    std::string bytes = "Band,Chains\n";
    for (int line = 0; line < 150; ++line)
        bytes += "5,\n";
    const std::vector<std::string> problems = ProblemsOf(bytes);
    ASSERT_EQ(problems.size(), 101);
    EXPECT_EQ(problems[99].substr(0, 6), "E 101:");
    EXPECT_EQ(problems[100], "E 0:0 and 50 more empty cells");
}

TEST(TableTest, CellsAreReadAsTheirAuthorMeantThem) {
    EXPECT_THAT(CellsOf("\xEF\xBB\xBF"
                        "Band;\"Channel\"\r\n\"2,4\";1\r\n"),
                ElementsAre(ElementsAre("Band", "Channel"), ElementsAre("2,4", "1")));
}

} // namespace
} // namespace Bench
