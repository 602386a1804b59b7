#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace VemoSimulator {

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

} // namespace VemoSimulator
