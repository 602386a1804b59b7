#include "Modules/xFramework/Streams/Sockets/SocketStream.h"

#include "Modules/xFramework/Streams/Sockets/SocketClientStream.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Modules/xFramework/Utilities/RaisedInPlaceBy.h"
#include "tests/Support/VirtualSlots.h"

#include <gmock/gmock.h>

#include <numeric>
#include <string>

namespace Utilities::xFrameworkStreams::Sockets {
namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;

/// Every error of this class is raised where Raise is called, in a function of the class.
const std::string raisedInPlace =
    " | src/Modules/xFramework/Streams/Sockets/SocketStream | Raise | "
    "Utilities::xFrameworkStreams::Sockets::SocketStream::";

constexpr const char* portFile = "/bench/Socket.cfg";
constexpr OSAL::SocketHandle connected = 5;

class SocketStreamTest : public testing::Test {
protected:
    SocketStreamTest() { OSAL::Fake::Reset(); }

    std::string ReadPort() {
        std::string port = "left over";
        stream.ReadPort(port);
        return port;
    }

    std::string Receive() {
        std::string message = "left over";
        stream.ReceiveBuffer(message, connected);
        return message;
    }

    SocketStream stream;
};

TEST_F(SocketStreamTest, PortIsTheFirstFourBytesUpToANul) {
    struct Case {
        std::string content;
        std::string port;
    };
    const Case cases[] = {
        {"8738", "8738"},
        {"87381", "8738"},
        {"8738\r\nremarks", "8738"},
        {"80", "80"},
        {"80\r\n", "80\r\n"},
        {"", ""},
        {std::string("80\0009", 4), "80"},
        {std::string("\0\0\0\0", 4), ""},
        {"\xFF\xFE\x01\x02", "\xFF\xFE\x01\x02"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.content));
        TheWorld().files[portFile].content = row.content;
        EXPECT_EQ(ReadPort(), row.port);
    }
}

TEST_F(SocketStreamTest, OperationsAreInTheOrderThatOtherModulesAreBuiltAgainst) {
    // The destructor is between the two groups.
    EXPECT_THAT(TestSupport::VirtualSlots(&SocketStream::ReadPort, &SocketStream::SendBuffer,
                                          &SocketStream::ReceiveBuffer, &SocketStream::Reserved,
                                          &SocketStream::CloseSocket,
                                          &SocketStream::IsMessageComplete,
                                          &SocketClientStream::Send, &SocketClientStream::Receive),
                ElementsAre(0, 1, 2, 3, 4, 5, 8, 9));
}

TEST_F(SocketStreamTest, PortFileIsReadOnceWithFiveBytesAndClosed) {
    TheWorld().files[portFile].content = "8738";
    ReadPort();
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("OpenFileForReading /bench/Socket.cfg", "ReadFile 5", "CloseHandle 7"));
}

TEST_F(SocketStreamTest, MissingPortFileGivesAnEmptyPort) {
    EXPECT_EQ(ReadPort(), "");
    // Whether the file opens is not asked.
    EXPECT_THAT(TheWorld().calls, ElementsAre("OpenFileForReading /bench/Socket.cfg", "ReadFile 5",
                                              "CloseHandle invalid"));
}

TEST_F(SocketStreamTest, PortFileIsRelativeWhenTheProgramsPathCannotBeTold) {
    TheWorld().modulePathReadable = false;
    TheWorld().files["Socket.cfg"].content = "8738";
    EXPECT_EQ(ReadPort(), "8738");
}

TEST_F(SocketStreamTest, LinkedPortFileIsRefused) {
    TheWorld().files[portFile] = {"8738", {.isToBeArchived = true}, 2};
    EXPECT_EQ(RaisedInPlaceBy([this] { ReadPort(); }),
              "File /bench/Socket.cfg is a link" + raisedInPlace + "ReadPort");
    EXPECT_EQ(CountCalls("OpenFileForReading"), 0);
}

TEST_F(SocketStreamTest, LinkInAPathWithAPlaceholderIsRefusedWithoutAHang) {
    TheWorld().modulePath = "/${1}/SarvexToolClient";
    TheWorld().files["/${1}/Socket.cfg"] = {"8738", {.isToBeArchived = true}, 2};
    EXPECT_EQ(RaisedInPlaceBy([this] { ReadPort(); }),
              "File /${1}/Socket.cfg is a link" + raisedInPlace + "ReadPort");
}

TEST_F(SocketStreamTest, TextIsSentInPiecesWithAnEmptyOneAtAMultiple) {
    struct Case {
        std::size_t length;
        std::vector<std::string> sends;
    };
    const Case cases[] = {
        {0, {"send 5 0"}},
        {1, {"send 5 1"}},
        {511, {"send 5 511"}},
        {512, {"send 5 512", "send 5 0"}},
        {513, {"send 5 512", "send 5 1"}},
        {1024, {"send 5 512", "send 5 512", "send 5 0"}},
        {1300, {"send 5 512", "send 5 512", "send 5 276"}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.length);
        OSAL::Fake::Reset();
        std::string message(row.length, '\0');
        std::iota(message.begin(), message.end(), '\0');
        EXPECT_TRUE(stream.SendBuffer(connected, message));
        EXPECT_EQ(TheWorld().calls, row.sends);
        EXPECT_EQ(TheWorld().sent, message);
    }
}

