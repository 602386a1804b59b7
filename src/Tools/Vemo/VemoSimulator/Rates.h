#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VemoSimulator {

/// The names of all rates that the device knows; they live as long as the program.
std::vector<std::string_view> RateNames();

/// How much less power a rate gets than the slowest one, in hundredths of a dB. The name is one of
/// RateNames.
int RateBackOff(std::string_view name);

/// The rates in one line, for messages.
std::string DescribeRates();

} // namespace VemoSimulator
