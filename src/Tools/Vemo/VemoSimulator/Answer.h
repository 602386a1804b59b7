#pragma once

#include "Tools/Vemo/VemoSimulator/AnswerPlan.h"
#include "Tools/Vemo/VemoSimulator/Device.h"

#include <string>
#include <string_view>

namespace VemoSimulator {

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

/// The answer to a request that is no command: the text, without the end mark.
std::string BuildRefusal(int httpStatus, const std::string& text);

/// How the plan wants a finished answer to be sent.
Delivery PlanDelivery(const AnswerPlan& plan, std::string answer);

} // namespace VemoSimulator
