#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <string>
#include <string_view>

namespace Bench {

/// In what the daemon's target power line of a chain contradicts the settings that a line of the
/// test file is to be run with, such as "Channel 36 in place of 42"; empty when it repeats none of
/// them, or repeats them right. The line is the one that the client takes the power from. A setting
/// that the client sends in another form than it is written in is not compared.
std::string ContradictionIn(std::string_view answerLines, Chain chain, const OwnSettings& expected);

} // namespace Bench
