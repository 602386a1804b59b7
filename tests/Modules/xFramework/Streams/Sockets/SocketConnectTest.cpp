#include "Modules/xFramework/Streams/Sockets/SocketConnect.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gmock/gmock.h>

namespace Utilities::xFrameworkStreams::Sockets {
namespace {

using OSAL::Fake::TheWorld;
using testing::ElementsAre;

class SocketConnectTest : public testing::Test {
protected:
    SocketConnectTest() { OSAL::Fake::Reset(); }

    OSAL::SocketHandle socket = 0;

    static bool Never(int) { return false; }
};

TEST_F(SocketConnectTest, SuccessTakesTheStepsInOrderAndLeavesTheLayerInUse) {
    EXPECT_TRUE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, 100u);
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("StartSockets", "ResolveAddress [bench] [8738]", "CreateSocket",
                            "AllowAddressReuse 100", "ConnectSocket 100", "FreeAddress"));
}

TEST_F(SocketConnectTest, FailedStartEndsTheAttemptWithoutCleanup) {
    TheWorld().startSucceeds = Never;
    EXPECT_FALSE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, 0u);
    EXPECT_THAT(TheWorld().calls, ElementsAre("StartSockets"));
}

TEST_F(SocketConnectTest, FailedResolutionCleansUp) {
    TheWorld().resolveSucceeds = Never;
    EXPECT_FALSE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, 0u);
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("StartSockets", "ResolveAddress [bench] [8738]", "CleanupSockets"));
}

TEST_F(SocketConnectTest, FailedSocketFreesTheAddressesThenCleansUp) {
    TheWorld().createSucceeds = Never;
    EXPECT_FALSE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, OSAL::InvalidSocket);
    EXPECT_THAT(TheWorld().calls, ElementsAre("StartSockets", "ResolveAddress [bench] [8738]",
                                              "CreateSocket", "FreeAddress", "CleanupSockets"));
}

TEST_F(SocketConnectTest, FailedAddressReuseLeavesTheSocketAsItIs) {
    TheWorld().reuseSucceeds = Never;
    EXPECT_FALSE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, 100u);
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("StartSockets", "ResolveAddress [bench] [8738]", "CreateSocket",
                            "AllowAddressReuse 100", "FreeAddress", "CleanupSockets"));
}

TEST_F(SocketConnectTest, RefusedConnectionClosesTheSocketAndInvalidatesIt) {
    TheWorld().connectSucceeds = Never;
    EXPECT_FALSE(Connect(socket, "bench", "8738"));
    EXPECT_EQ(socket, OSAL::InvalidSocket);
    EXPECT_THAT(TheWorld().calls,
                ElementsAre("StartSockets", "ResolveAddress [bench] [8738]", "CreateSocket",
                            "AllowAddressReuse 100", "ConnectSocket 100", "CloseSocket 100",
                            "FreeAddress", "CleanupSockets"));
}

} // namespace
} // namespace Utilities::xFrameworkStreams::Sockets
