#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace Bench {

/// Why there is no answer.
class ExchangeFailure : public std::runtime_error {
public:
    ExchangeFailure(const std::string& text, bool wasConnected)
        : std::runtime_error(text), m_wasConnected(wasConnected) {}

    /// Whether the daemon may have got the request.
    bool WasConnected() const { return m_wasConnected; }

private:
    bool m_wasConnected;
};

/// Connects, sends a request and takes the answer off as the client does: in chunks of up to 512
/// bytes, each up to its first NUL, until one ends in the end mark or the daemon closes the
/// connection. Blocks for at most the given time. Throws ExchangeFailure, with what went wrong,
/// when there is no connection, no whole answer in time, or no answer at all.
std::string ExchangeBytes(const std::string& host, std::uint16_t port, const std::string& request,
                          std::chrono::milliseconds timeout);

} // namespace Bench
