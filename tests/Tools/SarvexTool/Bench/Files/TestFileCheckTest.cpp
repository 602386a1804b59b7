#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Exception.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t manyLines = 1000;

/// All columns, so that nothing is unset.
constexpr const char* header =
    "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource unit,"
    "Large RU Size\n";
constexpr const char* firstLine = "5,AB,20,36,HE,MCS0,SISO,26,0,none\n";

std::vector<std::string> ProblemsOf(const std::string& bytes, std::uint64_t mostLines = manyLines) {
    TextPool pool;
    std::vector<std::string> texts;
    for (const Problem& problem : CheckTestFile(bytes, pool, mostLines).problems.InOrder())
        texts.push_back((problem.severity == Severity::Error ? "E " : "W ") +
                        std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                        problem.text);
    return texts;
}

/// The problems of a third line whose one cell, under a column, holds a text.
std::vector<std::string> ProblemsOfCell(std::size_t column, const std::string& text) {
    std::string line;
    for (std::size_t place = 0; place < SettingCount; ++place)
        line.append(place == 0 ? "" : ",").append(place == column ? text : "-");
    return ProblemsOf(std::string(header) + firstLine + line + "\n");
}

TEST(TestFileCheckTest, ASoundFileHasNoProblems) {
    EXPECT_THAT(ProblemsOf(std::string(header) + firstLine + "-,A,-,40,-,-,-,-,-,-\n"), IsEmpty());
}

TEST(TestFileCheckTest, ChainsAreThoseThatPowersAreFiledFor) {
    const std::string problem = "E 3:2 no power is filed for the chains \"";
    const std::string rest = "\", only for A, B and AB";
    EXPECT_THAT(ProblemsOfCell(1, "ab"), ElementsAre(problem + "ab" + rest + "; did you mean AB?"));
    EXPECT_THAT(ProblemsOfCell(1, "A+B"),
                ElementsAre(problem + "A+B" + rest + "; did you mean AB?"));
    EXPECT_THAT(ProblemsOfCell(1, "BA"), ElementsAre(problem + "BA" + rest + "; did you mean AB?"));
    EXPECT_THAT(ProblemsOfCell(1, "C"), ElementsAre(problem + "C" + rest));
    EXPECT_THAT(ProblemsOfCell(1, "B"), IsEmpty());
}

TEST(TestFileCheckTest, AnEmptyLastColumnIsNoneUnlessACarriageReturnIsInIt) {
    const std::string problem =
        "E 1:11 the header ends in a comma before its CR LF, so that a client on Linux takes the CR "
        "for the name of a column, and no line has any setting; take the comma away, or save the "
        "file with LF";
    std::string columns = header;
    columns.pop_back();
    EXPECT_THAT(ProblemsOf(columns + ",\n" + firstLine), IsEmpty());
    EXPECT_THAT(ProblemsOf(columns + ",\r\n" + firstLine), testing::Contains(problem));
    EXPECT_THAT(ProblemsOf(columns + "\r\n" + firstLine), testing::Not(testing::Contains(problem)));
}

TEST(TestFileCheckTest, AValueIsNoOption) {
    EXPECT_THAT(ProblemsOfCell(3, "-36"),
                ElementsAre("E 3:4 the daemon would take \"-36\" for an option; a value cannot "
                            "begin with \"-\""));
    EXPECT_THAT(ProblemsOfCell(3, "3-6"), IsEmpty());
}

TEST(TestFileCheckTest, AVariableIsNotSentAsItIs) {
    EXPECT_THAT(ProblemsOfCell(6, "a$(b)"),
                ElementsAre("E 3:7 the client would look for a variable to put in the place of "
                            "\"$(\" in \"a$(b)\"; take it away"));
    EXPECT_THAT(ProblemsOfCell(6, "$b ${1}"), IsEmpty());
}

TEST(TestFileCheckTest, MarkupMakesResultXmlInvalidWhereItIsFiled) {
    const std::string rest =
        "\" would make result.xml invalid, for the client writes it there as it "
        "is; take \"<\" and \"&\" away";
    for (const std::string text : {"a<b", "a&b", "\xEF\xBF\xBE", "\xEF\xBF\xBF"})
        EXPECT_THAT(ProblemsOfCell(0, text), ElementsAre("E 3:1 \"" + text + rest));
    EXPECT_THAT(ProblemsOfCell(9, "a&b"), ElementsAre("E 3:10 \"a&b" + rest));
    // The mode is filed nowhere.
    EXPECT_THAT(ProblemsOfCell(6, "a<&b"), IsEmpty());
    EXPECT_THAT(ProblemsOfCell(0, "a>'Ω"), IsEmpty());
}

