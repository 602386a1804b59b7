#pragma once

// Public, stable within a major version: SocketHandle, InvalidSocket and SocketError alone, for the
// socket stream's sake. The functions are the framework's own calls of the system and may change in
// any version.

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

/// A socket. Where descriptors are handed out again at once, the handle of a closed socket stays
/// invalid: closing it once more fails and touches nothing else. On Windows a later socket may have
/// the handle of one that was closed.
using SocketHandle = std::uint64_t;

inline constexpr SocketHandle InvalidSocket = ~SocketHandle{0};

/// What SendSocket, ReceiveSocket, ConnectSocket and CloseSocket return on failure.
inline constexpr int SocketError = -1;

/// The result list of a name resolution.
struct AddressInfo;

/// Asks for version 2.2 of the socket layer and, where descriptors are rationed, for as many as the
/// system allows; 0 on success. Each successful call is undone by one CleanupSockets. From the
/// first one on, a program with a C library of its own asks nothing for names but files and DNS,
/// also where other libraries in it resolve them.
int StartSockets();

/// Undoes one StartSockets; 0 on success.
int CleanupSockets();

/// How many files and sockets a program of this system can have open at a time, once it has asked
/// for as many as it can get; the largest number where there is no limit.
std::uint64_t MostOpenFiles();

/// How many connections to one daemon can be open at a time: the ports that the system gives to
/// connecting sockets.
std::uint64_t MostPorts();

/// Resolves host and port for a TCP stream of either address family (no flags); null on failure.
/// May block for as long as the system's resolver takes.
AddressInfo* ResolveAddress(const std::string& host, const std::string& port);

void FreeAddress(AddressInfo* addresses);

/// A socket for the first address of the list; InvalidSocket on failure.
SocketHandle CreateSocket(const AddressInfo* addresses);

/// Sets SO_REUSEADDR to the 32-bit value 1; 0 on success.
int AllowAddressReuse(SocketHandle socket);

/// Connects to the first address of the list, however long the system takes; 0 on success.
int ConnectSocket(SocketHandle socket, const AddressInfo* addresses);

/// Hands size bytes (0 allowed) to the system; returns how many it took. A closed connection is an
/// error, never a signal.
int SendSocket(SocketHandle socket, const char* data, std::size_t size);

/// Waits for data and takes up to size bytes; 0 when the peer closed.
int ReceiveSocket(SocketHandle socket, char* buffer, std::size_t size);

/// 0 on success.
int CloseSocket(SocketHandle socket);

/// The system's text for the last socket failure.
std::string LastSocketErrorText();

} // namespace OSAL
