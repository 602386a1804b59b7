#include "Tools/Vemo/VemoSimulator/Answer.h"
#include "Tools/Vemo/VemoSimulator/FaultRule.h"
#include "Tools/Vemo/VemoSimulator/FaultTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace VemoSimulator {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t npos = std::string::npos;

const char* const targetA = "Target Power: Band 5 Chain A (1) 17.5 dBm";
const char* const targetB = "Target Power: Band 5 Chain B (2) 18 dBm";

Reply MakeReply() {
    return {{"Band: 5", targetA, targetB}, {}, "0"};
}

std::string BodyOf(const std::string& answer) {
    return answer.substr(answer.find("\r\n\r\n") + 4);
}

/// What a client that reads pieces of 512 bytes makes of the answer.
std::string ReadByPieces(const std::string& answer) {
    constexpr std::size_t pieceSize = 512;
    std::string message;
    for (std::size_t start = 0; start < answer.size(); start += pieceSize) {
        message += answer.substr(start, pieceSize);
        if (answer.size() - start >= 5 && message.ends_with("Done"))
            return message.substr(0, message.size() - 4);
    }
    return message + " and waits";
}

} // namespace

TEST(AnswerTest, SectionsAreInOrderAndTheEndMarkIsLast) {
    const Reply reply{{"one", "two"}, {"three"}, "4"};
    EXPECT_EQ(BuildAnswer({}, reply), "HTTP/1.1 200 OK\r\n"
                                      "Content-Type: text/plain\r\n"
                                      "Content-Length: 79\r\n"
                                      "Connection: close\r\n"
                                      "\r\n"
                                      "Sarvex tool INFO\none\ntwo\n"
                                      "Sarvex tool ERROR\nthree\n"
                                      "Sarvex tool RETURN CODE\n4\n"
                                      "Done");
}

TEST(AnswerTest, SectionsWithoutLinesAreLeftOut) {
    EXPECT_EQ(BodyOf(BuildAnswer({}, {})), "Sarvex tool RETURN CODE\n0\nDone");
}

TEST(AnswerTest, AClientThatReadsByPiecesStopsAtTheEndWhateverTheLength) {
    for (std::size_t size = 0; size <= 1100; ++size) {
        SCOPED_TRACE(size);
        const std::string answer = BuildAnswer({}, {{std::string(size, '.')}, {}, "0"});
        EXPECT_EQ(ReadByPieces(answer), answer.substr(0, answer.size() - 4));
    }
}

TEST(AnswerTest, APieceThatEndsLikeTheMarkDoesNotStopAClient) {
    for (std::size_t size = 0; size <= 512; ++size) {
        SCOPED_TRACE(size);
        const std::string answer =
            BuildAnswer({}, {{std::string(size, '.') + "Done" + std::string(600, '.')}, {}, "0"});
        EXPECT_EQ(ReadByPieces(answer), answer.substr(0, answer.size() - 4));
    }
}

TEST(AnswerTest, MissingChainsLoseTheirTargetPowerAlone) {
    AnswerPlan plan;
    plan.missingChains = "B";
    EXPECT_THAT(ApplyToReply(plan, MakeReply()).information, ElementsAre("Band: 5", targetA));
    plan.missingChains = "A";
    EXPECT_THAT(ApplyToReply(plan, MakeReply()).information, ElementsAre("Band: 5", targetB));
    plan.missingChains = "BA";
    EXPECT_THAT(ApplyToReply(plan, MakeReply()).information, ElementsAre("Band: 5"));
}

TEST(AnswerTest, AnUncalibratedTransmitterHasNoTargetPower) {
    AnswerPlan plan;
    plan.isUncalibrated = true;
    EXPECT_THAT(ApplyToReply(plan, MakeReply()).information,
                ElementsAre("Band: 5", "The transmitter is uncalibrated."));
}

TEST(AnswerTest, TheReturnCodeCanBeReplaced) {
    AnswerPlan plan;
    plan.returnCode = "abc";
    EXPECT_EQ(ApplyToReply(plan, MakeReply()).returnCode, "abc");
    EXPECT_EQ(ApplyToReply({}, {{}, {}, "3"}).returnCode, "3");
}

