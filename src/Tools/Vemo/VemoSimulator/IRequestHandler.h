#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace VemoSimulator {

/// A request as it came over a connection.
struct Request {
    std::string method;
    std::string target;
    /// Names as they were written, in the order of the request.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

/// What happens to a connection once the answer's bytes are sent.
enum class Ending {
    /// The sending side is closed, the rest when the client closes.
    HalfClose,
    Close,
    /// Closed so that the client sees a reset.
    Reset,
    /// Nothing, until the client closes.
    StayOpen
};

/// An answer on its way to the client.
struct Delivery {
    std::string bytes;
    /// Before the first byte.
    std::chrono::milliseconds delay{0};
    /// The answer is handed to the system in pieces: one of the first size, then as many of the
    /// second as it takes (the last may be shorter), with a pause between them.
    std::size_t firstPiece = std::string::npos;
    std::size_t nextPieces = std::string::npos;
    std::chrono::milliseconds pause{0};
    Ending ending = Ending::HalfClose;
    /// The program ends after this answer.
    bool endsProgram = false;
};

/// Answers requests; called from one thread, in the order in which requests are complete.
class IRequestHandler {
public:
    virtual ~IRequestHandler() = default;

    virtual Delivery Handle(const Request& request) = 0;

    /// Answers bytes that are no request, or one that is too large; problem says why.
    virtual Delivery HandleInvalid(int httpStatus, const std::string& problem) = 0;
};

} // namespace VemoSimulator
