#include "Modules/xFramework/OSAL/Socket.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

namespace OSAL {
namespace {

int OpenSomething() {
    return ::open("/dev/null", O_RDWR | O_CLOEXEC);
}

bool IsOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

TEST(SocketTest, SecondCloseLeavesADescriptorAloneThatIsInUseAgain) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", "1");
    const int lowest = OpenSomething();
    ::close(lowest);
    const SocketHandle socket = CreateSocket(address);
    ASSERT_TRUE(IsOpen(lowest)) << "the socket took the lowest free descriptor";
    EXPECT_EQ(CloseSocket(socket), 0);
    ASSERT_EQ(OpenSomething(), lowest);

    EXPECT_EQ(CloseSocket(socket), SocketError);
    EXPECT_TRUE(IsOpen(lowest));
    EXPECT_EQ(SendSocket(socket, "x", 1), SocketError);

    ::close(lowest);
    FreeAddress(address);
}

TEST(SocketTest, HandleIsNeverThatOfAnEarlierSocket) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", "1");
    const SocketHandle first = CreateSocket(address);
    CloseSocket(first);
    const SocketHandle second = CreateSocket(address);
    EXPECT_NE(first, second);
    EXPECT_EQ(CloseSocket(first), SocketError);
    EXPECT_EQ(AllowAddressReuse(second), 0);
    EXPECT_EQ(CloseSocket(second), 0);
    FreeAddress(address);
}

TEST(SocketTest, ManyAreOpenAtOnceAndTheNextHandleIsNobodys) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", "1");
    std::set<SocketHandle> sockets;
    for (int count = 0; count < 40; ++count)
        sockets.insert(CreateSocket(address));
    EXPECT_EQ(sockets.size(), 40U);
    EXPECT_EQ(CloseSocket(*sockets.rbegin() + 1), SocketError);
    for (const SocketHandle socket : sockets) {
        EXPECT_EQ(AllowAddressReuse(socket), 0);
        EXPECT_EQ(CloseSocket(socket), 0);
    }
    FreeAddress(address);
}

TEST(SocketTest, AddressReuseIsSwitchedOn) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", "1");
    const int lowest = OpenSomething();
    ::close(lowest);
    const SocketHandle socket = CreateSocket(address);
    EXPECT_EQ(AllowAddressReuse(socket), 0);
    int value = 0;
    socklen_t size = sizeof value;
    ASSERT_EQ(::getsockopt(lowest, SOL_SOCKET, SO_REUSEADDR, &value, &size), 0);
    EXPECT_EQ(value, 1);
    CloseSocket(socket);
    FreeAddress(address);
}

TEST(SocketTest, HandleIsNeitherZeroNorInvalid) {
    AddressInfo* const address = ResolveAddress("127.0.0.1", "1");
    const SocketHandle socket = CreateSocket(address);
    EXPECT_NE(socket, 0u);
    EXPECT_NE(socket, InvalidSocket);
    CloseSocket(socket);
    FreeAddress(address);
}

/// How many of 100 sockets a process gets whose soft limit is 50 descriptors.
TEST(SocketTest, LimitOfDescriptorsIsRaisedAsFarAsTheSystemAllows) {
    std::array<char, 64> output{};
    Pipe* const pipe = OpenPipe("ulimit -S -n 50; " +
                                Utilities::PathBesideProgram("OSALTestsChild") + " sockets 100");
    ReadPipe(pipe, output.data(), output.size() - 1);
    ClosePipe(pipe);
    EXPECT_STREQ(output.data(), "100");
}

} // namespace
} // namespace OSAL
