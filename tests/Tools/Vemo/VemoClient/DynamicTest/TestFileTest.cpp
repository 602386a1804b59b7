#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace PowerTest {

namespace {

using namespace std::string_literals;

TEST(TestFileLineTest, FieldsAreTrimmedUnlessTheyAreBlankAltogether) {
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

TEST(TestFileLineTest, LinesAreCutAtRunsOfCommas) {
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

TEST(TestFileHeaderTest, FirstUnknownColumnIsFound) {
    const Fields known{"Band", "Chains", "Large RU Size", "Band"};
    EXPECT_EQ(FindUnknownColumn(known), nullptr);
    EXPECT_EQ(FindUnknownColumn({}), nullptr);
    const Fields unknown{"Band", "band", "Chanel"};
    EXPECT_EQ(FindUnknownColumn(unknown), &unknown[1]);
}

TEST(TestFileLineTest, LineOfOneMebibyteIsCut) {
    constexpr std::size_t size = 1 << 20;
    EXPECT_EQ(SplitFields(std::string(size, ',')), Fields());
    EXPECT_EQ(SplitFields(std::string(size, 'x')), Fields{std::string(size, 'x')});
    std::string line;
    while (line.size() < size)
        line += "5,";
    EXPECT_EQ(SplitFields(line), Fields(size / 2, "5"));
}

class TestFileTest : public testing::Test {
protected:
    static bool Opens(const std::string& testFileName) {
        return TestFiles(testFileName, "a.csv", "a.xml").AreOpen();
    }

    WorkingDirectory directory{"sarvex-testfiles-test"};
};

TEST_F(TestFileTest, AllThreeOpenAndTheResultFilesAreEmptied) {
    WriteFile("test.csv", "line\n");
    WriteFile("a.csv", "old");
    WriteFile("a.xml", "old");
    EXPECT_TRUE(Opens("test.csv"));
    EXPECT_EQ(ReadFile("a.csv"), "");
    EXPECT_EQ(ReadFile("a.xml"), "");
}

TEST_F(TestFileTest, NothingOfTheTestFileIsLostByOpening) {
    WriteFile("test.csv", "line\n");
    TestFiles files("test.csv", "a.csv", "a.xml");
    std::string line;
    EXPECT_TRUE(std::getline(files.test, line));
    EXPECT_EQ(line, "line");
    EXPECT_FALSE(std::getline(files.test, line));
}

TEST_F(TestFileTest, EmptyTestFileOpens) {
    WriteFile("test.csv", "");
    EXPECT_TRUE(Opens("test.csv"));
}

TEST_F(TestFileTest, MissingTestFileDoesNotOpen) {
    EXPECT_FALSE(Opens("missing.csv"));
    EXPECT_FALSE(Opens(""));
}

TEST_F(TestFileTest, DirectoryIsNoTestFile) {
    std::filesystem::create_directory("directory");
    EXPECT_FALSE(Opens("directory"));
}

TEST_F(TestFileTest, ResultFileThatCannotBeCreatedDoesNotOpen) {
    WriteFile("test.csv", "");
    for (const char* name : {"a.csv", "a.xml"}) {
        SCOPED_TRACE(name);
        std::filesystem::remove(name);
        std::filesystem::create_directory(name);
        EXPECT_FALSE(Opens("test.csv"));
        std::filesystem::remove(name);
        EXPECT_TRUE(Opens("test.csv"));
    }
}

} // namespace

} // namespace PowerTest
