#include "Modules/xFramework/OSAL/Socket.h"

#include "tests/Modules/xFramework/OSAL/LoopbackPeer.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace OSAL {
namespace {

class CommonSocketTest : public testing::Test {
protected:
    CommonSocketTest() { StartSockets(); }
    ~CommonSocketTest() override {
        CloseSocket(socket);
        CleanupSockets();
    }

    /// A socket that is connected to the peer.
    void Connect() {
        AddressInfo* const address = ResolveAddress("127.0.0.1", peer.Port());
        ASSERT_NE(address, nullptr);
        socket = CreateSocket(address);
        ASSERT_NE(socket, InvalidSocket);
        EXPECT_EQ(AllowAddressReuse(socket), 0);
        EXPECT_EQ(ConnectSocket(socket, address), 0);
        FreeAddress(address);
        peer.Accept();
    }

    int Send(const std::string& text) { return SendSocket(socket, text.data(), text.size()); }

    /// Up to size bytes, as one receive gives them.
    std::string Receive(std::size_t size) {
        std::array<char, 64> buffer{};
        const int count = ReceiveSocket(socket, buffer.data(), size);
        return count < 0 ? "error" : std::string(buffer.data(), static_cast<std::size_t>(count));
    }

    LoopbackPeer peer;
    SocketHandle socket = InvalidSocket;
};

TEST_F(CommonSocketTest, CarriesBytesBothWays) {
    Connect();
    const std::string request("POST \0 \xFF\r\n", 10);
    EXPECT_EQ(Send(request), 10);
    EXPECT_EQ(peer.Receive(10), request);
    peer.Send(std::string("Do\0ne", 5));
    EXPECT_EQ(Receive(2), "Do");
    EXPECT_EQ(Receive(64), std::string("\0ne", 3));
}

TEST_F(CommonSocketTest, TakesAnEmptyPiece) {
    Connect();
    EXPECT_EQ(Send(""), 0);
    EXPECT_EQ(Send("x"), 1);
    EXPECT_EQ(peer.Receive(1), "x");
}

TEST_F(CommonSocketTest, ReceivesNothingOnceThePeerHasClosed) {
    Connect();
    peer.Send("last");
    peer.Close();
    EXPECT_EQ(Receive(64), "last");
    EXPECT_EQ(Receive(64), "");
}

TEST_F(CommonSocketTest, ReportsABrokenConnectionAsAnErrorNeverAsASignal) {
    Connect();
    peer.Reset();
    // However the break shows to the receiver, it is known afterwards: a further send is where a
    // signal would end the process.
    EXPECT_THAT(Receive(64), testing::AnyOf("error", ""));
    EXPECT_EQ(Send("x"), SocketError);
    EXPECT_FALSE(LastSocketErrorText().empty());
}

TEST_F(CommonSocketTest, IsClosedOnce) {
    Connect();
    EXPECT_EQ(CloseSocket(socket), 0);
    EXPECT_EQ(CloseSocket(socket), SocketError);
    EXPECT_EQ(Send("x"), SocketError);
    EXPECT_EQ(Receive(64), "error");
    EXPECT_EQ(peer.ReceiveAll(), "");
}

TEST(CommonSocketConstantsTest, AreThoseOfWindows) {
    EXPECT_EQ(InvalidSocket + 1, 0u);
    EXPECT_EQ(SocketError, -1);
}

TEST_F(CommonSocketTest, ThatIsInvalidFailsInEveryCall) {
    EXPECT_EQ(Send("x"), SocketError);
    EXPECT_EQ(Receive(64), "error");
    EXPECT_NE(AllowAddressReuse(socket), 0);
    EXPECT_EQ(CloseSocket(socket), SocketError);
}

TEST_F(CommonSocketTest, IsRefusedWhereNobodyListens) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", peer.Port());
    peer.StopListening();
    socket = CreateSocket(address);
    EXPECT_EQ(ConnectSocket(socket, address), SocketError);
    FreeAddress(address);
}

TEST_F(CommonSocketTest, CountsItsStartsAndCleanups) {
    EXPECT_EQ(StartSockets(), 0);
    EXPECT_EQ(CleanupSockets(), 0);
    Connect();
}

TEST(CommonSocketAddressTest, IsFoundForANameAndForEitherFamily) {
    StartSockets();
    for (const std::string host : {"localhost", "127.0.0.1", "::1"}) {
        SCOPED_TRACE(host);
        AddressInfo* const address = ResolveAddress(host, "8738");
        ASSERT_NE(address, nullptr);
        FreeAddress(address);
    }
    CleanupSockets();
}

TEST(CommonSocketAddressTest, IsNotFoundForAPortThatIsNoNumber) {
    StartSockets();
    for (const std::string port : {"80\r\n", "873x", "no-such-service"}) {
        SCOPED_TRACE(port);
        EXPECT_EQ(ResolveAddress("127.0.0.1", port), nullptr);
    }
    CleanupSockets();
}

TEST(CommonSocketLimitsTest, ASystemCarriesManyFilesAndPorts) {
    EXPECT_GE(MostOpenFiles(), 64);
    EXPECT_GE(MostPorts(), 1000);
    EXPECT_LE(MostPorts(), 65535);
}

} // namespace
} // namespace OSAL
