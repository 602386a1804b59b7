#pragma once

#include "Tools/Vemo/VemoSimulator/Device.h"
#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VemoSimulator {

/// How one command is to be answered. As it is made, it is the answer of a daemon without faults;
/// each fault changes a part of it.
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
    /// A NUL is put in front of this byte of the body.
    std::optional<std::uint64_t> nulPosition;
    /// Sent in place of the whole answer, head included.
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

/// The last four bytes of an answer.
inline constexpr std::string_view EndMark = "Done";

/// The reply as the plan wants it to seem: with lines added or left out, or another return code.
Reply ApplyToReply(const AnswerPlan& plan, Reply reply);

/// The answer to a command, HTTP head included, without what the plan says about its sending.
///
/// A client reads pieces of 512 bytes and finds the end mark only at the end of a piece of five
/// bytes or more, but also at the end of a piece that is not the last. So the head is padded until
/// the last piece is long enough and no other ends like the mark.
std::string BuildAnswer(const AnswerPlan& plan, const Reply& reply);

/// Whether the plan makes anything else of an answer than the device's own, but for a raw one.
bool ChangesText(const AnswerPlan& plan);

/// The text of the return-code line of an answer; empty when it has none.
std::string ReturnCodeIn(std::string_view answer);

/// The answer to a request that is no command: the text, without the end mark.
std::string BuildRefusal(int httpStatus, const std::string& text);

/// How the plan wants a finished answer to be sent: at once, unless the plan cuts it up. An answer
/// of another program may have a length with which a client would miss the end mark; then a first
/// piece is sent ahead and moves the mark in those after it.
Delivery PlanDelivery(const AnswerPlan& plan, std::string answer);

} // namespace VemoSimulator
