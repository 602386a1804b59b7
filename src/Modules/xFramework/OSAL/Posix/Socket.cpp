#include "Modules/xFramework/OSAL/Socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <nss.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <mutex>
#include <vector>

namespace OSAL {

struct AddressInfo {
    addrinfo first;
};

namespace {

/// Descriptors are handed out again as soon as they are closed, handles never: a handle holds the
/// descriptor in its low half and, in its high half, a serial number that the descriptor has only
/// while this socket is open on it.
class OpenSockets {
public:
    static OpenSockets& Instance() {
        static auto* const instance = new OpenSockets;
        return *instance;
    }

    SocketHandle Add(int descriptor) {
        const std::lock_guard lock(m_mutex);
        const auto index = static_cast<std::size_t>(descriptor);
        if (index >= m_serials.size())
            m_serials.resize(index + 1, 0);
        m_serials[index] = ++m_lastSerial;
        return Pack(descriptor, m_lastSerial);
    }

    /// The descriptor of an open socket, -1 for any other handle.
    int Find(SocketHandle handle) {
        const std::lock_guard lock(m_mutex);
        return IsOpen(handle) ? Descriptor(handle) : -1;
    }

    /// As Find, and the handle is invalid from now on.
    int Remove(SocketHandle handle) {
        const std::lock_guard lock(m_mutex);
        if (!IsOpen(handle))
            return -1;
        m_serials[static_cast<std::size_t>(Descriptor(handle))] = 0;
        return Descriptor(handle);
    }

private:
    static SocketHandle Pack(int descriptor, std::uint32_t serial) {
        return static_cast<SocketHandle>(serial) << 32 | static_cast<std::uint32_t>(descriptor);
    }
    static int Descriptor(SocketHandle handle) { return static_cast<int>(handle & 0xFFFFFFFF); }

    bool IsOpen(SocketHandle handle) const {
        const auto index = static_cast<std::size_t>(handle & 0xFFFFFFFF);
        const auto serial = static_cast<std::uint32_t>(handle >> 32);
        return serial != 0 && index < m_serials.size() && m_serials[index] == serial;
    }

    std::mutex m_mutex;
    std::vector<std::uint32_t> m_serials;
    std::uint32_t m_lastSerial = 0;
};

/// Sockets stay open until the process ends, one an exchange: the usual limit of 1024 would end a
/// long test run.
void RaiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/// The program holds the C library, and with it what looks names up in files and asks DNS. Any
/// other service that the system's configuration may name, for hosts or for a port given by its
/// name, would be loaded from the system and would need the very C library that the program holds.
void UseFilesAndDnsOnly() {
    ::__nss_configure_lookup("hosts", "files dns");
    ::__nss_configure_lookup("services", "files");
}

void ConfigureNames() {
    static std::once_flag configured;
    std::call_once(configured, UseFilesAndDnsOnly);
}

} // namespace

int StartSockets() {
    static std::once_flag raised;
    std::call_once(raised, RaiseDescriptorLimit);
    ConfigureNames();
    return 0;
}

int CleanupSockets() {
    return 0;
}

std::uint64_t MostOpenFiles() {
    rlimit limit{};
    const bool isLimited =
        ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_max != RLIM_INFINITY;
    return isLimited ? limit.rlim_max : std::numeric_limits<std::uint64_t>::max();
}

std::uint64_t MostPorts() {
    // Those of a system that tells none.
    std::uint64_t first = 32768;
    std::uint64_t last = 60999;
    std::ifstream("/proc/sys/net/ipv4/ip_local_port_range") >> first >> last;
    return last < first ? 0 : last - first + 1;
}

AddressInfo* ResolveAddress(const std::string& host, const std::string& port) {
    ConfigureNames();
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
    const int descriptor =
        ::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC, address.ai_protocol);
    return descriptor < 0 ? InvalidSocket : OpenSockets::Instance().Add(descriptor);
}

int AllowAddressReuse(SocketHandle socket) {
    const std::int32_t on = 1;
    return ::setsockopt(OpenSockets::Instance().Find(socket), SOL_SOCKET, SO_REUSEADDR, &on,
                        sizeof on);
}

int ConnectSocket(SocketHandle socket, const AddressInfo* addresses) {
    const addrinfo& address = addresses->first;
    return ::connect(OpenSockets::Instance().Find(socket), address.ai_addr, address.ai_addrlen);
}

int SendSocket(SocketHandle socket, const char* data, std::size_t size) {
    return static_cast<int>(::send(OpenSockets::Instance().Find(socket), data, size, MSG_NOSIGNAL));
}

int ReceiveSocket(SocketHandle socket, char* buffer, std::size_t size) {
    return static_cast<int>(::recv(OpenSockets::Instance().Find(socket), buffer, size, 0));
}

int CloseSocket(SocketHandle socket) {
    const int descriptor = OpenSockets::Instance().Remove(socket);
    return descriptor < 0 ? SocketError : ::close(descriptor);
}

std::string LastSocketErrorText() {
    return std::strerror(errno);
}

} // namespace OSAL
