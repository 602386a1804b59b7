#include "tests/EndToEnd/Faults/Runner.h"

#include <gtest/gtest.h>

// The end mark counts at the end of a received chunk of more than its own length, and nowhere else.
// A chunk is what came so far, 512 bytes at the most. Where the mark does not count, the end of the
// connection ends the answer.

namespace EndToEnd::Faults {
namespace {

using namespace std::string_literals;

TEST(EndMarkFaultsTest, AnswerInOneSegmentWhoseMarkIsAroundTheEndOfAChunk) {
    // In one segment, every chunk but the last is 512 bytes long.
    struct Row {
        std::size_t size;
        bool isMark;
    };
    const Row rows[] = {
        {4, false},   {5, true},     {6, true},     {511, true},   {512, true},  {513, false},
        {514, false}, {515, false},  {516, false},  {517, true},   {518, true},  {1023, true},
        {1024, true}, {1025, false}, {1027, false}, {1028, false}, {1029, true}, {1030, true},
        {5120, true}, {5124, false}, {5125, true},
    };
    std::vector<Scenario> scenarios;
    for (const Row& row : rows) {
        const std::string text(row.size - 4, 'x');
        const std::string name = "mark at the end of " + std::to_string(row.size) + " bytes";
        scenarios.push_back(row.isMark ? Holding(name, text + "Done", {0, text + "\n"})
                                       : Closing(name, text + "Done", {0, text + "Done\n"}));
    }
    RunAll(scenarios);
}

TEST(EndMarkFaultsTest, AnswerInTwoSegmentsThatMeetAtEachByte) {
    struct Row {
        const char* first;
        const char* second;
        bool isMark;
    };
    const Row rows[] = {
        {"h", "elloDone", true},  {"he", "lloDone", true},  {"hel", "loDone", true},
        {"hell", "oDone", true},  {"hello", "Done", false}, {"helloD", "one", false},
        {"helloDo", "ne", false}, {"helloDon", "e", false},
    };
    std::vector<Scenario> scenarios;
    for (const Row& row : rows) {
        const std::string name = "["s + row.first + "] apart from [" + row.second + "]";
        Script reaction = {Send(row.first), SendApart(row.second)};
        if (!row.isMark)
            reaction.push_back(FinishSending());
        scenarios.push_back(Answering(name, reaction, {0, row.isMark ? "hello\n" : "helloDone\n"}));
    }
    RunAll(scenarios);
}

TEST(EndMarkFaultsTest, MarkThatIsNone) {
    RunAll({
        Closing("nothing but the mark", "Done", {0, "Done\n"}),
        Closing("mark in the middle", "oneDone two", {0, "oneDone two\n"}),
        Closing("mark at the beginning", "Done and more", {0, "Done and more\n"}),
        Closing("mark in front of a line end", "helloDone\n", {0, "helloDone\n\n"}),
        Closing("mark in front of a CR LF", "helloDone\r\n", {0, "helloDone\r\n\n"}),
        Closing("mark in small letters", "hellodone", {0, "hellodone\n"}),
        Closing("mark in capitals", "helloDONE", {0, "helloDONE\n"}),
        Closing("mark in front of a blank", "helloDone ", {0, "helloDone \n"}),
        Closing("mark that lacks its last letter", "helloDon", {0, "helloDon\n"}),
        Closing("mark at the end of the head", "HTTP/1.1 200 Done\r\n\r\nhello", {0, "hello\n"}),
        Answering("twice nothing but the mark, apart",
                  {Send("Done"), SendApart("Done"), FinishSending()}, {0, "DoneDone\n"}),
        Answering("mark in three segments",
                  {Send("helloD"), SendApart("on"), SendApart("e"), FinishSending()},
                  {0, "helloDone\n"}),
        Answering("mark in a segment of its own in an error section",
                  {Send("Sarvex tool ERROR\nlate\n"), SendApart("Done"), FinishSending()},
                  {0, "", "late\nDone\n"}),
        Answering("mark in a segment of its own in place of the code",
                  {Send("Sarvex tool RETURN CODE\n"), SendApart("Done"), FinishSending()},
                  codeIsNoNumber),
        Answering("mark in a segment of its own after the code",
                  {Send("Sarvex tool RETURN CODE\n3\n"), SendApart("Done"), FinishSending()}, {3}),
        Closing("no mark", "hello", {0, "hello\n"}),
        Closing("no mark after the code", "Sarvex tool RETURN CODE\n3\n", {3}),
    });
}

TEST(EndMarkFaultsTest, MarkThatCountsWhereItIsUnexpected) {
    RunAll({
        Holding("two marks at the end", "helloDoneDone", {0, "helloDone\n"}),
        Holding("mark after one byte", "xDone", {0, "x\n"}),
        Holding("mark that ends a longer word", "AbandoneDone", {0, "Abandone\n"}),
        Holding("mark right after a marker's line", "Sarvex tool ERROR\nDone", {0, "", "\n"}),
        Holding("mark right after a marker", "Sarvex tool INFODone", {0}),
        Holding("mark in place of the code", "Sarvex tool RETURN CODE\nDone", codeIsNoNumber),
        Holding("mark right after the code", "Sarvex tool RETURN CODE\n3Done", {3}),
        Holding("mark inside the head", "HTTP/1.1 200 OK\r\nX: Done",
                {0, "HTTP/1.1 200 OK\r\nX: \n"}),
        Answering("nothing but the mark, then a text that ends in it",
                  {Send("Done"), SendApart("helloDone")}, {0, "Donehello\n"}),
        Answering("mark at the end of a segment in the middle",
                  {Send("helloDone"), SendApart(" and more"), FinishSending()}, {0, "hello\n"}),
        Holding("mark at the end of a chunk in the middle",
                std::string(508, 'x') + "Done" + std::string(100, 'y') + "Done",
                {0, std::string(508, 'x') + "\n"}),
        Holding("mark in one chunk and at the end of the next",
                std::string(300, 'x') + "Done" + std::string(300, 'y') + "Done",
                {0, std::string(300, 'x') + "Done" + std::string(300, 'y') + "\n"}),
    });
}

TEST(EndMarkFaultsTest, AnswerThatComesByteByByte) {
    RunAll({
        Answering("a text", {Drip("hello\nDone"), FinishSending()}, {0, "hello\nDone\n"}),
        Answering("a whole answer",
                  {Drip("HTTP/1.1 200 OK\r\n\r\nSarvex tool INFO\nhello\nSarvex tool ERROR\nlate\n"
                        "Sarvex tool RETURN CODE\n37\nDone"),
                   FinishSending()},
                  {37, "hello\n", "late\n"}),
        Answering("a whole answer that is reset at its end",
                  {Drip(head + "Sarvex tool RETURN CODE\n37\n"), AwaitTaken(), Reset()}, {37}),
        Answering("a text whose last five bytes come together", {Drip("hell"), SendApart("oDone")},
                  {0, "hello\n"}),
    });
}

TEST(EndMarkFaultsTest, NulCutsItsChunkAndEndsTheAnswerWhenItBeginsOne) {
    const std::string chunk(512, 'x');
    RunAll({
        Holding("nothing but a NUL", "\0"s, nothingCame),
        Holding("at the beginning", "\0hello\n"s, nothingCame),
        Holding("at the beginning of the second chunk", chunk + "\0hello"s, {0, chunk + "\n"}),
        Answering("in a segment of its own", {Send("hello"), SendApart("\0"s)}, {0, "hello\n"}),
        Answering("at the beginning of a segment", {Send("hello"), SendApart("\0 more"s)},
                  {0, "hello\n"}),
        Holding("after the mark", "helloDone\0"s, {0, "hello\n"}),
        Holding("after the mark, with more after it", "helloDone\0 and more"s, {0, "hello\n"}),
        Closing("in front of the mark", "hello\0Done"s, {0, "hello\n"}),
        Closing("inside the mark", "helloDo\0ne"s, {0, "helloDo\n"}),
        Closing("after a chunk that is nothing but the mark", "Done\0hello"s, {0, "Done\n"}),
        Closing("in the body", head + "hel\0lo\n"s, {0, "hel\n"}),
        Closing("in the head", "HTTP/1.1 200 OK\r\n\0\r\n\r\nhello"s, {0, "HTTP/1.1 200 OK\r\n\n"}),
        Closing("between head and body", head + "\0hello"s, nothingCame),
        Closing("in the code",
                "Sarvex tool RETURN CODE\n3\0"s
                "7\n",
                {3}),
        Closing("in a marker", "Sarvex tool\0 ERROR\nlate\n"s, {0, "Sarvex tool\n"}),
        Closing("in the first chunk of two", "hello\0"s + std::string(506, 'x') + " there",
                {0, "hello there\n"}),
        Answering("in a segment with another one after it",
                  {Send("hel\0xxx"s), SendApart("loDone")}, {0, "hello\n"}),
        Closing("as every second byte", "h\0e\0l\0l\0o\0"s, {0, "h\n"}),
    });
}

} // namespace
} // namespace EndToEnd::Faults
