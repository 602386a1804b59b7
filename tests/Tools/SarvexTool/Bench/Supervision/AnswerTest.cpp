#include "Tools/SarvexTool/Bench/Supervision/Answer.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n";

struct Reading {
    const char* body;
    std::int32_t code;
    std::optional<std::int32_t> explicitCode;
    const char* words;
};

TEST(AnswerTest, CodeAndWordsAreReadAsTheClientReadsThem) {
    const Reading readings[] = {
        {"Sarvex tool INFO\nStopped.\nSarvex tool RETURN CODE\n0\nDone", 0, 0, "Stopped."},
        {"Sarvex tool RETURN CODE\n0\nDone", 0, 0, "return code 0"},
        {"Sarvex tool RETURN CODE\n7", 7, 7, "return code 7"},
        {"Sarvex tool INFO\none\nSarvex tool ERROR\ntwo\n\nthree\r\nSarvex tool RETURN CODE\n4\nDone",
         4, 4, "two; three"},
        {"Stopped.\nDone", 0, std::nullopt, "Stopped."},
        {"Sarvex tool RETURN CODE\nabc\nDone", 0, std::nullopt, "return code 0"},
        {"Sarvex tool RETURN CODE\n1\nSarvex tool RETURN CODE\n0\nDone", 0, 0, "return code 0"},
        {"uncalibrated\nSarvex tool RETURN CODE\n0\nDone", 10, 0, "uncalibrated"},
        {"not Sarvex tool RETURN CODE\n0\nDone", 0, std::nullopt, "not Sarvex tool RETURN CODE; 0"},
        {"", 0, std::nullopt, "return code 0"}};
    for (const Reading& reading : readings) {
        SCOPED_TRACE(reading.body);
        const Answer answer = ReadAnswer(head + reading.body);
        EXPECT_EQ(answer.code, reading.code);
        EXPECT_EQ(answer.explicitCode, reading.explicitCode);
        EXPECT_EQ(answer.words, reading.words);
    }
}

TEST(AnswerTest, SettingsAreKeptWithTheCodesZeroAndTen) {
    EXPECT_TRUE(ReadAnswer("Sarvex tool RETURN CODE\n0\nDone").IsAccepted());
    EXPECT_TRUE(ReadAnswer("Sarvex tool RETURN CODE\n10\nDone").IsAccepted());
    EXPECT_TRUE(ReadAnswer("uncalibrated\nSarvex tool RETURN CODE\n3\nDone").IsAccepted());
    EXPECT_FALSE(ReadAnswer("Sarvex tool RETURN CODE\n1\nDone").IsAccepted());
}

TEST(AnswerTest, OnlyAnExplicitZeroIsAConfirmation) {
    EXPECT_TRUE(ReadAnswer("Sarvex tool RETURN CODE\n0\nDone").IsConfirmation());
    EXPECT_TRUE(ReadAnswer("uncalibrated\nSarvex tool RETURN CODE\n0\nDone").IsConfirmation());
    EXPECT_FALSE(ReadAnswer("Stopped.\nDone").IsConfirmation());
    EXPECT_FALSE(ReadAnswer("Sarvex tool RETURN CODE\n10\nDone").IsConfirmation());
    EXPECT_FALSE(ReadAnswer("").IsConfirmation());
}

TEST(AnswerTest, CodeThatIsNoNumberIsTold) {
    EXPECT_TRUE(ReadAnswer("Sarvex tool RETURN CODE\nabc\nDone").isCodeUnreadable);
    EXPECT_FALSE(ReadAnswer("Sarvex tool RETURN CODE\n12abc\nDone").isCodeUnreadable);
}

TEST(AnswerTest, ReturnCodeIsThereWhenItsLineHasEnded) {
    EXPECT_TRUE(HasReturnCode("Sarvex tool RETURN CODE\n0\n"));
    EXPECT_FALSE(HasReturnCode("Sarvex tool RETURN CODE\n1"));
    EXPECT_FALSE(HasReturnCode("Sarvex tool RETURN CODE\n-"));
    EXPECT_TRUE(HasReturnCode("one\nSarvex tool RETURN CODE\n0\n"));
    EXPECT_FALSE(HasReturnCode("one\nSarvex tool RETURN CODE\n"));
    EXPECT_FALSE(HasReturnCode("one\nSarvex tool RETURN CODE"));
    EXPECT_FALSE(HasReturnCode("one Sarvex tool RETURN CODE\n0"));
    EXPECT_FALSE(HasReturnCode("Sarvex tool RETURN CODE\n0\nSarvex tool RETURN CODE\n1"));
    EXPECT_TRUE(HasReturnCode("Sarvex tool RETURN CODE\n0\nx Sarvex tool RETURN CODE\n"));
    EXPECT_FALSE(HasReturnCode(""));
}

} // namespace
} // namespace Bench
