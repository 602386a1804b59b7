#include "Tools/Vemo/VemoSimulator/Recording.h"

#include "tests/Support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace VemoSimulator {

using testing::ElementsAre;
using testing::Pointee;

namespace {

Recording Read(const std::string& lines) {
    std::istringstream stream(lines);
    return {stream, "FILE"};
}

std::string ProblemOf(const std::string& lines) {
    try {
        Read(lines);
        return "none";
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

const std::string one = R"({"command":"c","answer":"1","end":"answered"})"
                        "\n";

} // namespace

TEST(RecordingTest, AnswersAreKeptByCommandInTheOrderOfTheFile) {
    const Recording recording = Read(one + R"({"command":"d","answer":"x","end":"answered"})" +
                                     "\r\n" + R"({"end":"answered","answer":"2","command":"c"})");
    EXPECT_THAT(recording.AnswersTo("c"), Pointee(ElementsAre("1", "2")));
    EXPECT_THAT(recording.AnswersTo("d"), Pointee(ElementsAre("x")));
    EXPECT_EQ(recording.AnswersTo("C"), nullptr);
    EXPECT_EQ(recording.AnswersTo(""), nullptr);
    EXPECT_EQ(recording.Name(), "FILE");
}

TEST(RecordingTest, OnlyAnsweredExchangesCount) {
    const Recording recording =
        Read(R"({"command":"c","answer":"half","end":"time-out","by":"client"})"
             "\n"
             R"({"command":"e","answer":"","end":"connection lost"})"
             "\n"
             R"({"command":"e","end":"unreachable"})"
             "\n"
             R"({"command":"c","answer":"whole","end":"answered","by":"supervisor"})"
             "\n");
    EXPECT_THAT(recording.AnswersTo("c"), Pointee(ElementsAre("whole")));
    EXPECT_EQ(recording.AnswersTo("e"), nullptr);
}

TEST(RecordingTest, BytesThatAreNoUtf8AreInBase64) {
    const struct {
        const char* encoded;
        std::string bytes;
    } rows[] = {
        {"", ""},
        {"/w==", "\xFF"},
        {"AP8=", std::string("\0\xFF", 2)},
        {"+/Az", "\xFB\xF0\x33"},
        {"gICAgIA=", "\x80\x80\x80\x80\x80"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoded);
        const std::string encoded = row.encoded;
        const Recording recording =
            Read(R"({"commandBase64":")" + encoded + R"(","answerBase64":")" + encoded +
                 R"(","end":"answered"})");
        EXPECT_THAT(recording.AnswersTo(row.bytes), Pointee(ElementsAre(row.bytes)));
    }
}

TEST(RecordingTest, TextsMayHoldAnyCharacter) {
    const Recording recording =
        Read(R"({"command":"\u0000\u00e4\n","answer":"\r\n\ud83d\ude00","end":"answered"})");
    EXPECT_THAT(recording.AnswersTo(std::string("\0\xC3\xA4\n", 4)),
                Pointee(ElementsAre("\r\n\xF0\x9F\x98\x80")));
}

TEST(RecordingTest, ALineThatIsNoExchangeIsNamed) {
    const struct {
        const char* line;
        const char* problem;
    } rows[] = {
        {"", "is no JSON object"},
        {"{", "is no JSON object"},
        {"[]", "is no JSON object"},
        {"7", "is no JSON object"},
        {"{\"a\":\"\xFF\"}", "is no JSON object"},
        {"{}", "has no text under the key \"end\""},
        {R"({"end":1})", "has no text under the key \"end\""},
        {R"({"end":"answered","answer":""})",
         R"(has not one of the keys "command" and "commandBase64")"},
        {R"({"end":"answered","command":"","commandBase64":"","answer":""})",
         R"(has not one of the keys "command" and "commandBase64")"},
        {R"({"end":"answered","command":""})",
         R"(has not one of the keys "answer" and "answerBase64")"},
        {R"({"end":"answered","command":1,"answer":""})", R"(has a "command" that is no text)"},
        {R"({"end":"answered","command":"","answerBase64":null})",
         R"(has a "answer" that is no text)"},
        {R"({"end":"answered","command":"","answerBase64":"AAA"})",
         R"(has a "answerBase64" that is no base64)"},
        {R"({"end":"answered","command":"","answerBase64":"A==="})",
         R"(has a "answerBase64" that is no base64)"},
        {R"({"end":"answered","command":"","answerBase64":"=AAA"})",
         R"(has a "answerBase64" that is no base64)"},
        {R"({"end":"answered","command":"","answerBase64":"AA-_"})",
         R"(has a "answerBase64" that is no base64)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(ProblemOf(one + row.line + "\n" + one),
                  std::string("FILE, line 2: ") + row.problem);
    }
}

TEST(RecordingTest, ALastLineThatWasBeingWrittenIsLeftOut) {
    EXPECT_THAT(Read(one + R"({"command":"c","answer":"2","en)").AnswersTo("c"),
                Pointee(ElementsAre("1")));
    EXPECT_EQ(ProblemOf(one + R"({"command":"c"})"),
              "FILE, line 2: has no text under the key \"end\"");
}

TEST(RecordingTest, WithoutAnAnswerThereIsNoRecording) {
    EXPECT_EQ(ProblemOf(""), "FILE holds no exchange that was answered");
    EXPECT_EQ(ProblemOf(R"({"end":"unreachable"})"
                        "\n"),
              "FILE holds no exchange that was answered");
}

TEST(RecordingTest, AFileThatCannotBeReadIsNamed) {
    const TestSupport::TemporaryDirectory directory;
    const std::string paths[] = {directory.Path("none"), directory.Path()};
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        try {
            ReadRecording(path);
            ADD_FAILURE();
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), "cannot read " + path);
        }
    }
}

} // namespace VemoSimulator
