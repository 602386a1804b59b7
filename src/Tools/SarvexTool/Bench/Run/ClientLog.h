#pragma once

#include <cstdint>
#include <string>

namespace Bench {

/// What a client prints into a file that others have printed into before.
class ClientLog {
public:
    ClientLog() = default;
    /// To be made before the client starts.
    explicit ClientLog(std::string name);

    /// The client's last line that is not empty, at most some hundred bytes of it and without the
    /// full stops at its end; empty where there is none.
    std::string LastLine() const;

private:
    std::string m_name;
    std::uint64_t m_start = 0;
};

} // namespace Bench
