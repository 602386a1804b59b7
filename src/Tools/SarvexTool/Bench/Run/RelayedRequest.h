#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// A request of the client while it comes in.
class RelayedRequest {
public:
    enum class State : std::uint8_t {
        Incomplete,
        Complete,
        /// It is no request of the client's.
        Foreign
    };

    /// Adds bytes; what follows a whole request is dropped.
    State Add(std::string_view bytes);

    /// The head and the body as they came.
    const std::string& Bytes() const { return m_bytes; }

private:
    /// Finds out the size of the whole request when the head is there.
    State ReadHead();

    std::string m_bytes;
    /// Head and body; nothing before the whole head is there.
    std::optional<std::size_t> m_size;
};

} // namespace Bench
