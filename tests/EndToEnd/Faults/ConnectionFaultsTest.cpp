#include "tests/EndToEnd/Faults/Runner.h"

#include <gtest/gtest.h>

// Faults around the connection and on the request's way.

namespace EndToEnd::Faults {
namespace {

using namespace std::chrono_literals;

const std::size_t requestSize = RequestOf("CLI -1 -vemo  -x").size();

/// A fault whose effect on a client that may still be sending is the network's to decide.
Scenario Breaking(const std::string& name, const Script& script,
                  const std::vector<Outcome>& permitted) {
    return {.name = name, .scripts = {script}, .permitted = permitted, .requestIsCut = true};
}

TEST(ConnectionFaultsTest, ConnectionThatIsRefusedOrBreaksBeforeTheRequest) {
    const Outcome notConnected{
        1, "", "Failed to connect to daemon. Please ensure that daemon was started.\n"};
    RunAll({
        {.name = "refuses", .scripts = {}, .permitted = {notConnected}, .commands = {}},
        Breaking("accepts and closes", {Close()}, {nothingCame, sendingFailed}),
        Breaking("accepts and resets", {Reset()}, {nothingCame, sendingFailed}),
        {.name = "ends its sending side before it reads",
         .scripts = {{FinishSending(), TakeRequest()}},
         .permitted = {nothingCame}},
    });
}

TEST(ConnectionFaultsTest, AnswerAtAnUnusualTime) {
    const Outcome hello{0, "hello\n"};
    RunAll({
        {.name = "answers before the request",
         .scripts = {{Send("helloDone"), TakeRequest()}},
         .permitted = {hello}},
        {.name = "answers after the request's first byte",
         .scripts = {{Take(1), Send("helloDone")}},
         .permitted = {hello}},
        {.name = "answers after the request's first piece",
         .scripts = {{Take(512), Send("helloDone")}},
         .permitted = {hello}},
        {.name = "answers in parts before and after the request",
         .scripts = {{Send("hel"), TakeRequest(), SendApart("loDone")}},
         .permitted = {hello}},
        {.name = "answers and never reads the request",
         .scripts = {{AwaitRequest(requestSize), Send("helloDone")}},
         .permitted = {hello}},
        {.name = "answers before the request and ends its sending side without an end mark",
         .scripts = {{Send("hello"), FinishSending(), TakeRequest()}},
         .permitted = {hello}},
        {.name = "keeps silent, then answers",
         .scripts = {{TakeRequest(), Silence(300ms), Send("helloDone")}},
         .permitted = {hello}},
        {.name = "keeps silent, then closes",
         .scripts = {{TakeRequest(), Silence(300ms), Close()}},
         .permitted = {nothingCame}},
        {.name = "keeps silent, then resets",
         .scripts = {{TakeRequest(), Silence(300ms), Reset()}},
         .permitted = {nothingCame}},
        {.name = "keeps silent inside the answer, then closes",
         .scripts = {{TakeRequest(), Send("hel"), Silence(300ms), Send("lo"), Close()}},
         .permitted = {hello}},
        {.name = "goes on after the end mark",
         .scripts = {{TakeRequest(), Send("helloDone"), SendApart("moreDone")}},
         .permitted = {hello}},
        // The unread request turns the close into a reset, which may overtake the answer.
        Breaking("answers and closes without having read the request",
                 {AwaitRequest(requestSize), Send("helloDone"), Close()}, {hello, nothingCame}),
        Breaking("answers and closes, the request unread, when the answer was taken",
                 {AwaitRequest(requestSize), Send("hello"), AwaitTaken(), Close()}, {hello}),
        Breaking("answers on acceptance and closes at once", {Send("helloDone"), Close()},
                 {hello, nothingCame, sendingFailed}),
    });
    Skip("silence without end", "no call has a time-out: to wait for ever is the rule");
}

TEST(ConnectionFaultsTest, RequestThatIsReadInPartOnly) {
    // Around the first bytes, the head's end at 511 and the first piece's end at 512.
    ASSERT_EQ(requestSize, 527u);
    const std::size_t sizes[] = {0, 1, 2, 3, 4, 17, 100, 256, 510, 511, 512, 513, 526, 527};
    std::vector<Scenario> scenarios;
    for (const std::size_t size : sizes) {
        const std::string after = " after byte " + std::to_string(size) + " of the request";
        // The client has sent everything when the connection breaks: it waits for the answer.
        const Step arrived = AwaitRequest(requestSize);
        scenarios.push_back(
            Breaking("closes" + after, {Take(size), arrived, Close()}, {nothingCame}));
        scenarios.push_back(
            Breaking("resets" + after, {Take(size), arrived, Reset()}, {nothingCame}));
        scenarios.push_back({.name = "ends its sending side" + after,
                             .scripts = {{Take(size), FinishSending()}},
                             .permitted = {nothingCame}});
    }
    RunAll(scenarios);
}

TEST(ConnectionFaultsTest, RequestThatMayStillBeOnItsWayWhenTheConnectionBreaks) {
    std::vector<Scenario> scenarios;
    for (const std::size_t size : {1u, 2u, 100u, 511u, 512u}) {
        const std::string after = " at once after byte " + std::to_string(size);
        for (const auto& [name, step] : {std::pair{"closes", Close()}, {"resets", Reset()}}) {
            scenarios.push_back(
                Breaking(name + after, {Take(size), step}, {nothingCame, sendingFailed}));
        }
    }
    // From the second piece on the client has nothing left to send.
    for (const std::size_t size : {513u, 526u}) {
        const std::string after = " at once after byte " + std::to_string(size);
        scenarios.push_back(Breaking("closes" + after, {Take(size), Close()}, {nothingCame}));
        scenarios.push_back(Breaking("resets" + after, {Take(size), Reset()}, {nothingCame}));
    }
    RunAll(scenarios);
}

/// A request that is read in pieces of the given size, as far as it comes, and then answered.
Scenario ReadingInPieces(const std::string& argument, std::size_t pieceSize) {
    const std::string command = "CLI -1 -vemo  " + argument;
    const std::size_t size = RequestOf(command).size();
    Script script;
    for (std::size_t read = 0; read < size; read += pieceSize)
        script.push_back(Take(std::min(pieceSize, size - read)));
    script.push_back(Send("helloDone"));
    return {.name = "reads " + std::to_string(size) + " bytes in pieces of " +
                    std::to_string(pieceSize),
            .scripts = {script},
            .permitted = {{0, "hello\n"}},
            .commands = {command},
            .arguments = {argument}};
}

TEST(ConnectionFaultsTest, RequestThatIsReadSlowly) {
    // 526 bytes of the request are not the argument where its length has three digits.
    const std::string toTheEndOfAPiece(1024 - 526, 'x');
    ASSERT_EQ(RequestOf("CLI -1 -vemo  " + toTheEndOfAPiece).size(), 1024u);
    RunAll({ReadingInPieces("-x", 1), ReadingInPieces("-x", 511),
            ReadingInPieces(toTheEndOfAPiece, 1), ReadingInPieces(toTheEndOfAPiece, 512),
            ReadingInPieces(toTheEndOfAPiece + "x", 512),
            ReadingInPieces(std::string(20'000, 'x'), 7)});
}

} // namespace
} // namespace EndToEnd::Faults
