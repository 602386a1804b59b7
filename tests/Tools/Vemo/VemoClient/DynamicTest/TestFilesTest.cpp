#include "Tools/Vemo/VemoClient/DynamicTest/TestFiles.h"

#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <gtest/gtest.h>

namespace {

class TestFilesTest : public testing::Test {
protected:
    static bool Opens(const std::string& testFileName) {
        return TestFiles(testFileName, "a.csv", "a.xml").AreOpen();
    }

    WorkingDirectory directory{"sarvex-testfiles-test"};
};

TEST_F(TestFilesTest, AllThreeOpenAndTheResultFilesAreEmptied) {
    WriteFile("test.csv", "line\n");
    WriteFile("a.csv", "old");
    WriteFile("a.xml", "old");
    EXPECT_TRUE(Opens("test.csv"));
    EXPECT_EQ(ReadFile("a.csv"), "");
    EXPECT_EQ(ReadFile("a.xml"), "");
}

TEST_F(TestFilesTest, NothingOfTheTestFileIsLostByOpening) {
    WriteFile("test.csv", "line\n");
    TestFiles files("test.csv", "a.csv", "a.xml");
    std::string line;
    EXPECT_TRUE(std::getline(files.test, line));
    EXPECT_EQ(line, "line");
    EXPECT_FALSE(std::getline(files.test, line));
}

TEST_F(TestFilesTest, EmptyTestFileOpens) {
    WriteFile("test.csv", "");
    EXPECT_TRUE(Opens("test.csv"));
}

TEST_F(TestFilesTest, MissingTestFileDoesNotOpen) {
    EXPECT_FALSE(Opens("missing.csv"));
    EXPECT_FALSE(Opens(""));
}

TEST_F(TestFilesTest, DirectoryIsNoTestFile) {
    std::filesystem::create_directory("directory");
    EXPECT_FALSE(Opens("directory"));
}

TEST_F(TestFilesTest, ResultFileThatCannotBeCreatedDoesNotOpen) {
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
