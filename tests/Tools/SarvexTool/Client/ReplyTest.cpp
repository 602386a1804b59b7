#include "Tools/SarvexTool/Client/Reply.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace SarvexTool {

namespace {

TEST(ReplyTest, HeadIsCutAtTheFirstEmptyLine) {
    struct Case {
        std::string answer;
        std::string body;
    };
    const Case cases[] = {
        {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", "hello"},
        {"HTTP/1.1 200 OK\r\n\r\n", ""},
        {"\r\n\r\nhello", "hello"},
        {"\r\n\r\n", ""},
        {"head\r\n\r\nbody\r\n\r\nrest", "body\r\n\r\nrest"},
        {"head\n\nbody", "head\n\nbody"},
        {"head\r\nbody", "head\r\nbody"},
        {"\r\n\r", "\r\n\r"},
        {"", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.answer));
        EXPECT_EQ(CutHttpHead(row.answer), row.body);
    }
}

struct SortCase {
    const char* name;
    std::string body;
    std::string information;
    std::string error;
    int returnCode;
    std::string allLines;
};

TEST(ReplyTest, LinesAreSortedByTheMarkersBeforeThem) {
    const SortCase cases[] = {
        {"lines, then a code", "hello\nSarvex tool RETURN CODE\n3\n", "hello\n", "", 3,
         "hello\nSarvex tool RETURN CODE\n3\n\n"},
        {"empty body", "", "\n", "", 0, "\n"},
        {"one line end", "\n", "\n\n", "", 0, "\n\n"},
        {"no line end at the end", "hello", "hello\n", "", 0, "hello\n"},
        {"all sections", "Sarvex tool INFO\ni\nSarvex tool ERROR\ne\nSarvex tool RETURN CODE\n7",
         "i\n", "e\n", 7,
         "Sarvex tool INFO\ni\nSarvex tool ERROR\ne\nSarvex tool RETURN CODE\n7\n"},
        {"sections in several places",
         "a\nSarvex tool ERROR\nb\nSarvex tool INFO\nc\nSarvex tool ERROR\nd\nSarvex tool INFO\n"
         "Sarvex tool INFO\ne",
         "a\nc\ne\n", "b\nd\n", 0,
         "a\nSarvex tool ERROR\nb\nSarvex tool INFO\nc\nSarvex tool ERROR\nd\nSarvex tool INFO\n"
         "Sarvex tool INFO\ne\n"},
        {"error section ends the body", "Sarvex tool ERROR\ne\n", "", "e\n\n", 0,
         "Sarvex tool ERROR\ne\n\n"},
        {"lines after the code are ignored", "Sarvex tool RETURN CODE\n3\n4\nx\n", "", "", 3,
         "Sarvex tool RETURN CODE\n3\n4\nx\n\n"},
        {"a marker ends the ignoring", "Sarvex tool RETURN CODE\n3\nx\nSarvex tool INFO\ny", "y\n",
         "", 3, "Sarvex tool RETURN CODE\n3\nx\nSarvex tool INFO\ny\n"},
        {"the last of several codes counts",
         "Sarvex tool RETURN CODE\n3\nSarvex tool RETURN CODE\n-4\n", "", "", -4,
         "Sarvex tool RETURN CODE\n3\nSarvex tool RETURN CODE\n-4\n\n"},
        {"a marker right after the code's marker", "Sarvex tool RETURN CODE\nSarvex tool INFO\nx",
         "x\n", "", 0, "Sarvex tool RETURN CODE\nSarvex tool INFO\nx\n"},
        {"code's marker is the last line", "Sarvex tool RETURN CODE", "", "", 0,
         "Sarvex tool RETURN CODE\n"},
        {"code with text after it", "Sarvex tool RETURN CODE\n12abc", "", "", 12,
         "Sarvex tool RETURN CODE\n12abc\n"},
        {"code with blanks before it", "Sarvex tool RETURN CODE\n \t +5", "", "", 5,
         "Sarvex tool RETURN CODE\n \t +5\n"},
        {"code with a carriage return", "Sarvex tool RETURN CODE\n256\r\n", "", "", 256,
         "Sarvex tool RETURN CODE\n256\r\n\n"},
        {"marker in another case", "sarvex tool error\nx", "sarvex tool error\nx\n", "", 0,
         "sarvex tool error\nx\n"},
        {"marker with a blank before it", " Sarvex tool ERROR\nx", " Sarvex tool ERROR\nx\n", "", 0,
         " Sarvex tool ERROR\nx\n"},
        {"marker with a blank after it", "Sarvex tool ERROR \nx", "Sarvex tool ERROR \nx\n", "", 0,
         "Sarvex tool ERROR \nx\n"},
        {"marker with a carriage return", "Sarvex tool ERROR\r\nx\r\n",
         "Sarvex tool ERROR\r\nx\r\n\n", "", 0, "Sarvex tool ERROR\r\nx\r\n\n"},
    };
    for (const SortCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Reply reply = SortReply(row.body);
        EXPECT_EQ(reply.Information(), row.information);
        EXPECT_EQ(reply.Error(), row.error);
        EXPECT_EQ(reply.returnCode, row.returnCode);
        EXPECT_EQ(reply.allLines, row.allLines);
        EXPECT_EQ(reply.failure, nullptr);
    }
}

TEST(ReplyTest, CopyAndMovedReplyKeepTheirTexts) {
    const std::string line(100, 'x');
    for (const std::string& text : {std::string("x"), line, "a\nSarvex tool INFO\n" + line}) {
        SCOPED_TRACE(text);
        Reply reply = SortReply(text + "\nSarvex tool ERROR\ne");
        const std::string information(reply.Information());
        const Reply copy = reply;
        const Reply moved = std::move(reply);
        reply = SortReply("another");
        for (const Reply* const pReply : {&copy, &moved}) {
            EXPECT_EQ(pReply->Information(), information);
            EXPECT_EQ(pReply->Error(), "e\n");
        }
    }
}

TEST(ReplyTest, AnswerWithCrLfLinesIsAllInformation) {
    const Reply reply = SortReply(
        "Sarvex tool INFO\r\ni\r\nSarvex tool ERROR\r\ne\r\nSarvex tool RETURN CODE\r\n3\r\n");
    EXPECT_EQ(reply.Information(), "Sarvex tool INFO\r\ni\r\nSarvex tool ERROR\r\ne\r\n"
                                   "Sarvex tool RETURN CODE\r\n3\r\n\n");
    EXPECT_EQ(reply.Error(), "");
    EXPECT_EQ(reply.returnCode, 0);
}

TEST(ReplyTest, UncalibratedAnywhereInTheSectionsReturnsTen) {
    struct Case {
        std::string body;
        int returnCode;
    };
    const Case cases[] = {
        {"it is uncalibrated now\nSarvex tool RETURN CODE\n3\n", 10},
        {"Sarvex tool RETURN CODE\n3\nSarvex tool ERROR\nxuncalibratedx\n", 10},
        {"Uncalibrated\nSarvex tool RETURN CODE\n3\n", 3},
        {"uncali\nbrated\nSarvex tool RETURN CODE\n3\n", 3},
        // Lines that are neither information nor error do not count.
        {"Sarvex tool RETURN CODE\n3\nuncalibrated\n", 3},
        {"Sarvex tool RETURN CODE\n3 uncalibrated\n", 3},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(SortReply(row.body).returnCode, row.returnCode);
    }
}

/// The message of the failure; empty when there is none.
template <typename Exception>
std::string FailureText(const Reply& reply) {
    try {
        if (reply.failure)
            std::rethrow_exception(reply.failure);
        return "";
    } catch (const Exception& exception) {
        return exception.what();
    }
}

TEST(ReplyTest, CodeLineWithoutANumberIsAFailureAndTheLastLine) {
    for (const std::string code : {"abc", "", " ", "-", "x1"}) {
        SCOPED_TRACE(code);
        const Reply reply =
            SortReply("i\nSarvex tool RETURN CODE\n" + code + "\nSarvex tool INFO\nmore");
        EXPECT_EQ(FailureText<std::invalid_argument>(reply), "invalid stoi argument");
        EXPECT_EQ(reply.allLines, "i\nSarvex tool RETURN CODE\n" + code + "\n");
        EXPECT_EQ(reply.Information(), "i\n");
        EXPECT_EQ(reply.Error(), "");
    }
}

TEST(ReplyTest, CodeOutsideThirtyTwoBitsIsAFailure) {
    for (const std::string code : {"2147483648", "-2147483649", "99999999999999999999"}) {
        SCOPED_TRACE(code);
        const Reply reply = SortReply("Sarvex tool RETURN CODE\n" + code);
        EXPECT_EQ(FailureText<std::out_of_range>(reply), "stoi argument out of range");
    }
}

TEST(ReplyTest, ExtremeCodesAreRead) {
    EXPECT_EQ(SortReply("Sarvex tool RETURN CODE\n2147483647").returnCode, 2147483647);
    EXPECT_EQ(SortReply("Sarvex tool RETURN CODE\n-2147483648").returnCode, -2147483647 - 1);
}

} // namespace

} // namespace SarvexTool
