#include "Tools/SarvexTool/Bench/Files/Correction.h"

#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> ChangesOf(std::string_view bytes) {
    std::vector<std::string> texts;
    for (const Problem& change : CorrectTestFile(bytes).changes.InOrder())
        texts.push_back(std::to_string(change.line) + ":" + std::to_string(change.column) + " " +
                        change.text);
    return texts;
}

std::size_t ErrorsOf(std::string_view bytes) {
    TextPool pool;
    return CheckTestFile(bytes, pool, 1000).problems.Count(Severity::Error);
}

TEST(CorrectionTest, ASoundFileStaysByteForByte) {
    for (const std::string_view bytes :
         {"Band, Chains\n 5 ,A\n\n6,B,7", "Band\n5\n", "Channel,Channel\n-5,a<b\n"}) {
        EXPECT_EQ(CorrectTestFile(bytes).bytes, bytes);
        EXPECT_THAT(ChangesOf(bytes), IsEmpty());
    }
    EXPECT_EQ(CorrectTestFile("").bytes, "");
}

TEST(CorrectionTest, ASpreadsheetsExportBecomesSound) {
    constexpr std::string_view bytes = "\xEF\xBB\xBF"
                                       "Band;\"Chains\";Channel\r\n"
                                       "2,4;AB;1\r\n"
                                       "\"5\";;\"36\"\r\n";
    const CorrectedTestFile corrected = CorrectTestFile(bytes);
    EXPECT_EQ(corrected.bytes, "Band,Chains,Channel\n2.4,AB,1\n5,-,36\n");
    EXPECT_THAT(ChangesOf(bytes),
                ElementsAre("1:0 commas separate the cells now",
                            "1:0 lines end in LF now, they ended in CR LF",
                            "1:1 the byte order mark is gone", "1:2 the quotes are gone",
                            "2:1 the number is 2.4 now", "3:1 the quotes are gone",
                            "3:2 the empty cell holds \"-\" now", "3:3 the quotes are gone"));
    EXPECT_GT(ErrorsOf(bytes), 0);
    EXPECT_EQ(ErrorsOf(corrected.bytes), 0);
}

struct CorrectionCase {
    std::string_view bytes;
    std::string_view corrected;
};

TEST(CorrectionTest, WhatIsCertainIsMended) {
    for (const auto& [bytes, corrected] :
         std::vector<CorrectionCase>{{"\xFF\xFE"
                                      "B\0a\0n\0d\0\n\0"
                                      "5\0"sv,
                                      "Band\n5"},
                                     {"Band\r5\r6\r", "Band\n5\n6\n"},
                                     {"Band\tChains\n5\tA\n", "Band,Chains\n5,A\n"},
                                     {"Band,Chains\n5;A\n", "Band,Chains\n5,A\n"},
                                     {"Band,Chains\n\"2,4\",A\n", "Band,Chains\n2.4,A\n"},
                                     {"Band,Chains\n5,\n", "Band,Chains\n5,-\n"},
                                     {"Band,Chains\n5,\"\"\n", "Band,Chains\n5,-\n"},
                                     // An empty column at the end, which stays.
                                     {"Band;Chains;\n5;;\n;A\n", "Band,Chains,\n5,-,\n-,A\n"},
                                     {"Band\r\n\r\n5", "Band\n\n5"}}) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(CorrectTestFile(bytes).bytes, corrected);
    }
}

TEST(CorrectionTest, WhatIsNotCertainStaysAnError) {
    for (const auto& [bytes, corrected] : std::vector<CorrectionCase>{
             // An empty cell in a line that is too short or too long, and one in the header.
             {"Band,Chains,Mode\n5,\n", "Band,Chains,Mode\n5,\n"},
             {"Band,Chains\n5,,A\n", "Band,Chains\n5,,A\n"},
             {"Band,Chains,\n5,,A\n", "Band,Chains,\n5,,A\n"},
             {"Band,Chains\n5,,\n", "Band,Chains\n5,,\n"},
             {"Band,,Chains\n5,6,A\n", "Band,,Chains\n5,6,A\n"},
             // A comma that is not between digits.
             {"Band,Chains\n\"a,b\",A\n", "Band,Chains\n\"a,b\",A\n"},
             {"Band;Chains\na,b;A\n", "Band,Chains\n\"a,b\",A\n"},
             {"Band;Chains\n1,2,3;A\n", "Band,Chains\n\"1,2,3\",A\n"},
             // Quotes with more in them than a value.
             {"Band,Chains\n\"a\"\"b\",A\n", "Band,Chains\n\"a\"\"b\",A\n"},
             {"Band,Chains\n\"5;A\"\n", "Band,Chains\n\"5;A\"\n"},
             {"Band,Chains\n\"\"\n", "Band,Chains\n\"\"\n"},
             {"Band,Chains\n\"5,A\n", "Band,Chains\n\"5,A\n"},
             {"Band,Chains\n ,A\n", "Band,Chains\n ,A\n"},
             {"Band,Chains\nB\xE4,A\n", "Band,Chains\nB\xE4,A\n"},
             {"Band,Chanel\n5,36\n", "Band,Chanel\n5,36\n"}}) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(CorrectTestFile(bytes).bytes, corrected);
        EXPECT_GT(ErrorsOf(corrected), 0);
    }
}

TEST(CorrectionTest, ACommaInTheOnlyCellOfALineSeparatesNothing) {
    const std::string corrected = CorrectTestFile("Band;\n5,A\n2,4\n6\n").bytes;
    EXPECT_EQ(corrected, "Band,\n\"5,A\"\n2.4\n6\n");
    EXPECT_GT(ErrorsOf(corrected), 0u);
}

TEST(CorrectionTest, NothingIsMendedWhereAnotherMarkWouldComeToTheFront) {
    for (const std::string_view bytes : {"\xEF\xBB\xBF\xFE\xFF"
                                         "Band\n5\n"sv,
                                         "\xEF\xBB\xBF\xEF\xBB\xBF"
                                         "Band\n5\n"sv,
                                         "\"\xFF\xFE\",Band\n5,6\n"sv}) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(CorrectTestFile(bytes).bytes, bytes);
        EXPECT_THAT(ChangesOf(bytes), IsEmpty());
        EXPECT_GT(ErrorsOf(bytes), 0);
    }
}

} // namespace
} // namespace Bench
