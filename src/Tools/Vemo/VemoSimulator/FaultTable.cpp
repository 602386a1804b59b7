#include "Tools/Vemo/VemoSimulator/FaultTable.h"

#include <array>
#include <chrono>

namespace VemoSimulator {

namespace {

using Kind = FaultValueKind;

constexpr std::uint64_t anyPosition = ~std::uint64_t{0};
constexpr std::uint64_t longestPause = 86'400'000;
constexpr std::uint64_t largestAnswer = 1'073'741'824;

std::chrono::milliseconds Milliseconds(const FaultValue& value) {
    return std::chrono::milliseconds(value.number);
}

void SendFirstBytes(AnswerPlan& plan, std::uint64_t count, Ending ending) {
    plan.cutAfter = count;
    plan.ending = ending;
}

void CloseBefore(AnswerPlan& plan, const FaultValue&) {
    SendFirstBytes(plan, 0, Ending::Close);
}

void CloseAfter(AnswerPlan& plan, const FaultValue& value) {
    SendFirstBytes(plan, value.number, Ending::Close);
}

void Reset(AnswerPlan& plan, const FaultValue&) {
    SendFirstBytes(plan, 0, Ending::Reset);
}

void NoAnswer(AnswerPlan& plan, const FaultValue&) {
    SendFirstBytes(plan, 0, Ending::StayOpen);
}

void Delay(AnswerPlan& plan, const FaultValue& value) {
    plan.delay += Milliseconds(value);
}

void SplitMark(AnswerPlan& plan, const FaultValue& value) {
    plan.isMarkApart = true;
    plan.pause = Milliseconds(value);
}

void Drip(AnswerPlan& plan, const FaultValue& value) {
    plan.isDripped = true;
    plan.pause = Milliseconds(value);
}

void NoMark(AnswerPlan& plan, const FaultValue&) {
    plan.hasEndMark = false;
    plan.ending = Ending::Close;
}

void CrLf(AnswerPlan& plan, const FaultValue&) {
    plan.hasCrLf = true;
}

void Nul(AnswerPlan& plan, const FaultValue& value) {
    plan.nulPosition = value.number;
}

void Raw(AnswerPlan& plan, const FaultValue& value) {
    plan.rawAnswer = value.text;
}

void MissingChain(AnswerPlan& plan, const FaultValue& value) {
    plan.missingChains += value.text;
}

void Uncalibrated(AnswerPlan& plan, const FaultValue&) {
    plan.isUncalibrated = true;
}

void ReturnCode(AnswerPlan& plan, const FaultValue& value) {
    plan.returnCode = value.text;
}

void Big(AnswerPlan& plan, const FaultValue& value) {
    plan.fillerBytes = value.number;
}

void LongLine(AnswerPlan& plan, const FaultValue& value) {
    plan.longLineBytes = value.number;
}

// clang-format off
constexpr std::array<FaultRow, 16> faultTable{{
    {"close-before", "", Kind::None, {}, {},
     "closes instead of answering", CloseBefore},
    {"close-after", "=N", Kind::Number, anyPosition, {},
     "closes after N bytes of the answer", CloseAfter},
    {"reset", "", Kind::None, {}, {},
     "resets the connection instead of answering", Reset},
    {"no-answer", "", Kind::None, {}, {},
     "never answers and keeps the connection", NoAnswer},
    {"delay", "=MS", Kind::Number, longestPause, {},
     "answers MS milliseconds late", Delay},
    {"split-mark", "[=MS]", Kind::Number, longestPause, 100,
     "sends the end mark alone, MS milliseconds (100) after the rest", SplitMark},
    {"drip", "[=MS]", Kind::Number, longestPause, 1,
     "sends single bytes, MS milliseconds (1) apart", Drip},
    {"no-mark", "", Kind::None, {}, {},
     "leaves the end mark out, then closes", NoMark},
    {"crlf", "", Kind::None, {}, {},
     "ends every line in CR LF", CrLf},
    {"nul", "=N", Kind::Number, anyPosition, {},
     "puts a NUL in front of byte N of the body", Nul},
    {"raw", "=FILE", Kind::File, {}, {},
     "sends the bytes of the file, and nothing else", Raw},
    {"missing-chain", "=A|B", Kind::Chain, {}, {},
     "leaves the target power of a chain out", MissingChain},
    {"uncalibrated", "", Kind::None, {}, {},
     "says that the transmitter is uncalibrated, with no target power", Uncalibrated},
    {"return-code", "=TEXT", Kind::Text, {}, {},
     "gives TEXT as the return code", ReturnCode},
    {"big", "=N", Kind::Number, largestAnswer, {},
     "adds N bytes of information lines in front", Big},
    {"long-line", "=N", Kind::Number, largestAnswer, {},
     "adds an information line of N bytes in front", LongLine},
}};
// clang-format on

} // namespace

std::span<const FaultRow> FaultTable() {
    return faultTable;
}

} // namespace VemoSimulator
