// Property: whatever the daemon sends, in whatever pieces, the client reads as far as a plain
// reading of the protocol does and not a piece further, and its information, errors, return code
// and list of all lines are those of a plain sorting; where the return code is no number, the error
// says so in the same words.
//
// Input: the pieces that arrive, one record each. An empty one closes the connection.

#include "Modules/xFramework/Streams/Sockets/SocketStream.h"
#include "Tools/SarvexTool/Client/Reply.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/PlainReply.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <exception>

namespace {

using OSAL::Fake::TheWorld;

/// What is wrong with the line after the return-code marker.
std::string ProblemOf(const SarvexTool::Reply& reply) {
    try {
        if (reply.failure)
            std::rethrow_exception(reply.failure);
        return "";
    } catch (const std::exception& problem) {
        return problem.what();
    }
}

std::string Receive() {
    using Utilities::xFrameworkStreams::Sockets::SocketStream;
    std::string message = "what was there before";
    SocketStream().ReceiveBuffer(message, 100);
    return message;
}

void CheckSorting(const std::string& message) {
    const PlainReply expected = PlainSort(message);
    const SarvexTool::Reply sorted = SarvexTool::SortReply(SarvexTool::CutHttpHead(message));
    CheckEqual(sorted.allLines, expected.allLines, "all lines are kept as they came");
    CheckEqual(ProblemOf(sorted), expected.problem, "a return code that is no number is told");
    if (!expected.problem.empty())
        return;
    CheckEqual(sorted.Information(), expected.information, "the information is sorted");
    CheckEqual(sorted.Error(), expected.error, "the errors are sorted");
    CheckEqual(sorted.returnCode, expected.returnCode, "the return code is the last one's");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    OSAL::Fake::Reset();
    const auto pieces = Split(ToText(data, size), RecordSeparator);
    std::deque<std::string> expectedRest(pieces.begin(), pieces.end());
    TheWorld().received = expectedRest;
    TheWorld().receiveFailsAtEnd = pieces.size() % 2 == 0;

    int expectedReads = 0;
    const std::string expected = PlainReceive(expectedRest, expectedReads);
    const std::string message = Receive();
    CheckEqual(message, expected, "the message is what arrived up to its end mark");
    CheckEqual(OSAL::Fake::CountCalls("recv"), expectedReads, "nothing is read after the end");
    Check(TheWorld().received == expectedRest, "what follows the message stays unread");
    CheckSorting(message);
    return 0;
}
