#include "Tools/SarvexTool/Bench/Files/TestLines.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <vector>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TestLinesTest : public testing::Test {
protected:
    /// Names the file of these bytes.
    std::string File(const std::string& bytes) const { return directory.Create("test.csv", bytes); }

    /// The lines of a file as the client reads them, its header first.
    static std::vector<std::string> ReadLikeTheClient(const std::string& name) {
        std::ifstream file(name);
        std::vector<std::string> lines(1);
        std::getline(file, lines[0]);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }

    /// The settings of the only line, by their titles.
    std::vector<std::string> OwnOf(const std::string& header, const std::string& text) const {
        TestLines lines(File(header + "\n" + text + "\n"));
        TestLine line;
        EXPECT_TRUE(lines.Read(line));
        std::vector<std::string> own;
        for (std::size_t index = 0; index < line.own.size(); ++index) {
            if (line.own[index])
                own.push_back(std::string(NameOf(static_cast<Setting>(index))) + "=" +
                              *line.own[index]);
        }
        return own;
    }

    TestSupport::TemporaryDirectory directory;
};

TEST_F(TestLinesTest, LinesAreReadOneAfterTheOther) {
    TestLines lines(File("Band,Chains\n5,AB\n-,A"));
    EXPECT_EQ(lines.Header(), "Band,Chains");
    EXPECT_TRUE(lines.IsHeaderKnown());
    TestLine line;
    ASSERT_TRUE(lines.Read(line));
    EXPECT_EQ(line.number, 2u);
    EXPECT_EQ(line.text, "5,AB");
    ASSERT_TRUE(lines.Read(line));
    EXPECT_EQ(line.number, 3u);
    EXPECT_EQ(line.text, "-,A");
    EXPECT_FALSE(lines.Read(line));
    EXPECT_FALSE(lines.Read(line));
}

TEST_F(TestLinesTest, ALineSetsWhatTheClientSends) {
    EXPECT_THAT(OwnOf("Band,Chains,Mode", "5, AB\t,x"),
                ElementsAre("Band=5", "Chains=AB", "Mode=x"));
    EXPECT_THAT(OwnOf("Band,Chains,Mode", "-,AB"), ElementsAre("Chains=AB"));
    EXPECT_THAT(OwnOf("Chains, Band ", "AB,5,surplus"), ElementsAre("Band=5", "Chains=AB"));
    EXPECT_THAT(OwnOf("Band,Chains", ""), IsEmpty());
    EXPECT_THAT(OwnOf("", "5,AB"), IsEmpty());
}

TEST_F(TestLinesTest, WhatFollowsAnEmptyCellMovesToTheLeft) {
    EXPECT_THAT(OwnOf("Band,Chains,Mode", ",AB,,x"), ElementsAre("Band=AB", "Chains=x"));
}

TEST_F(TestLinesTest, ACellOfBlanksIsSet) {
    EXPECT_THAT(OwnOf("Band,Chains", "  ,A"), ElementsAre("Band=  ", "Chains=A"));
    EXPECT_THAT(OwnOf("Band,Chains", "\r,A"), ElementsAre("Band=\r", "Chains=A"));
}

TEST_F(TestLinesTest, OfTwoColumnsWithOneTitleTheLaterCounts) {
    EXPECT_THAT(OwnOf("Band,Band", "5,6"), ElementsAre("Band=6"));
}

TEST_F(TestLinesTest, WithAnUnknownColumnNoLineSetsAnything) {
    for (const std::string header : {"Band,band", "Band,Chains,x",
                                     "\xEF\xBB\xBF"
                                     "Band"}) {
        SCOPED_TRACE(header);
        EXPECT_FALSE(TestLines(File(header)).IsHeaderKnown());
        EXPECT_THAT(OwnOf(header, "5,AB"), IsEmpty());
    }
}

TEST_F(TestLinesTest, AnEmptyFileHasAnEmptyHeader) {
    TestLines lines(File(""));
    EXPECT_EQ(lines.Header(), "");
    EXPECT_TRUE(lines.IsHeaderKnown());
    TestLine line;
    EXPECT_FALSE(lines.Read(line));
}

TEST_F(TestLinesTest, AFileThatCannotBeReadIsTold) {
    EXPECT_THROW(TestLines(directory.Path("none.csv")), BadInput);
    EXPECT_THROW(TestLines(directory.Path()), BadInput);
}

TEST_F(TestLinesTest, TheClientReadsTheSameLinesInSegments) {
    for (const std::string& bytes :
         {std::string(""), std::string("Band"), std::string("Band\n"), std::string("Band\n5\n6\n7"),
          std::string("Band\r\n5\r\n6\r\n"), std::string("Band\r\n5\r\r\n\r\n6\r"),
          std::string("Band\n\n\n5,,\n"), std::string("Band\n5\x1A\n6\n"),
          std::string("Band\r5\r6"), std::string("Band\nM\xFCnchen,\0x\n", 17)}) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        const std::string name = File(bytes);
        std::vector<std::string> texts;
        TestLines lines(name);
        for (TestLine line; lines.Read(line);)
            texts.push_back(line.text);
        EXPECT_EQ(CountTestLines(name), texts.size());
        const std::vector<std::string> expected = ReadLikeTheClient(name);
        ASSERT_EQ(texts.size() + 1, expected.size());
        for (std::size_t start = 0; start < texts.size() || start == 0; start += 2) {
            const std::size_t count = std::min<std::size_t>(2, texts.size() - start);
            const std::string segment = directory.Path("lines.csv");
            WriteSegment(segment, lines.Header(), std::span(texts).subspan(start, count));
            const std::vector<std::string> read = ReadLikeTheClient(segment);
            ASSERT_EQ(read.size(), count + 1);
            EXPECT_EQ(read[0], expected[0]);
            for (std::size_t index = 0; index < count; ++index)
                EXPECT_EQ(read[index + 1], expected[start + index + 1]);
        }
    }
}

TEST_F(TestLinesTest, ASegmentThatCannotBeWrittenIsTold) {
    EXPECT_THROW(WriteSegment(directory.Path("none/lines.csv"), "Band", {}), BadOutput);
}

} // namespace
} // namespace Bench