TEST(TestFileCheckTest, ATypedLiteralIsSentAsItsValue) {
    EXPECT_THAT(ProblemsOfCell(3, "{int:0x24}"),
                ElementsAre("W 3:4 \"{int:0x24}\" is a typed literal: the client sends its value; "
                            "write the value itself"));
    EXPECT_THAT(ProblemsOfCell(3, "{36}"), IsEmpty());
}

TEST(TestFileCheckTest, ACellOfBlanksIsToldOnce) {
    EXPECT_THAT(ProblemsOfCell(1, "  "),
                ElementsAre("E 3:2 the cell holds nothing but blanks, which are sent as they are; "
                            "write \"-\" for a setting that is to stay"));
}

TEST(TestFileCheckTest, AnUnsetSettingIsToldOnceWhetherTheHeaderHasItOrNot) {
    const std::string some =
        "Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource unit,"
        "Large RU Size,Chains\n";
    const std::string rest =
        " when this one is run, so that the device's own value counts; set it here";
    EXPECT_THAT(
        ProblemsOf(some + "20,36,HE,MCS0,SISO,26,0,none,-\n"
                          "20,40,HE,MCS0,SISO,26,0,none,-\n"
                          "20,40,HE,MCS0,SISO,26,0,none,A\n"),
        ElementsAre("W 2:0 no line has set Band" + rest, "W 2:0 no line has set Chains" + rest));
}

TEST(TestFileCheckTest, ARepeatIsToldWithTheLineThatItRepeats) {
    EXPECT_THAT(ProblemsOf(std::string(header) + firstLine + "-,-,-,40,-,-,-,-,-,-\n" + firstLine),
                ElementsAre("W 4:0 the line repeats line 2"));
}

TEST(TestFileCheckTest, ALineWithoutAnySettingIsToldAsSuchAlone) {
    EXPECT_THAT(ProblemsOf(std::string(header) + firstLine + "-,-,-,-,-,-,-,-,-,-\n\n"),
                ElementsAre("W 3:0 the line sets nothing; it is run with the settings as they are",
                            "W 4:0 the line is empty; it is run with the settings as they are"));
}

TEST(TestFileCheckTest, MoreLinesThanTheSystemCarriesAreToldWhereTheyBegin) {
    const std::string three = std::string(header) + firstLine + "6,-,-,-,-,-,-,-,-,-\n" +
                              "7,-,-,-,-,-,-,-,-,-\n8,-,-,-,-,-,-,-,-,-\n";
    EXPECT_THAT(ProblemsOf(three, 2),
                ElementsAre("W 4:0 this system can carry 2 lines in one run of the client; split "
                            "the file here"));
    EXPECT_THAT(ProblemsOf(three, 4), IsEmpty());
}

TEST(TestFileCheckTest, ThePlanIsThatOfTheCellsAsTheirAuthorMeantThem) {
    TextPool pool;
    const CheckedTestFile file = CheckTestFile("\xEF\xBB\xBF"
                                               "Channel;Chains\r\n\"36\";AB\r\n-;A\r\n",
                                               pool, manyLines);
    EXPECT_EQ(file.plan.configurations, 2);
    EXPECT_EQ(file.plan.measurements, 3);
    ASSERT_EQ(file.plan.distinct.size(), 2);
    EXPECT_EQ(*file.plan.distinct[1].settings[Setting::Channel], "36");
    EXPECT_EQ(file.columns[static_cast<std::size_t>(Setting::Chains)], 2);
    EXPECT_EQ(file.columns[static_cast<std::size_t>(Setting::Band)], 0);
}

/// Whether the client makes something else than a text of it.
bool IsOtherThanText(const std::string& text) {
    const Core::Value value(text);
    try {
        value.GetRef<std::string>();
        // A literal of the type string is a text too, but not the same one.
        return value.ToString() != text;
    } catch (...) {
        Utilities::TakeCaughtException();
        return true;
    }
}

TEST(TestFileCheckLiteralTest, ATypedLiteralIsWhatTheClientTakesForOne) {
    for (const std::string text : {"{int8:1}",
                                   "{uint8:1}",
                                   "{short:1}",
                                   "{int16:1}",
                                   "{uint16:0x10}",
                                   "{int:7}",
                                   "{int32:7}",
                                   "{uint32:7}",
                                   "{long:7}",
                                   "{int64:7}",
                                   "{uint64:7}",
                                   "{double:0.5}",
                                   "{bool:1}",
                                   "{string:AB}",
                                   "{int:x}",
                                   "{string:a:b}",
                                   "{int:}",
                                   "{nosuchtype:1}",
                                   "{int}",
                                   "{}",
                                   "{",
                                   "}",
                                   "",
                                   "int:7",
                                   "{int:7",
                                   "int:7}",
                                   " {int:7}",
                                   "{Int:7}",
                                   "{:7}",
                                   "{int :7}"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(IsTypedLiteral(text), IsOtherThanText(text));
    }
}

} // namespace
} // namespace Bench