TEST(AnswerTest, AddedLinesComeFirstAndHaveTheirExactSize) {
    const struct {
        std::uint64_t filler;
        std::vector<std::size_t> lines;
    } rows[] = {{0, {}}, {1, {0}}, {80, {79}}, {81, {79, 0}}, {200, {79, 79, 39}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.filler);
        AnswerPlan plan;
        plan.fillerBytes = row.filler;
        std::vector<std::string> expected;
        for (const std::size_t size : row.lines)
            expected.emplace_back(size, '.');
        expected.emplace_back("one");
        EXPECT_EQ(ApplyToReply(plan, {{"one"}, {}, "0"}).information, expected);
    }
}

TEST(AnswerTest, ALongLineHasItsExactSize) {
    AnswerPlan plan;
    plan.longLineBytes = 5'000'000;
    EXPECT_EQ(ApplyToReply(plan, {{"one"}, {}, "0"}).information,
              (std::vector<std::string>{std::string(5'000'000, '.'), "one"}));
}

TEST(AnswerTest, CrLfEndsEveryLineOfTheBody) {
    AnswerPlan plan;
    plan.hasCrLf = true;
    EXPECT_EQ(BodyOf(BuildAnswer(plan, {{"one"}, {}, "0"})),
              "Sarvex tool INFO\r\none\r\nSarvex tool RETURN CODE\r\n0\r\nDone");
}

TEST(AnswerTest, ANulIsBeforeTheNamedByteButNeverAfterTheMark) {
    const std::string plain = "Sarvex tool RETURN CODE\n0\n";
    for (const std::size_t position : {0U, 7U, 26U, 27U, 1000000U}) {
        SCOPED_TRACE(position);
        AnswerPlan plan;
        plan.nulPosition = position;
        std::string expected = plain;
        expected.insert(std::min(position, plain.size()), 1, '\0');
        EXPECT_EQ(BodyOf(BuildAnswer(plan, {})), expected + "Done");
    }
}

TEST(AnswerTest, TheMarkCanBeLeftOut) {
    AnswerPlan plan;
    plan.hasEndMark = false;
    EXPECT_THAT(BuildAnswer(plan, {}), EndsWith("\r\n\r\nSarvex tool RETURN CODE\n0\n"));
}

TEST(AnswerTest, ARawAnswerReplacesEverything) {
    AnswerPlan plan;
    plan.rawAnswer = std::string("\0raw", 4);
    plan.hasCrLf = true;
    EXPECT_EQ(BuildAnswer(plan, MakeReply()), std::string("\0raw", 4));
}

TEST(AnswerTest, RefusalsHaveTheirStatusAndNoMark) {
    EXPECT_EQ(BuildRefusal(404, "Not here."), "HTTP/1.1 404 Not Found\r\n"
                                              "Content-Type: text/plain\r\n"
                                              "Content-Length: 10\r\n"
                                              "Connection: close\r\n"
                                              "\r\n"
                                              "Not here.\n");
    EXPECT_THAT(BuildRefusal(400, ""), StartsWith("HTTP/1.1 400 Bad Request\r\n"));
    EXPECT_THAT(BuildRefusal(413, ""), StartsWith("HTTP/1.1 413 Payload Too Large\r\n"));
}

TEST(AnswerTest, AnAnswerGoesOutAtOnceAndInOnePiece) {
    const Delivery delivery = PlanDelivery({}, "answerDone");
    EXPECT_EQ(delivery.bytes, "answerDone");
    EXPECT_GE(delivery.firstPiece, delivery.bytes.size());
    EXPECT_EQ(delivery.delay, 0ms);
    EXPECT_EQ(delivery.ending, Ending::HalfClose);
    EXPECT_FALSE(delivery.endsProgram);
}

