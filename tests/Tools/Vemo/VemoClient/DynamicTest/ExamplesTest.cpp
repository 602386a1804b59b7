#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/SourceTree.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

// Runs the test files of the folder examples. The folder Expected holds what a device without noise
// gives; its powers are the answers here.

namespace {

const std::string expectedFolder = "tests/Tools/Vemo/VemoClient/DynamicTest/Expected/";

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

struct ExampleFile {
    explicit ExampleFile(const std::string& name)
        : testFile(ReadSourceFile("examples/" + name + ".csv")),
          csv(ReadSourceFile(expectedFolder + name + "/result.csv")),
          xml(ReadSourceFile(expectedFolder + name + "/result.xml")) {}

    std::string testFile;
    std::string csv;
    std::string xml;
};

/// The base changes the directory; the files are read before.
class ExampleFiles {
protected:
    ExampleFile quick{"short"};
    ExampleFile oddities{"oddities"};
    std::string sweep = ReadSourceFile("examples/sweep.csv");
};

class ExamplesTest : protected ExampleFiles, public DynamicTestFixture {
protected:
    /// Answers a line with the powers that end its row.
    static void AnswerRow(const std::string& row) {
        const std::size_t b = row.rfind(',');
        const std::size_t a = row.rfind(',', b - 1);
        const std::string powerA = row.substr(a + 1, b - a - 1);
        const std::string powerB = row.substr(b + 1);
        AnswerLine("Started.\n" + (powerA == "NA" ? "" : PowerA(powerA)) +
                   (powerB == "NA" ? "" : PowerB(powerB)));
    }

    void ExpectResults(const ExampleFile& example) {
        AnswerQueries();
        const std::vector<std::string> rows = LinesOf(example.csv);
        std::for_each(rows.begin() + 1, rows.end(), AnswerRow);
        EXPECT_EQ(Run(example.testFile), 0);
        EXPECT_EQ(ReadFile("result.csv"), example.csv);
        EXPECT_EQ(ReadFile("result.xml"), example.xml);
        EXPECT_EQ(console.Err(), "");
    }
};

TEST_F(ExamplesTest, ShortOneGivesItsResults) {
    EXPECT_EQ(LinesOf(quick.testFile).size(), 13u);
    ExpectResults(quick);
}

TEST_F(ExamplesTest, OdditiesGiveTheirResults) {
    EXPECT_EQ(LinesOf(oddities.testFile).size(), 13u);
    ExpectResults(oddities);
}

TEST_F(ExamplesTest, SweepIsAFullTableOfMoreThanFiveHundredLines) {
    const std::vector<std::string> lines = LinesOf(sweep);
    EXPECT_GT(lines.size(), 500u);
    for (const std::string& line : lines) {
        SCOPED_TRACE(line);
        EXPECT_EQ(PowerTest::SplitFields(line).size(), 10u);
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 9);
    }
    EXPECT_EQ(Run(sweep), 0);
    EXPECT_EQ(console.Err(), "");
    EXPECT_EQ(LinesOf(ReadFile("result.csv")).size(), lines.size());
}

} // namespace
