#include "Modules/xFramework/Streams/Sockets/SocketConnect.h"

#include <memory>

namespace Utilities::xFrameworkStreams::Sockets {

namespace {

struct AddressDeleter {
    void operator()(OSAL::AddressInfo* addresses) const { OSAL::FreeAddress(addresses); }
};
using AddressList = std::unique_ptr<OSAL::AddressInfo, AddressDeleter>;

bool ConnectToFirst(OSAL::SocketHandle& socket, const OSAL::AddressInfo* addresses) {
    socket = OSAL::CreateSocket(addresses);
    if (socket == OSAL::InvalidSocket)
        return false;
    if (OSAL::AllowAddressReuse(socket) != 0)
        return false; // The socket is left as it is.
    if (OSAL::ConnectSocket(socket, addresses) != 0) {
        OSAL::CloseSocket(socket);
        socket = OSAL::InvalidSocket;
    }
    return socket != OSAL::InvalidSocket;
}

bool ResolveAndConnect(OSAL::SocketHandle& socket, const std::string& host,
                       const std::string& port) {
    const AddressList addresses(OSAL::ResolveAddress(host, port));
    return addresses != nullptr && ConnectToFirst(socket, addresses.get());
}

} // namespace

bool Connect(OSAL::SocketHandle& socket, const std::string& host, const std::string& port) {
    if (OSAL::StartSockets() != 0)
        return false;
    const bool connected = ResolveAndConnect(socket, host, port);
    if (!connected)
        OSAL::CleanupSockets();
    return connected;
}

} // namespace Utilities::xFrameworkStreams::Sockets
