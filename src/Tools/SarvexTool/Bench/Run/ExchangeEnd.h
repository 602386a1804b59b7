#pragma once

#include <cstdint>
#include <string>

namespace Bench {

/// How an exchange with the daemon ended.
struct ExchangeEnd {
    enum Kind : std::uint8_t {
        /// The end mark came, or a return code before the connection or the time ended.
        Answered,
        /// Nothing came for the given time.
        TimedOut,
        /// The connection ended without a whole answer.
        Lost,
        /// There was no connection, so that the daemon knows nothing of the request.
        Unreachable
    };

    Kind kind = Answered;
    /// All that came, as it came.
    std::string bytes;
    /// What went wrong, as in "the daemon ...": empty for an answer.
    std::string words;
};

} // namespace Bench
