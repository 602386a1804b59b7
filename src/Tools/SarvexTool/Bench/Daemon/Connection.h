#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Bench {

/// Connects, sends a request and takes the answer off as the client does: in chunks of up to 512
/// bytes, each up to its first NUL, until one ends in the end mark or the daemon closes the
/// connection. Blocks for at most the given time. Throws std::runtime_error, with what went wrong,
/// when there is no connection, no whole answer in time, or no answer at all.
std::string ExchangeBytes(const std::string& host, std::uint16_t port, const std::string& request,
                          std::chrono::milliseconds timeout);

} // namespace Bench
