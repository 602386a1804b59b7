#include "Modules/xFramework/Streams/Sockets/SocketClientStream.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Streams/Sockets/SocketConnect.h"
#include "Modules/xFramework/Utilities/Exception.h"

#include <exception>

namespace Utilities::xFrameworkStreams::Sockets {

SocketClientStream::SocketClientStream(const std::string& host) {
    constexpr int maximumAttempts = 20;
    constexpr std::uint32_t pauseMilliseconds = 20;
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        std::string port;
        SocketStream::ReadPort(port);
        if (TryConnect(host, port))
            return;
        OSAL::Sleep(pauseMilliseconds);
    }
    Raise("Failed Creating socket",
          "Utilities::xFrameworkStreams::Sockets::SocketClientStream::SocketClientStream");
}

SocketClientStream::~SocketClientStream() {
    if (m_socket != 0)
        SocketStream::CloseSocket(m_socket);
}

bool SocketClientStream::Send(const std::string& message) {
    return SendBuffer(m_socket, message);
}

void SocketClientStream::Receive(std::string& message) {
    ReceiveBuffer(message, m_socket);
}

void SocketClientStream::Close() {
    if (m_socket != 0)
        CloseSocket(m_socket);
}

bool SocketClientStream::TryConnect(const std::string& host, const std::string& port) {
    try {
        return Connect(m_socket, host, port);
    } catch (const std::exception&) {
        return false;
    } catch (std::exception* pException) {
        delete pException;
        return false;
    }
}

} // namespace Utilities::xFrameworkStreams::Sockets
