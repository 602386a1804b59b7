#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace Bench {
namespace {

std::string Printed(const std::string& file, const std::vector<Problem>& problems,
                    bool hasColours) {
    std::ostringstream text;
    PrintProblems({text, hasColours}, file, problems);
    return text.str();
}

TEST(ProblemsTest, EachIsALineWithItsPlace) {
    EXPECT_EQ(Printed("tests/a.csv",
                      {{Severity::Error, 3, 2, "the cell is empty"},
                       {Severity::Warning, 12, 0, "the line is empty"}},
                      false),
              "tests/a.csv:3:2: error: the cell is empty\n"
              "tests/a.csv:12:0: warning: the line is empty\n");
}

TEST(ProblemsTest, OneOfTheFileItselfHasNoPlaceInIt) {
    EXPECT_EQ(Printed("-", {{Severity::Error, 0, 0, "cannot be read"}}, false),
              "-: error: cannot be read\n");
}

TEST(ProblemsTest, ColoursTellErrorsFromWarnings) {
    EXPECT_EQ(
        Printed("a.csv", {{Severity::Error, 1, 2, "x"}, {Severity::Warning, 3, 0, "y"}}, true),
        "\x1B[1ma.csv:1:2:\x1B[0m \x1B[1;31merror:\x1B[0m x\n"
        "\x1B[1ma.csv:3:0:\x1B[0m \x1B[1;35mwarning:\x1B[0m y\n");
}

TEST(ProblemsTest, NeitherNameNorTextReachesTheTerminalWithEscapeSequences) {
    EXPECT_EQ(
        Printed("\x1B]0;a", {{Severity::Error, 1, 1, "the cell \"\x1B[2J\n\" is odd"}}, false),
        "\\x1B]0;a:1:1: error: the cell \"\\x1B[2J\\n\" is odd\n");
}

TEST(ProblemsTest, ATextLongerThanAScreenIsShownWithoutItsMiddle) {
    const std::string whole = "the cell " + std::string(991, 'x');
    EXPECT_EQ(Printed("a.csv", {{Severity::Error, 1, 1, whole}}, false),
              "a.csv:1:1: error: " + whole + "\n");
    EXPECT_EQ(Printed("a.csv", {{Severity::Error, 1, 1, whole + "; mend it"}}, false),
              "a.csv:1:1: error: the cell " + std::string(491, 'x') + " [109 bytes] " +
                  std::string(391, 'x') + "; mend it\n");
}

TEST(ProblemsTest, NoCharacterIsCutInTwo) {
    std::string letters;
    for (int i = 0; i < 1000; ++i)
        letters += "\xC3\xA4";
    const std::string expected = "a.csv:1:1: error: x" + letters.substr(0, 498) + " [1102 bytes] " +
                                 letters.substr(0, 400) + "\n";
    EXPECT_EQ(Printed("a.csv", {{Severity::Error, 1, 1, "x" + letters}}, false), expected);
    EXPECT_EQ(Printed("a.csv", {{Severity::Error, 1, 1, letters + "x"}}, false),
              "a.csv:1:1: error: " + letters.substr(0, 500) + " [1102 bytes] " +
                  letters.substr(0, 398) + "x\n");
}

} // namespace
} // namespace Bench
