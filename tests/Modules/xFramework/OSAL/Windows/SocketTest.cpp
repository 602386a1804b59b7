#include "Modules/xFramework/OSAL/Socket.h"

#include <winsock2.h>

#include <gtest/gtest.h>

namespace OSAL {
namespace {

TEST(SocketTest, ConstantsAreThoseOfTheSystem) {
    EXPECT_EQ(InvalidSocket, static_cast<SocketHandle>(INVALID_SOCKET));
    EXPECT_EQ(SocketError, SOCKET_ERROR);
}

TEST(SocketTest, ErrorTextNamesTheLastFailure) {
    StartSockets();
    ::WSASetLastError(WSAECONNRESET);
    const std::string reset = LastSocketErrorText();
    ::WSASetLastError(WSAECONNREFUSED);
    EXPECT_NE(LastSocketErrorText(), reset);
    CleanupSockets();
}

} // namespace
} // namespace OSAL
