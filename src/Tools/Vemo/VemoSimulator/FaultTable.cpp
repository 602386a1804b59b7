#include "Tools/Vemo/VemoSimulator/FaultTable.h"

#include <chrono>
#include <vector>

namespace VemoSimulator {

namespace {

using Kind = FaultValueKind;

constexpr std::uint64_t anyPosition = ~std::uint64_t{0};
constexpr std::uint64_t longestPause = 86'400'000;
constexpr std::uint64_t largestAnswer = 1'073'741'824;

std::chrono::milliseconds Milliseconds(const FaultValue& value) {
    return std::chrono::milliseconds(value.number);
}

void SendNothing(AnswerPlan& plan, Ending ending) {
    plan.cutAfter = 0;
    plan.ending = ending;
}

std::vector<FaultRow> MakeSendingFaults() {
    return {
        {"close-before",
         "",
         Kind::None,
         0,
         {},
         "closes instead of answering",
         [](AnswerPlan& plan, const FaultValue&) { SendNothing(plan, Ending::Close); }},
        {"close-after",
         "=N",
         Kind::Number,
         anyPosition,
         {},
         "closes after N bytes of the answer",
         [](AnswerPlan& plan, const FaultValue& value) {
             plan.cutAfter = value.number;
             plan.ending = Ending::Close;
         }},
        {"reset",
         "",
         Kind::None,
         0,
         {},
         "resets the connection instead of answering",
         [](AnswerPlan& plan, const FaultValue&) { SendNothing(plan, Ending::Reset); }},
        {"no-answer",
         "",
         Kind::None,
         0,
         {},
         "never answers and keeps the connection",
         [](AnswerPlan& plan, const FaultValue&) { SendNothing(plan, Ending::StayOpen); }},
        {"delay",
         "=MS",
         Kind::Number,
         longestPause,
         {},
         "answers MS milliseconds late",
         [](AnswerPlan& plan, const FaultValue& value) { plan.delay += Milliseconds(value); }},
        {"split-mark", "[=MS]", Kind::Number, longestPause, 100,
         "sends the end mark alone, MS milliseconds (100) after the rest",
         [](AnswerPlan& plan, const FaultValue& value) {
             plan.isMarkApart = true;
             plan.pause = Milliseconds(value);
         }},
        {"drip", "[=MS]", Kind::Number, longestPause, 1,
         "sends single bytes, MS milliseconds (1) apart",
         [](AnswerPlan& plan, const FaultValue& value) {
             plan.isDripped = true;
             plan.pause = Milliseconds(value);
         }},
    };
}

std::vector<FaultRow> MakeWritingFaults() {
    return {
        {"no-mark",
         "",
         Kind::None,
         0,
         {},
         "leaves the end mark out, then closes",
         [](AnswerPlan& plan, const FaultValue&) {
             plan.hasEndMark = false;
             plan.ending = Ending::Close;
         }},
        {"crlf",
         "",
         Kind::None,
         0,
         {},
         "ends every line in CR LF",
         [](AnswerPlan& plan, const FaultValue&) { plan.hasCrLf = true; }},
        {"nul",
         "=N",
         Kind::Number,
         anyPosition,
         {},
         "puts a NUL in front of byte N of the body",
         [](AnswerPlan& plan, const FaultValue& value) { plan.nulPosition = value.number; }},
        {"raw",
         "=FILE",
         Kind::File,
         0,
         {},
         "sends the bytes of the file, and nothing else",
         [](AnswerPlan& plan, const FaultValue& value) { plan.rawAnswer = value.text; }},
    };
}

std::vector<FaultRow> MakeContentFaults() {
    return {
        {"missing-chain",
         "=A|B",
         Kind::Chain,
         0,
         {},
         "leaves the target power of a chain out",
         [](AnswerPlan& plan, const FaultValue& value) { plan.missingChains += value.text; }},
        {"uncalibrated",
         "",
         Kind::None,
         0,
         {},
         "says that the transmitter is uncalibrated, with no target power",
         [](AnswerPlan& plan, const FaultValue&) { plan.isUncalibrated = true; }},
        {"return-code",
         "=TEXT",
         Kind::Text,
         0,
         {},
         "gives TEXT as the return code",
         [](AnswerPlan& plan, const FaultValue& value) { plan.returnCode = value.text; }},
        {"big",
         "=N",
         Kind::Number,
         largestAnswer,
         {},
         "adds N bytes of information lines in front",
         [](AnswerPlan& plan, const FaultValue& value) { plan.fillerBytes = value.number; }},
        {"long-line",
         "=N",
         Kind::Number,
         largestAnswer,
         {},
         "adds an information line of N bytes in front",
         [](AnswerPlan& plan, const FaultValue& value) { plan.longLineBytes = value.number; }},
    };
}

std::vector<FaultRow> MakeTable() {
    std::vector<FaultRow> table = MakeSendingFaults();
    for (const auto& part : {MakeWritingFaults(), MakeContentFaults()})
        table.insert(table.end(), part.begin(), part.end());
    return table;
}

} // namespace

std::span<const FaultRow> FaultTable() {
    static const std::vector<FaultRow> table = MakeTable();
    return table;
}

} // namespace VemoSimulator
