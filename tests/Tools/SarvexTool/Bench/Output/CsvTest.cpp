#include "Tools/SarvexTool/Bench/Output/Csv.h"
#include "tests/Tools/SarvexTool/Bench/Output/OutputFixture.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace Bench {
namespace {

TEST(CsvTest, EachMeasurementIsALine) {
    const OutputFixture fixture;
    std::ostringstream stream;
    WriteCsv(stream, fixture.Judged());
    EXPECT_EQ(
        stream.str(),
        R"(Line,Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource unit,Large RU Size,Chain,Power,Minimum,Maximum,Verdict,Margin,Limit line,Reason
2,5,AB,80,36,-,MCS9,-,-,-,-,A,12.5,12,14,pass,0.5,2,
2,5,AB,80,36,-,MCS9,-,-,-,-,B,11.75,12,14,too low,-0.25,2,
3,2.4,A,20,6,-,MCS9,-,-,-,-,A,15,,14.5,too high,-0.5,3,
4,6,A,20,500,-,MCS9,-,-,-,-,A,,,,not measured,,4,no power was reported
5,6,A,20,1,-,MCS9,-,-,-,-,A,,,,not measured,,4,Band is uncertain since line 4
6,7,B,20,1,-,MCS9,-,-,-,-,B,1,,,no limit,,,
7,5,AB,80,36,-,MCS9,-,-,-,-,A,13,12,14,pass,1,2,
7,5,AB,80,36,-,MCS9,-,-,-,-,B,13,12,14,pass,1,2,
)");
}

TEST(CsvTest, WhatWouldBeAFormulaGetsAnApostrophe) {
    const std::pair<const char*, const char*> cells[] = {
        {"36", "36"},
        {"-36.5", "-36.5"},
        {"-", "-"},
        {"996+484", "996+484"},
        {"=1+1", "'=1+1"},
        {"+5", "'+5"},
        {"-1+1", "'-1+1"},
        {"--", "'--"},
        {"@SUM(A1)", "'@SUM(A1)"},
        {" =1", "' =1"},
        {"\xEF\xBC\x9D"
         "1",
         "'\xEF\xBC\x9D"
         "1"},
        {"\t=1", "\\t=1"},
        {"=HYPERLINK(\"x\")", "\"'=HYPERLINK(\"\"x\"\")\""},
        {"a;b", "\"a;b\""},
        {"a\"b", "\"a\"\"b\""},
        {"", ""},
        {"\x1B[2J\xFF", "\\x1B[2J\\xFF"},
    };
    for (const auto& [text, cell] : cells)
        EXPECT_EQ(CsvCell(text), cell) << text;
}

TEST(CsvTest, WordsOfTheDaemonAreACell) {
    OutputFixture fixture;
    fixture.JudgeRefusal("a,\"b\"\n=1");
    std::ostringstream stream;
    WriteCsv(stream, fixture.Judged());
    const std::string end = ",\"the daemon refused the line: a,\"\"b\"\"\\n=1\"\n";
    EXPECT_EQ(stream.str().substr(stream.str().size() - end.size()), end);
}

TEST(CsvTest, WhereItIsToldEachLineHasItsPlace) {
    OutputFixture fixture;
    fixture.TellPlaces();
    std::ostringstream stream;
    WriteCsv(stream, fixture.Judged());
    for (const char* const end :
         {",Limit line,Reason,Bench,Device,Attempt\n",
          "\n2,5,AB,80,36,-,MCS9,-,-,-,-,A,12.5,12,14,pass,0.5,2,,'=b\\x1B,DUT,2\n",
          ",15,,14.5,too high,-0.5,3,,a,,10\n", ",not measured,,4,no power was reported,,,\n",
          ",no limit,,,,,,\n"})
        EXPECT_NE(stream.str().find(end), std::string::npos) << end << stream.str();
}

} // namespace
} // namespace Bench
