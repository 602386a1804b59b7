#pragma once

#include "Tools/Vemo/VemoSimulator/Delivery.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace VemoSimulator {

/// How one command is to be answered. As it is made, it is the answer of a sound daemon; each fault
/// changes a part of it.
struct AnswerPlan {
    // What the device seems to say
    /// The letters of the chains whose target power is left out.
    std::string missingChains;
    bool isUncalibrated = false;
    std::optional<std::string> returnCode;
    /// So many bytes of further information lines.
    std::uint64_t fillerBytes = 0;
    /// So many bytes in one further information line; 0 for no such line.
    std::uint64_t longLineBytes = 0;

    // How the answer is written
    bool hasCrLf = false;
    bool hasEndMark = true;
    /// A NUL stands in front of this byte of the body.
    std::optional<std::uint64_t> nulPosition;
    /// Stands in place of the whole answer, head included.
    std::optional<std::string> rawAnswer;

    // How it is sent
    std::chrono::milliseconds delay{0};
    /// Only so many bytes of it are sent.
    std::optional<std::uint64_t> cutAfter;
    bool isMarkApart = false;
    bool isDripped = false;
    /// Between two pieces, where the answer is sent in pieces.
    std::chrono::milliseconds pause{0};
    Ending ending = Ending::HalfClose;
};

} // namespace VemoSimulator
