#pragma once

#include "Modules/xFramework/OSAL/Socket.h"

#include <string>

namespace Utilities::xFrameworkStreams::Sockets {

/// Makes one attempt to connect to a host (a name or a numeric address) and port. Only the first
/// resolved address is tried and no time-out is set: the call blocks as long as the system does.
/// Returns whether socket now holds a connection; after a refused connection it holds
/// OSAL::InvalidSocket. Each success leaves one use of the socket layer for the caller to clean up.
bool Connect(OSAL::SocketHandle& socket, const std::string& host, const std::string& port);

} // namespace Utilities::xFrameworkStreams::Sockets
