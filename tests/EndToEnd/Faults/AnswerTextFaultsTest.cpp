#include "tests/EndToEnd/Faults/Runner.h"

#include <gtest/gtest.h>

#include <random>

// Answers that are complete and say something wrong.

namespace EndToEnd::Faults {
namespace {

using namespace std::string_literals;

TEST(AnswerTextFaultsTest, HeadThatIsMissingDoubledOrWrong) {
    const std::string status = "HTTP/1.1 200 OK\r\n\r\n";
    RunAll({
        Holding("no head", "hello\nDone", {0, "hello\n\n"}),
        Holding("nothing but the head's end", "\r\n\r\nDone", nothingCame),
        Holding("nothing but the status line", "HTTP/1.1 200 OK\r\nDone",
                {0, "HTTP/1.1 200 OK\r\n\n"}),
        Holding("nothing but a head", head + "Done", nothingCame),
        Holding("two heads", status + status + "helloDone", {0, "HTTP/1.1 200 OK\r\n\r\nhello\n"}),
        Holding("interim answer in front", "HTTP/1.1 100 Continue\r\n\r\n" + status + "helloDone",
                {0, "HTTP/1.1 200 OK\r\n\r\nhello\n"}),
        Holding("head whose lines end in line feeds", "HTTP/1.1 200 OK\n\nhelloDone",
                {0, "HTTP/1.1 200 OK\n\nhello\n"}),
        Holding("head whose lines end in carriage returns", "HTTP/1.1 200 OK\r\rhelloDone",
                {0, "HTTP/1.1 200 OK\r\rhello\n"}),
        Holding("head whose empty line holds a blank", "HTTP/1.1 200 OK\r\n \r\nhelloDone",
                {0, "HTTP/1.1 200 OK\r\n \r\nhello\n"}),
        Holding("status of an error", "HTTP/1.1 500 Internal Server Error\r\n\r\nhelloDone",
                {0, "hello\n"}),
        Holding("another protocol", "RTSP/1.0 200 OK\r\n\r\nhelloDone", {0, "hello\n"}),
        Holding("length that is too short", "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nhelloDone",
                {0, "hello\n"}),
        Holding("length that is too long",
                "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhelloDone", {0, "hello\n"}),
        Holding("chunked coding",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\nDone",
                {0, "5\r\nhello\r\n0\r\n\r\n\n"}),
        Holding("empty line inside a body without a head", "one\r\n\r\ntwoDone", {0, "two\n"}),
        Holding("uncalibrated in the head only", "HTTP/1.1 200 uncalibrated\r\n\r\nhelloDone",
                {0, "hello\n"}),
        Holding("head of 100 KB",
                "HTTP/1.1 200 OK\r\nX: " + std::string(100'001, 'x') + "\r\n\r\nhelloDone",
                {0, "hello\n"}),
        Answering("head whose end comes in two segments",
                  {Send("HTTP/1.1 200 OK\r\n\r"), SendApart("\nhelloDone")}, {0, "hello\n"}),
        Answering("head whose end comes byte by byte",
                  {Send("HTTP/1.1 200 OK"), Drip("\r\n\r\n"), SendApart("helloDone")},
                  {0, "hello\n"}),
    });
}

TEST(AnswerTextFaultsTest, LinesThatEndInCrLfHoldNoMarker) {
    RunAll({
        Holding("all lines",
                head + "Sarvex tool INFO\r\nhello\r\nSarvex tool ERROR\r\nlate\r\n"
                       "Sarvex tool RETURN CODE\r\n3\r\nDone",
                {0, "Sarvex tool INFO\r\nhello\r\nSarvex tool ERROR\r\nlate\r\n"
                    "Sarvex tool RETURN CODE\r\n3\r\n\n"}),
        Holding("an error's marker only", "Sarvex tool ERROR\r\nlate\nDone",
                {0, "Sarvex tool ERROR\r\nlate\n\n"}),
        Holding("the code only", "Sarvex tool RETURN CODE\n3\r\nDone", {3}),
        Holding("an empty code", "Sarvex tool RETURN CODE\n\r\nDone", codeIsNoNumber),
        Holding("an uncalibrated device", "uncalibrated\r\nSarvex tool RETURN CODE\r\n3\r\nDone",
                {10, "uncalibrated\r\nSarvex tool RETURN CODE\r\n3\r\n\n"}),
        Holding("lines that end in a carriage return alone", "Sarvex tool ERROR\rlate\rDone",
                {0, "Sarvex tool ERROR\rlate\r\n"}),
        Holding("lines that end in LF CR", "Sarvex tool ERROR\n\rlate\n\rDone",
                {0, "", "\rlate\n\r\n"}),
    });
}

TEST(AnswerTextFaultsTest, MarkerThatIsNearlyOne) {
    std::vector<Scenario> scenarios;
    for (const std::string line : {"sarvex tool ERROR", "Sarvex tool error", " Sarvex tool ERROR",
                                   "Sarvex tool ERROR ", "Sarvex  tool ERROR", "Sarvex tool ERROR:",
                                   "Sarvex tool", "Sarvex tool RETURNCODE", "Sarvex tool WARNING"})
        scenarios.push_back(Holding("[" + line + "]", line + "\ntextDone", {0, line + "\ntext\n"}));
    RunAll(scenarios);
}

TEST(AnswerTextFaultsTest, SectionsInAnUnusualOrder) {
    const std::string info = "Sarvex tool INFO\n";
    const std::string error = "Sarvex tool ERROR\n";
    const std::string code = "Sarvex tool RETURN CODE\n";
    RunAll({
        Holding("no section", "Done again, Done", {0, "Done again, \n"}),
        Holding("code first", code + "3\n" + info + "hello\n" + error + "lateDone",
                {3, "hello\n", "late\n"}),
        Holding("each section twice",
                info + "a\n" + error + "b\n" + code + "1\n" + info + "c\n" + error + "d\n" + code +
                    "2Done",
                {2, "a\nc\n", "b\nd\n"}),
        Holding("sections that are empty", info + error + info + error + "Done", {0, "", "\n"}),
        Holding("code's section without a line", code + info + "helloDone", {0, "hello\n"}),
        Holding("code's marker twice", code + code + "3Done", {3}),
        Holding("text after the code", code + "3\nignored\nuncalibrated\nDone", {3}),
        Holding("marker as the code", code + "Sarvex tool ERROR\n3Done", {0, "", "3\n"}),
    });
}

TEST(AnswerTextFaultsTest, ReturnCodeThatIsUnusualOrNone) {
    struct Row {
        std::string text;
        int exitCode;
    };
    const Row codes[] = {
        {"0", 0},
        {"255", 255},
        {"256", 256},
        {"-1", -1},
        {"-0", 0},
        {"+7", 7},
        {"007", 7},
        {" 7", 7},
        {"\t\v\f\r 7", 7},
        {"7 ", 7},
        {"12abc", 12},
        {"3.9", 3},
        {"1e3", 1},
        {"0x10", 0},
        {"1 2", 1},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"00000000000000000000000000000000000000003", 3},
        {"7" + std::string(100'001, 'x'), 7},
    };
    std::vector<Scenario> scenarios;
    for (const Row& row : codes)
        scenarios.push_back(Closing("code [" + row.text.substr(0, 50) + "]",
                                    "Sarvex tool RETURN CODE\n" + row.text, {row.exitCode}));
    const std::string noCodes[] = {"abc",
                                   " ",
                                   "\r",
                                   "-",
                                   "+",
                                   "--1",
                                   "+-1",
                                   "- 1",
                                   ".5",
                                   ",5",
                                   "x7",
                                   "\xEF\xBB\xBF"
                                   "7",
                                   "2147483648",
                                   "-2147483649",
                                   "4294967296",
                                   "99999999999999999999",
                                   "-99999999999999999999",
                                   std::string(100'001, '9')};
    for (const std::string& text : noCodes)
        scenarios.push_back(Closing("no code [" + text.substr(0, 50) + "]",
                                    "hello\nSarvex tool RETURN CODE\n" + text, codeIsNoNumber));
    scenarios.push_back(Closing("no code after a good one",
                                "Sarvex tool RETURN CODE\n3\nSarvex tool RETURN CODE\nabc",
                                codeIsNoNumber));
    RunAll(scenarios);
}

TEST(AnswerTextFaultsTest, UncalibratedDeviceOverrulesTheCode) {
    const std::string three = "\nSarvex tool RETURN CODE\n3Done";
    RunAll({
        Holding("in the information", "is uncalibrated." + three, {10, "is uncalibrated.\n"}),
        Holding("in the errors", "Sarvex tool ERROR\nis uncalibrated." + three,
                {10, "", "is uncalibrated.\n"}),
        Holding("without a code", "uncalibratedDone", {10, "uncalibrated\n"}),
        Holding("inside a longer word", "xuncalibratedx" + three, {10, "xuncalibratedx\n"}),
        Holding("after the code", "Sarvex tool RETURN CODE\n3\nuncalibratedDone", {3}),
        Holding("in capitals", "Uncalibrated" + three, {3, "Uncalibrated\n"}),
        Holding("over two lines", "uncali\nbrated" + three, {3, "uncali\nbrated\n"}),
        Holding("over two chunks", std::string(506, 'x') + "uncalibrated" + three,
                {10, std::string(506, 'x') + "uncalibrated\n"}),
        Answering("over two segments", {Send("uncali"), SendApart("brated" + three)},
                  {10, "uncalibrated\n"}),
        Holding("with a code that is none", "uncalibrated\nSarvex tool RETURN CODE\nabcDone",
                codeIsNoNumber),
        Closing("cut inside the word", "uncalibrate", {0, "uncalibrate\n"}),
    });
}

/// All byte values but NUL, in random order, many times over.
std::string Rubbish(unsigned seed, std::size_t size) {
    std::mt19937 random(seed);
    std::string bytes;
    while (bytes.size() < size)
        bytes += static_cast<char>(random() % 255 + 1);
    return bytes;
}

TEST(AnswerTextFaultsTest, RubbishIsPrintedAsItCame) {
    std::vector<Scenario> scenarios;
    for (const unsigned seed : {1u, 2u, 3u, 4u, 5u, 6u}) {
        const std::string bytes = Rubbish(seed, 3000);
        scenarios.push_back(
            Closing("3000 random bytes, seed " + std::to_string(seed), bytes, {0, bytes + "\n"}));
    }
    const std::string others[] = {
        std::string(3000, '\xFF'),        "SSH-2.0-OpenSSH_9.2\r\n",
        "220 mail.example.org ESMTP\r\n", "\x15\x03\x01",
        "\x1B[2J\x1B[1;1H\a\b",           "\x1A\x04",
        "%s%n%s%n${1}${2}$(name){int:5}", "<html>\n<body>404</body>\n</html>\n",
    };
    for (const std::string& bytes : others)
        scenarios.push_back(
            Closing(testing::PrintToString(bytes.substr(0, 40)), bytes, {0, bytes + "\n"}));
    RunAll(scenarios);
}

TEST(AnswerTextFaultsTest, AnswerOfUnusualSize) {
    const std::size_t size = 4 << 20;
    const std::string line(size, 'x');
    std::string lines;
    std::string markers;
    for (int number = 0; number < 300'000; ++number) {
        lines += "a\n";
        markers += "Sarvex tool ERROR\nSarvex tool INFO\n";
    }
    // The end of the connection ends these: who reads when decides where the chunks of so much end.
    RunAll({
        Closing("long line", line, {0, line + "\n"}),
        Closing("long line in the errors", "Sarvex tool ERROR\n" + line, {0, "", line + "\n"}),
        Closing("long lines after the code", "Sarvex tool RETURN CODE\n3\n" + line + "\n" + line,
                {3}),
        Closing("many lines", lines, {0, lines + "\n"}),
        Closing("many lines in the errors", "Sarvex tool ERROR\n" + lines, {0, "", lines + "\n"}),
        Closing("many empty lines", std::string(300'000, '\n'), {0, std::string(300'001, '\n')}),
        Closing("many sections", markers, {0, "\n"}),
        Closing("many NULs", "hello" + std::string(5000, '\0'), {0, "hello\n"}),
    });
    Skip("answer of 100 MiB", "ExchangeTest has it, with the client's peak of memory");
}

} // namespace
} // namespace EndToEnd::Faults