TEST_F(SocketStreamTest, ShortSendIsNotNoticed) {
    // The count that the system took is not compared with the piece: the daemon's side of the
    // protocol has always lived with that.
    TheWorld().largestSend = 10;
    EXPECT_TRUE(stream.SendBuffer(connected, std::string(600, 'x')));
    EXPECT_THAT(TheWorld().calls, ElementsAre("send 5 512", "send 5 88"));
}

TEST_F(SocketStreamTest, FailedSendClosesCleansUpAndRaises) {
    TheWorld().failingSend = 1;
    EXPECT_EQ(RaisedInPlaceBy([this] { stream.SendBuffer(connected, std::string(2000, 'x')); }),
              "Failed Sending message" + raisedInPlace + "SendBuffer");
    EXPECT_THAT(TheWorld().calls, ElementsAre("send 5 512", "send 5 512", "LastSocketErrorText",
                                              "CloseSocket 5", "CleanupSockets"));
}

TEST_F(SocketStreamTest, MessageEndsAtTheMarkAtTheEndOfAChunk) {
    struct Case {
        const char* name;
        std::deque<std::string> chunks;
        std::string message;
        std::size_t unread;
    };
    const Case cases[] = {
        {"mark in the same chunk", {"helloDone", "more"}, "hello", 1},
        {"shortest chunk with a mark", {"xDone", "more"}, "x", 1},
        {"mark in a chunk of its own", {"hello", "Done"}, "helloDone", 0},
        {"mark of its own, then a marked chunk",
         {"hello", "Done", "againDone"},
         "helloDoneagain",
         0},
        {"mark across two chunks", {"helloDo", "ne"}, "helloDone", 0},
        {"mark across two chunks with text", {"helloDo", "neDone"}, "helloDone", 0},
        {"mark in the middle", {"heDonello", "!"}, "heDonello!", 0},
        {"mark in another case", {"hellodone"}, "hellodone", 0},
        {"line end after the mark", {"helloDone\n"}, "helloDone\n", 0},
        {"two marks", {"helloDoneDone"}, "helloDone", 0},
        {"peer closes at once", {}, "", 0},
        {"chunk of four bytes", {"abcd", "efghDone"}, "abcdefgh", 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        OSAL::Fake::Reset();
        TheWorld().received = row.chunks;
        EXPECT_EQ(Receive(), row.message);
        EXPECT_EQ(TheWorld().received.size(), row.unread);
    }
}

TEST_F(SocketStreamTest, ChunksAreOf512Bytes) {
    TheWorld().received = {std::string(512, 'x') + "tailDone"};
    EXPECT_EQ(Receive(), std::string(512, 'x') + "tail");
    EXPECT_THAT(TheWorld().calls, ElementsAre("recv 5 512", "recv 5 512"));
}

TEST_F(SocketStreamTest, MarkThatTheChunkBorderSplitsDoesNotEndTheMessage) {
    for (std::size_t inFirstChunk = 1; inFirstChunk <= 3; ++inFirstChunk) {
        SCOPED_TRACE(inFirstChunk);
        OSAL::Fake::Reset();
        const std::string text(512 - inFirstChunk, 'x');
        TheWorld().received = {text + "Done"};
        EXPECT_EQ(Receive(), text + "Done");
        EXPECT_EQ(CountCalls("CloseSocket 5"), 1);
    }
}

TEST_F(SocketStreamTest, BytesAfterANulOfAChunkAreDropped) {
    TheWorld().received = {std::string("ab\0cdDone", 9), "efDone"};
    EXPECT_EQ(Receive(), "abef");
}

TEST_F(SocketStreamTest, ChunkThatBeginsWithANulEndsTheMessage) {
    TheWorld().received = {"first", std::string("\0second", 7), "third"};
    EXPECT_EQ(Receive(), "first");
    EXPECT_EQ(TheWorld().received.size(), 1u);
    EXPECT_EQ(CountCalls("CloseSocket"), 0);
}

TEST_F(SocketStreamTest, ClosedAndFailedConnectionsEndTheMessageAndCloseTheSocket) {
    for (const bool fails : {false, true}) {
        SCOPED_TRACE(fails);
        OSAL::Fake::Reset();
        TheWorld().received = {"half an ans"};
        TheWorld().receiveFailsAtEnd = fails;
        EXPECT_EQ(Receive(), "half an ans");
        EXPECT_THAT(TheWorld().calls,
                    ElementsAre("recv 5 512", "recv 5 512", "CloseSocket 5", "CleanupSockets"));
    }
}

TEST_F(SocketStreamTest, ReservedDoesNothing) {
    stream.Reserved();
    EXPECT_TRUE(TheWorld().calls.empty());
}

TEST_F(SocketStreamTest, CloseSocketReturnsWhatTheSystemSays) {
    EXPECT_EQ(stream.CloseSocket(connected), 0);
    EXPECT_THAT(TheWorld().calls, ElementsAre("CloseSocket 5"));
}

} // namespace
} // namespace Utilities::xFrameworkStreams::Sockets