TEST(AnswerTest, AMarkThatAClientWouldMissIsMovedByAFirstPiece) {
    const struct {
        std::size_t size;
        std::size_t firstPiece;
    } rows[] = {{5, npos}, {512, npos}, {513, 1},     {514, 2},  {515, 3},
                {516, 4},  {517, npos}, {1024, npos}, {1025, 1}, {1028, 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        const Delivery delivery = PlanDelivery({}, std::string(row.size - 4, '.') + "Done");
        EXPECT_EQ(delivery.firstPiece, row.firstPiece);
        EXPECT_EQ(delivery.nextPieces, npos);
        EXPECT_EQ(delivery.pause, row.firstPiece == npos ? 0ms : 100ms);
    }
}

TEST(AnswerTest, AMarkWithinAnAnswerIsMovedByAFirstPiece) {
    const std::string within = std::string(508, '.') + "Done";
    EXPECT_EQ(PlanDelivery({}, within + "and on Done").firstPiece, 1U);
    // A first piece of one byte would show the second mark, of two bytes neither.
    EXPECT_EQ(PlanDelivery({}, within + std::string(509, '.') + "Done" + "........Done").firstPiece,
              2U);
    EXPECT_EQ(PlanDelivery({}, within + "no mark at the end").firstPiece, npos);
}

TEST(AnswerTest, OnlyWholeAnswersGetAFirstPiece) {
    const std::string answer = std::string(509, '.') + "Done";
    AnswerPlan cut;
    cut.cutAfter = 512;
    EXPECT_EQ(PlanDelivery(cut, answer).firstPiece, npos);
    AnswerPlan raw;
    raw.rawAnswer = answer;
    EXPECT_EQ(PlanDelivery(raw, answer).firstPiece, npos);
    AnswerPlan apart;
    apart.isMarkApart = true;
    EXPECT_EQ(PlanDelivery(apart, answer).firstPiece, 509U);
}

TEST(AnswerTest, FaultsOfTheSendingLeaveTheTextAsItIs) {
    for (const std::string& name : FaultNames()) {
        SCOPED_TRACE(name);
        const bool isOfSending = name == "close-before" || name == "close-after" ||
                                 name == "reset" || name == "no-answer" || name == "delay" ||
                                 name == "split-mark" || name == "drip" || name == "raw";
        const auto row = std::ranges::find(FaultTable(), name, &FaultRow::name);
        AnswerPlan plan;
        row->apply(plan, {1, "A"});
        EXPECT_EQ(ChangesText(plan), !isOfSending);
    }
}

TEST(AnswerTest, TheReturnCodeOfAnAnswerIsFound) {
    EXPECT_EQ(ReturnCodeIn(BuildAnswer({}, {{"one"}, {"two"}, "34"})), "34");
    EXPECT_EQ(ReturnCodeIn("\nSarvex tool RETURN CODE\n"), "");
    EXPECT_EQ(ReturnCodeIn("\nSarvex tool RETURN CODE\n7"), "7");
    EXPECT_EQ(ReturnCodeIn("\r\nSarvex tool RETURN CODE\r\n7\r\nDone"), "");
    EXPECT_EQ(ReturnCodeIn(""), "");
}

TEST(AnswerTest, TheMarkCanGoOutApart) {
    AnswerPlan plan;
    plan.isMarkApart = true;
    plan.pause = 5ms;
    const Delivery delivery = PlanDelivery(plan, "answerDone");
    EXPECT_EQ(delivery.firstPiece, 6U);
    EXPECT_GE(delivery.nextPieces, 4U);
    EXPECT_EQ(delivery.pause, 5ms);
}

TEST(AnswerTest, AnAnswerCanDrip) {
    AnswerPlan plan;
    plan.isDripped = true;
    plan.isMarkApart = true;
    const Delivery delivery = PlanDelivery(plan, "answerDone");
    EXPECT_EQ(delivery.firstPiece, 1U);
    EXPECT_EQ(delivery.nextPieces, 1U);
}

TEST(AnswerTest, AnAnswerCanBeCutShort) {
    AnswerPlan plan;
    plan.ending = Ending::Close;
    plan.delay = 7ms;
    for (const std::uint64_t size : {0U, 3U, 10U, 11U}) {
        SCOPED_TRACE(size);
        plan.cutAfter = size;
        const Delivery delivery = PlanDelivery(plan, "answerDone");
        EXPECT_EQ(delivery.bytes, std::string("answerDone").substr(0, size));
        EXPECT_EQ(delivery.ending, Ending::Close);
        EXPECT_EQ(delivery.delay, 7ms);
    }
}

} // namespace VemoSimulator
