#include "Modules/xFramework/Streams/Sockets/SocketClientStream.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Modules/xFramework/Utilities/RaisedInPlaceBy.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

namespace Utilities::xFrameworkStreams::Sockets {
namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;

class SocketClientStreamTest : public testing::Test {
protected:
    SocketClientStreamTest() {
        OSAL::Fake::Reset();
        TheWorld().files["/bench/Socket.cfg"].content = "8738";
    }

    /// What the construction raises; empty when it succeeds.
    static std::string FailureOfConstruction() {
        try {
            const SocketClientStream stream("bench");
            return "";
        } catch (std::exception* pException) {
            const std::unique_ptr<std::exception> owner(pException);
            return owner->what();
        }
    }
};

TEST_F(SocketClientStreamTest, ConnectsToTheHostAndTheFilesPort) {
    const SocketClientStream stream("bench");
    EXPECT_EQ(CountCalls("ResolveAddress [bench] [8738]"), 1);
    EXPECT_EQ(CountCalls("Sleep"), 0);
}

TEST_F(SocketClientStreamTest, GivesUpAfterTwentyAttemptsAndTwentyPauses) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_EQ(RaisedInPlaceBy([] { const SocketClientStream stream("bench"); }),
              "Failed Creating socket | "
              "src/Modules/xFramework/Streams/Sockets/SocketClientStream | Raise | "
              "Utilities::xFrameworkStreams::Sockets::SocketClientStream::SocketClientStream");
    EXPECT_EQ(CountCalls("ConnectSocket"), 20);
    EXPECT_EQ(CountCalls("Sleep 20"), 20);
    EXPECT_EQ(TheWorld().calls.back(), "Sleep 20");
}

TEST_F(SocketClientStreamTest, TwentiethAttemptMaySucceed) {
    TheWorld().connectSucceeds = [](int attempt) { return attempt == 19; };
    EXPECT_EQ(FailureOfConstruction(), "");
    EXPECT_EQ(CountCalls("Sleep 20"), 19);
}

TEST_F(SocketClientStreamTest, EveryAttemptReadsThePortAnew) {
    TheWorld().connectSucceeds = [](int attempt) {
        TheWorld().files["/bench/Socket.cfg"].content = "9001";
        return attempt == 1;
    };
    EXPECT_EQ(FailureOfConstruction(), "");
    EXPECT_EQ(CountCalls("ResolveAddress [bench] [8738]"), 1);
    EXPECT_EQ(CountCalls("ResolveAddress [bench] [9001]"), 1);
}

TEST_F(SocketClientStreamTest, LinkedPortFileEndsTheConstructionAtOnce) {
    TheWorld().files["/bench/Socket.cfg"].hardLinks = 2;
    EXPECT_EQ(FailureOfConstruction(), "File /bench/Socket.cfg is a link");
    EXPECT_EQ(CountCalls("Sleep"), 0);
    EXPECT_EQ(CountCalls("StartSockets"), 0);
}

TEST_F(SocketClientStreamTest, StandardExceptionWhileConnectingIsAFailedAttempt) {
    TheWorld().connectSucceeds = [](int attempt) -> bool {
        if (attempt == 0)
            throw std::runtime_error("a value");
        if (attempt == 1)
            throw new Exception("a pointer");
        return true;
    };
    EXPECT_EQ(FailureOfConstruction(), "");
    EXPECT_EQ(CountCalls("Sleep 20"), 2);
}

TEST_F(SocketClientStreamTest, OtherExceptionWhileConnectingPassesThrough) {
    TheWorld().connectSucceeds = [](int) -> bool { throw 7; };
    EXPECT_THROW(FailureOfConstruction(), int);
    EXPECT_EQ(CountCalls("Sleep"), 0);
}

TEST_F(SocketClientStreamTest, SendAndReceiveUseTheConnectedSocket) {
    SocketClientStream stream("bench");
    TheWorld().received = {"answerDone"};
    EXPECT_TRUE(stream.Send("question"));
    std::string answer;
    stream.Receive(answer);
    EXPECT_EQ(TheWorld().sent, "question");
    EXPECT_EQ(answer, "answer");
    EXPECT_EQ(CountCalls("send 100"), 1);
    EXPECT_EQ(CountCalls("recv 100"), 1);
}

TEST_F(SocketClientStreamTest, DestructorClosesTheSocket) {
    { const SocketClientStream stream("bench"); }
    EXPECT_EQ(TheWorld().calls.back(), "CloseSocket 100");
}

TEST_F(SocketClientStreamTest, HandleThatTheReceiveClosedIsClosedOnceMore) {
    {
        SocketClientStream stream("bench");
        std::string answer;
        stream.Receive(answer);
        EXPECT_EQ(CountCalls("CloseSocket 100"), 1);
    }
    EXPECT_EQ(CountCalls("CloseSocket 100"), 2);
}

TEST_F(SocketClientStreamTest, CloseClosesAndTheDestructorDoesSoAgain) {
    {
        SocketClientStream stream("bench");
        stream.Close();
        EXPECT_EQ(CountCalls("CloseSocket 100"), 1);
    }
    EXPECT_EQ(CountCalls("CloseSocket 100"), 2);
}

} // namespace
} // namespace Utilities::xFrameworkStreams::Sockets
