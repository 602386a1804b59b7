#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// Where a daemon listens.
struct DaemonAddress {
    /// A host name or an address; one of IPv6 without brackets.
    std::string host;
    /// 0 where none is given.
    std::uint16_t port = 0;

    /// As it is given, an address of IPv6 in brackets.
    std::string ToText() const;
};

/// The address that the system finds for the host first, as digits; the host as it is where it
/// finds none. All names of this machine's own loopback give one. May block for as long as the
/// system's resolver takes.
std::string ResolvedHost(const DaemonAddress& address);

/// The name of this machine.
std::string OwnHostName();

/// Reads HOST, HOST:PORT, [IPv6] or [IPv6]:PORT; nothing for any other text.
std::optional<DaemonAddress> ParseDaemonAddress(std::string_view text);

/// Reads a port from 1 to 65535.
std::optional<std::uint16_t> ParsePort(std::string_view text);

} // namespace Bench
