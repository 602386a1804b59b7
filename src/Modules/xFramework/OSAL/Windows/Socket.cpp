#include "Modules/xFramework/OSAL/Socket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <limits>
#include <system_error>

namespace OSAL {

struct AddressInfo {
    addrinfo first;
};

int StartSockets() {
    constexpr WORD version = MAKEWORD(2, 2);
    WSADATA data{};
    return ::WSAStartup(version, &data);
}

int CleanupSockets() {
    return ::WSACleanup();
}

std::uint64_t MostOpenFiles() {
    return std::numeric_limits<std::uint64_t>::max();
}

std::uint64_t MostPorts() {
    // 49152 to 65535, unless the administrator has changed the dynamic ports.
    return 16384;
}

AddressInfo* ResolveAddress(const std::string& host, const std::string& port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* addresses = nullptr;
    if (::getaddrinfo(host.c_str(), port.c_str(), &hints, &addresses) != 0)
        return nullptr;
    return reinterpret_cast<AddressInfo*>(addresses);
}

void FreeAddress(AddressInfo* addresses) {
    ::freeaddrinfo(&addresses->first);
}

SocketHandle CreateSocket(const AddressInfo* addresses) {
    const addrinfo& address = addresses->first;
    return ::socket(address.ai_family, address.ai_socktype, address.ai_protocol);
}

int AllowAddressReuse(SocketHandle socket) {
    const std::int32_t on = 1;
    return ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on),
                        sizeof on);
}

int ConnectSocket(SocketHandle socket, const AddressInfo* addresses) {
    const addrinfo& address = addresses->first;
    return ::connect(socket, address.ai_addr, static_cast<int>(address.ai_addrlen));
}

int SendSocket(SocketHandle socket, const char* data, std::size_t size) {
    return ::send(socket, data, static_cast<int>(size), 0);
}

int ReceiveSocket(SocketHandle socket, char* buffer, std::size_t size) {
    return ::recv(socket, buffer, static_cast<int>(size), 0);
}

int CloseSocket(SocketHandle socket) {
    return ::closesocket(socket);
}

std::string LastSocketErrorText() {
    return std::system_category().message(::WSAGetLastError());
}

} // namespace OSAL
