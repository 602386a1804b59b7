#include "tests/EndToEnd/Faults/Runner.h"

#include <gtest/gtest.h>

// An answer that breaks off: what came is processed.

namespace EndToEnd::Faults {
namespace {

/// A part of the answer, and what the client prints when the last byte that came is in it.
struct Part {
    std::string bytes;
    /// Where the bytes of this part that came are printed, as a line after the complete ones.
    enum class Shown { OnOut, OnErr, Nowhere } shown;
    /// The complete lines.
    std::string out;
    std::string err;
    int exitCode = 0;
};

using enum Part::Shown;

/// The parts of one answer, in order.
const std::vector<Part> parts = {
    // Without the empty line after it, the head is text.
    {"HTTP/1.1 200 OK\r", OnOut, "", ""},
    {"\n", Nowhere, "HTTP/1.1 200 OK\r\n\n", ""},
    {"\r", Nowhere, "HTTP/1.1 200 OK\r\n\r\n", ""},
    {"\n", Nowhere, "\n", ""},
    {"Sarvex tool INF", OnOut, "", ""},
    // A marker needs no line end.
    {"O", Nowhere, "", ""},
    // After a line end, there is an empty line.
    {"\n", Nowhere, "\n", ""},
    {"hello", OnOut, "", ""},
    {"\n", Nowhere, "hello\n\n", ""},
    {"Sarvex tool ERRO", OnOut, "hello\n", ""},
    {"R", Nowhere, "hello\n", ""},
    {"\n", Nowhere, "hello\n", "\n"},
    {"late", OnErr, "hello\n", ""},
    {"\n", Nowhere, "hello\n", "late\n\n"},
    {"Sarvex tool RETURN COD", OnErr, "hello\n", "late\n"},
    {"E", Nowhere, "hello\n", "late\n"},
    // An empty line is no number.
    {"\n", Nowhere, "", "Failed to handle commands.\n", 256},
    {"3", Nowhere, "hello\n", "late\n", 3},
    {"7", Nowhere, "hello\n", "late\n", 37},
    // The lines after the code are ignored.
    {"\n", Nowhere, "hello\n", "late\n", 37},
    {"Done", Nowhere, "hello\n", "late\n", 37},
};

Outcome OutcomeWithin(const Part& part, std::size_t size) {
    const std::string line = part.bytes.substr(0, size) + "\n";
    return {part.exitCode, part.out + (part.shown == OnOut ? line : ""),
            part.err + (part.shown == OnErr ? line : "")};
}

/// Breaks off after each byte of the answer.
std::vector<Scenario> BreakEverywhere(const std::string& name, const Script& ending) {
    std::vector<Scenario> scenarios = {Answering(name + " byte 0", ending, nothingCame)};
    std::string answer;
    for (const Part& part : parts) {
        for (std::size_t size = 1; size <= part.bytes.size(); ++size) {
            answer += part.bytes[size - 1];
            Script reaction = {Send(answer)};
            reaction.insert(reaction.end(), ending.begin(), ending.end());
            scenarios.push_back(Answering(name + " byte " + std::to_string(answer.size()), reaction,
                                          OutcomeWithin(part, size)));
        }
    }
    return scenarios;
}

TEST(CutAnswersTest, AnswerThatIsClosedAfterEachByte) {
    RunAll(BreakEverywhere("closes after", {Close()}));
}

TEST(CutAnswersTest, AnswerThatIsResetAfterEachByteThatTheClientTook) {
    RunAll(BreakEverywhere("resets after", {AwaitTaken(), Reset()}));
}

TEST(CutAnswersTest, AnswerThatIsResetBeforeTheClientMayHaveTakenIt) {
    std::vector<Scenario> scenarios;
    // The system may throw away what arrived before a reset.
    for (const std::size_t size : {1u, 511u, 512u, 513u, 1024u, 65536u, 8u << 20}) {
        const std::string answer(size, 'x');
        scenarios.push_back(Answering("resets at once after byte " + std::to_string(size),
                                      {Send(answer), Reset()},
                                      {.out = answer + "\n", .outMayBeCut = true}));
    }
    RunAll(scenarios);
    Skip("answer without end", "reading it to its end is the rule; the longest one above is cut");
}

TEST(CutAnswersTest, AnswerThatBreaksOffAroundTheEndOfAPiece) {
    std::vector<Scenario> scenarios;
    for (const std::size_t size :
         {2u, 4u, 5u, 510u, 511u, 512u, 513u, 514u, 1023u, 1024u, 1025u, 1536u}) {
        const std::string answer(size, 'x');
        const std::string after = " after byte " + std::to_string(size) + " of one line";
        const Outcome outcome{0, answer + "\n"};
        scenarios.push_back(Answering("closes" + after, {Send(answer), Close()}, outcome));
        scenarios.push_back(
            Answering("resets" + after, {Send(answer), AwaitTaken(), Reset()}, outcome));
    }
    RunAll(scenarios);
}

} // namespace
} // namespace EndToEnd::Faults
