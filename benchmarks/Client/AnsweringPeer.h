#pragma once

#include <memory>
#include <string>

namespace Bench {

/// Answers every request on a free four-digit port of 127.0.0.1 with the same body, in one write,
/// and closes.
class AnsweringPeer {
public:
    /// A request as the client sends it for "-wifi-stop".
    static const std::string Request;

    explicit AnsweringPeer(const std::string& body);
    ~AnsweringPeer();
    AnsweringPeer(const AnsweringPeer&) = delete;
    AnsweringPeer& operator=(const AnsweringPeer&) = delete;

    const std::string& Port() const { return m_port; }

private:
    struct System;
    std::unique_ptr<System> m_system;
    std::string m_port;
};

} // namespace Bench
