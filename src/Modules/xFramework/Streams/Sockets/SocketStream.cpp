#include "Modules/xFramework/Streams/Sockets/SocketStream.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Utilities::xFrameworkStreams::Sockets {

void SocketStream::ReadPort(std::string& port) {
    const std::string path = PathBesideProgram("Socket.cfg");
    if (IsLink(path))
        Raise(LinkMessage(path), "Utilities::xFrameworkStreams::Sockets::SocketStream::ReadPort");
    // Five bytes are read and the fifth is dropped: a port of five digits cannot be expressed.
    // Whether the file opens and is read is not asked: the port is then short, and no attempt
    // connects.
    std::array<char, 5> text{};
    OSAL::OwnedHandle file = OSAL::OpenFileForReading(path);
    OSAL::ReadFile(file, text.data(), text.size());
    file.Close();
    text.back() = '\0';
    port = text.data();
}

bool SocketStream::SendBuffer(OSAL::SocketHandle socket, const std::string& message) {
    // One piece more than needed when the length is a multiple of the size: an empty one is sent.
    const std::size_t pieces = message.size() / PieceSize + 1;
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        const std::size_t start = piece * PieceSize;
        const std::size_t size = std::min(PieceSize, message.size() - start);
        // How much of the piece the system took is not compared with its size, on purpose.
        if (OSAL::SendSocket(socket, message.data() + start, size) == OSAL::SocketError) {
            OSAL::LastSocketErrorText(); // Fetched for whoever debugs this; the user gets our text.
            CloseSocket(socket);
            OSAL::CleanupSockets();
            Raise("Failed Sending message",
                  "Utilities::xFrameworkStreams::Sockets::SocketStream::SendBuffer");
        }
    }
    return true;
}

void SocketStream::ReceiveBuffer(std::string& message, OSAL::SocketHandle socket) {
    message.clear();
    std::string chunk;
    bool complete = false;
    while (!complete) {
        ReceiveChunk(chunk, socket);
        complete = IsMessageComplete(chunk);
        // Room that nothing is written to costs less than copying a long message each time that it
        // has doubled. With three times the room, old and new together stay below five messages.
        if (message.capacity() - message.size() < chunk.size())
            message.reserve(3 * message.capacity() + chunk.size());
        message += chunk;
    }
}

int SocketStream::CloseSocket(OSAL::SocketHandle socket) {
    return OSAL::CloseSocket(socket);
}

bool SocketStream::IsMessageComplete(std::string& chunk) {
    constexpr std::string_view endMark = "Done";
    if (chunk.empty())
        return true;
    // The mark counts at the end of one chunk only, never across two, and a chunk that is nothing
    // but the mark is text: the daemon's messages rely on both.
    if (chunk.size() <= endMark.size() || !chunk.ends_with(endMark))
        return false;
    chunk.resize(chunk.size() - endMark.size());
    return true;
}

void SocketStream::ReceiveChunk(std::string& chunk, OSAL::SocketHandle socket) {
    std::array<char, PieceSize> buffer;
    const int count = OSAL::ReceiveSocket(socket, buffer.data(), buffer.size());
    if (count <= 0) {
        chunk.clear();
        CloseSocket(socket);
        OSAL::CleanupSockets();
        return;
    }
    const std::string_view received(buffer.data(), static_cast<std::size_t>(count));
    chunk = received.substr(0, received.find('\0'));
}

} // namespace Utilities::xFrameworkStreams::Sockets
